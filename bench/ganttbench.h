#pragma once
#include <QtCore/QTextStream>

// Measures the schedule chart of a 500-task project and one page of a large
// plan sheet drawn at 200 % in the markup view.
void runGanttBench(int runs, QTextStream &out);
