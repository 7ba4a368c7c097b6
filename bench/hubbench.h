#pragma once
#include <QtCore/QTextStream>

// Measures the Command Hub and Reports screens on the reference store at `path`:
// one refresh each, every figure computed afresh from the store.
void runHubBench(const QString &path, int runs, QTextStream &out);
