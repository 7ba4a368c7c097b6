#pragma once
#include <QtCore/QTextStream>

// The largest breakdown of the reference store at `path` (actual cost of the
// project with the most timecards): worked out, as text, and opened in its window.
void runExplainBench(const QString &path, int runs, QTextStream &out);
