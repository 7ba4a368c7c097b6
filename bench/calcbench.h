#pragma once

class DB;
class QTextStream;

// Times the calculation readers (pay application chain, job cost, budget,
// contract) on the busiest projects of `db`, `runs` times each, one line per figure.
void runCalcBench(const DB &db, int runs, QTextStream &out);
