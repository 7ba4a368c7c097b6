#pragma once

class DB;
class QTextStream;

// Times documents to PDF through the paged engine: list logs of 200 and 2,000
// rows and the G702/G703 of a pay application, `runs` times each.
void runDocBench(const DB &db, int runs, QTextStream &out);
