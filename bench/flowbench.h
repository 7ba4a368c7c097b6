#pragma once
#include <QtCore/QTextStream>

class DB;

// Times the workflow figures the Command Hub draws on the store's current
// company and prints one "name: median ms (min–max)" line per figure.
void runFlowBench(const DB &db, int runs, QTextStream &out);
