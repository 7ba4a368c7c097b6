#pragma once
#include <QtCore/QTextStream>

class DB;

// The WIP schedule over every project of the reference company: its figures, and the document to PDF.
void runWipBench(const DB &db, int runs, QTextStream &out);
