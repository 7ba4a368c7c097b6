#pragma once
#include <QtCore/QTextStream>

// Measures the pay application screen on the reference store at `path`:
// one refresh of the screen on the project with the most applications.
void runPayBench(const QString &path, int runs, QTextStream &out);
