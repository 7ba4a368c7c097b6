#pragma once

class DB;
class QString;
class QTextStream;

// Times the QuickBooks export of the reference company, and a backup of a copy
// of its data folder with ~200 MB of stored files, with the memory it took.
void runInterchangeBench(const DB &db, const QString &storePath, int runs, QTextStream &out);
