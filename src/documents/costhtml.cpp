#include "costhtml.h"

#include "calc/money.h"
#include "pdfout.h"
#include "store/db.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// A cost code's label, or "Uncoded" for costs without one (or a code since deleted).
QString codeLabel(const DB &db, const QString &code)
{
    const QString label = db.label(code);
    return label.isEmpty() ? u"Uncoded"_s : label;
}

QStringList budgetCells(const QString &name, const Calc::BudgetRow &r)
{
    return {name,
            Money::fmt(r.original),
            Money::fmt(r.approved),
            Money::fmt(r.revised),
            Money::fmt(r.pending),
            Money::fmt(r.projected)};
}

QStringList costCells(const QString &name, const Calc::CostRow &r)
{
    // Money is at risk from the larger of what is promised and what is spent.
    const qint64 variance = Money::sub(r.budget, std::max(r.committed, r.actual));
    const double spent = r.budget != 0 ? double(r.actual) / double(r.budget) * 100.0 : 0.0;
    return {name,
            Money::fmt(r.budget),
            Money::fmt(r.committed),
            Money::fmt(r.actual),
            Money::fmt(variance),
            PDFOut::percent(spent)};
}
} // namespace

namespace PrintReports {

QString budgetHTML(const DB &db, const Rec &project, const Calc::BudgetSummary &summary)
{
    QList<QStringList> rows;
    for (const QString &code : summary.order)
        rows.append(budgetCells(codeLabel(db, code), summary.rows.value(code)));
    rows.append(budgetCells(u"TOTAL"_s, summary.total));
    return PDFOut::header(db, u"Project Budget"_s, project) +
           PDFOut::table(
               {u"Cost code"_s, u"Original"_s, u"Approved COs"_s, u"Revised"_s, u"Pending"_s, u"Projected"_s},
               rows, {1, 2, 3, 4, 5});
}

QString reportHTML(const DB &db, const Rec &project)
{
    const Calc::JobCost cost = jobCost(db, project.id);
    QList<QStringList> rows;
    for (const QString &code : cost.order)
        rows.append(costCells(codeLabel(db, code), cost.rows.value(code)));
    rows.append(costCells(u"TOTAL"_s, cost.total));
    return PDFOut::header(db, u"Job Cost Report — Budget vs Actual"_s, project) +
           PDFOut::table(
               {u"Cost code"_s, u"Budget"_s, u"Committed"_s, u"Actual"_s, u"Variance"_s, u"% spent"_s}, rows,
               {1, 2, 3, 4, 5});
}

} // namespace PrintReports
