#pragma once
// The printed breakdown of a figure: its name, the project, the date and the
// rule at the top, then its rows and the total.
#include "workflows/breakdown.h"

class DB;

namespace PrintReports {

// The document of `b`.
QString breakdownHTML(const DB &db, const Breakdown &b);
// Its title, which is also the file's proposed name.
QString breakdownTitle(const Breakdown &b);

} // namespace PrintReports
