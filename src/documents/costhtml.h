#pragma once
// The budget and job-cost reports of one project.
#include "calc/budget.h"
#include "store/rec.h"

class DB;

namespace PrintReports {

// The budget by cost code with its change orders, from the summary the screen shows.
QString budgetHTML(const DB &db, const Rec &project, const Calc::BudgetSummary &summary);
// The job-cost report: budget against committed and actual cost by cost code.
QString reportHTML(const DB &db, const Rec &project);

} // namespace PrintReports
