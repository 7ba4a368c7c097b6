#pragma once

class DB;
class QString;
class QTextStream;

// Times the QuickBooks export of the reference company, and a backup of a copy
// of its data folder with ~200 MB of stored files, with the memory it took.
void runInterchangeBench(const DB &db, const QString &storePath, int runs, QTextStream &out);
// Times a snapshot of that data folder (its check, its copy, the whole), what
// it costs on disk, the listing of the snapshots and a restore from one.
void runSnapshotBench(const QString &folder, int runs, QTextStream &out);
