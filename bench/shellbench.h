#pragma once
#include <QtCore/QTextStream>

// Measures the window on the reference store at `path`: start to first paint,
// and one refresh of the module area after a save.
void runShellBench(const QString &path, int runs, QTextStream &out);
