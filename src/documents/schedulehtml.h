#pragma once
// The printable schedule: the task table and a bar chart made of table cells.
#include "store/rec.h"

class DB;

namespace PrintReports {

// How many cells wide the printed chart is.
inline constexpr int kChartCells = 40;

// The project's tasks with their worked-out dates, and the chart when any task has dates.
QString scheduleHTML(const DB &db, const Rec &project);

} // namespace PrintReports
