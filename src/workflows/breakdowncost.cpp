// Breakdowns of the budget, the job cost, the contract and the project's money figures.
#include "breakdown.h"
#include "breakdownkit.h"
#include "figures.h"

#include "calc/budget.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Explain {

namespace {

// The cost code key the calculations use for the subject of `b`.
QString codeKey(const Breakdown &b)
{
    return b.ref.subject == kUncoded ? QString() : b.ref.subject;
}

bool wholeProject(const Breakdown &b)
{
    return b.ref.subject.isEmpty();
}

QString costScope(const DB &db, const Breakdown &b)
{
    if (wholeProject(b))
        return QString();
    const QString label = db.label(b.ref.subject);
    return b.ref.subject == kUncoded ? u"Uncoded costs"_s : u"Cost code "_s + label;
}

// A sink keeping the parts of `column` that fall under the subject's cost code.
Calc::PartSink keep(Breakdown &b, int column)
{
    return [&b, column](Calc::Part &&p) {
        if (p.column != column)
            return;
        if (!b.ref.subject.isEmpty() && p.code != (b.ref.subject == kUncoded ? QString() : b.ref.subject))
            return;
        b.rows.append(std::move(p));
    };
}

// The budget figures: one column of the budget's parts, or a sum of figures.
template<qint64 Calc::BudgetRow::*Member>
QString budgetFigure(const DB &db, Breakdown &b, int column, const QString &rule)
{
    const Calc::BudgetSummary s = budget(db, b.ref.project, keep(b, column));
    b.scope = costScope(db, b);
    b.rule = rule;
    b.total = wholeProject(b) ? s.total.*Member : s.rows.value(codeKey(b)).*Member;
    sortByDate(b.rows);
    return {};
}

QString budgetOriginal(const DB &db, Breakdown &b)
{
    return budgetFigure<&Calc::BudgetRow::original>(db, b, Calc::OriginalColumn,
                                                    u"the original amounts of the budget lines"_s);
}
QString budgetApproved(const DB &db, Breakdown &b)
{
    return budgetFigure<&Calc::BudgetRow::approved>(
        db, b, Calc::ApprovedColumn, u"lines of approved change orders, owner and sub, without markup"_s);
}
QString budgetPending(const DB &db, Breakdown &b)
{
    return budgetFigure<&Calc::BudgetRow::pending>(
        db, b, Calc::PendingColumn, u"lines of pending change orders, owner and sub, without markup"_s);
}

QString budgetSum(const DB &db, Breakdown &b, bool projected)
{
    const Calc::BudgetSummary s = budget(db, b.ref.project);
    const Calc::BudgetRow row = wholeProject(b) ? s.total : s.rows.value(codeKey(b));
    b.scope = costScope(db, b);
    b.rows << Calc::figurePart(u"budget.original"_s, b.ref.subject, u"Original budget"_s, row.original)
           << Calc::figurePart(u"budget.approved"_s, b.ref.subject, u"Approved changes"_s, row.approved);
    if (projected)
        b.rows << Calc::figurePart(u"budget.pending"_s, b.ref.subject, u"Pending changes"_s, row.pending);
    b.rule = projected ? u"revised budget + pending changes"_s : u"original budget + approved changes"_s;
    b.total = projected ? row.projected : row.revised;
    return {};
}

QString budgetRevised(const DB &db, Breakdown &b)
{
    return budgetSum(db, b, false);
}
QString budgetProjected(const DB &db, Breakdown &b)
{
    return budgetSum(db, b, true);
}

QString jobCommitted(const DB &db, Breakdown &b)
{
    const Calc::JobCost jc = jobCost(db, b.ref.project, keep(b, Calc::CommittedColumn));
    b.scope = costScope(db, b);
    b.rule = u"lines of purchase orders issued, received or closed, at quantity × unit cost"_s;
    b.total = wholeProject(b) ? jc.total.committed : jc.rows.value(codeKey(b)).committed;
    sortByDate(b.rows);
    return {};
}

QString jobActual(const DB &db, Breakdown &b)
{
    const Calc::JobCost jc = jobCost(db, b.ref.project, keep(b, Calc::ActualColumn));
    b.scope = costScope(db, b);
    b.rule = u"bills at their amount, timecards at hours × the card's rate, equipment hours × the machine's "
             u"rate"_s;
    b.total = wholeProject(b) ? jc.total.actual : jc.rows.value(codeKey(b)).actual;
    sortByDate(b.rows);
    return {};
}

QString jobBudget(const DB &db, Breakdown &b)
{
    const Calc::JobCost jc = jobCost(db, b.ref.project);
    b.scope = costScope(db, b);
    b.rule = u"the revised budget of each cost code"_s;
    for (const QString &code : jc.order) {
        if (!wholeProject(b) && code != codeKey(b))
            continue;
        const QString label = db.label(code);
        b.rows << Calc::figurePart(u"budget.revised"_s, code.isEmpty() ? kUncoded : code,
                                   code.isEmpty() ? u"Uncoded"_s : label, jc.rows.value(code).budget);
    }
    b.total = wholeProject(b) ? jc.total.budget : jc.rows.value(codeKey(b)).budget;
    return {};
}

QString jobVariance(const DB &db, Breakdown &b)
{
    const Calc::JobCost jc = jobCost(db, b.ref.project);
    const Calc::CostRow row = wholeProject(b) ? jc.total : jc.rows.value(codeKey(b));
    b.scope = costScope(db, b);
    b.rule = u"revised budget − the larger of committed and actual"_s;
    b.rows << Calc::figurePart(u"jobcost.budget"_s, b.ref.subject, u"Revised budget"_s, row.budget);
    const bool committed = row.committed > row.actual;
    b.rows << Calc::figurePart(committed ? u"jobcost.committed"_s : u"jobcost.actual"_s, b.ref.subject,
                               committed ? u"Committed"_s : u"Actual cost"_s,
                               Money::sub(0, std::max(row.committed, row.actual)),
                               committed ? u"committed is the larger"_s : u"actual is the larger"_s);
    b.total = Calc::variance(row);
    return {};
}

QString contractOriginal(const DB &db, Breakdown &b)
{
    const Rec *project = db.find(b.ref.project);
    const Calc::ContractSummary c = contract(db, *project);
    b.rule = u"the contract amount of the project"_s;
    b.rows << Calc::recordPart(db, *project, c.original, u"original contract"_s);
    b.total = c.original;
    return {};
}

QString contractColumn(const DB &db, Breakdown &b, int column)
{
    const Rec *project = db.find(b.ref.project);
    const Calc::ContractSummary c = contract(db, *project, [&b, column](Calc::Part &&p) {
        if (p.column == column)
            b.rows.append(std::move(p));
    });
    b.rule = column == Calc::ContractApproved ? u"owner change orders approved, markup included"_s
                                              : u"owner change orders pending, markup included"_s;
    b.total = column == Calc::ContractApproved ? c.approved : c.pending;
    sortByDate(b.rows);
    return {};
}

QString contractApproved(const DB &db, Breakdown &b)
{
    return contractColumn(db, b, Calc::ContractApproved);
}
QString contractPending(const DB &db, Breakdown &b)
{
    return contractColumn(db, b, Calc::ContractPending);
}

QString contractRevised(const DB &db, Breakdown &b)
{
    const Calc::ContractSummary c = contract(db, *db.find(b.ref.project));
    b.rule = u"original contract + approved owner change orders"_s;
    b.rows << Calc::figurePart(u"contract.original"_s, {}, u"Original contract"_s, c.original)
           << Calc::figurePart(u"contract.approved"_s, {}, u"Approved change orders"_s, c.approved);
    b.total = c.revised;
    return {};
}

QString budgetMargin(const DB &db, Breakdown &b)
{
    const Calc::ContractSummary c = contract(db, *db.find(b.ref.project));
    const Calc::BudgetSummary s = budget(db, b.ref.project);
    b.rule = u"revised contract − revised cost budget"_s;
    b.rows << Calc::figurePart(u"contract.revised"_s, {}, u"Revised contract"_s, c.revised)
           << Calc::figurePart(u"budget.revised"_s, {}, u"Revised cost budget"_s,
                               Money::sub(0, s.total.revised));
    b.total = Money::sub(c.revised, s.total.revised);
    return {};
}

// The project's own money figures, as the hub and the reports show them.
QString projectColumn(const DB &db, Breakdown &b, int column, qint64 ProjectFigures::*member,
                      const QString &rule)
{
    const ProjectFigures f = ProjectFigures::of(db, *db.find(b.ref.project), [&b, column](Calc::Part &&p) {
        if (p.column == column)
            b.rows.append(std::move(p));
    });
    b.rule = rule;
    b.total = f.*member;
    sortByDate(b.rows);
    return {};
}

QString projectBilled(const DB &db, Breakdown &b)
{
    return projectColumn(db, b, ProjectFigures::BilledColumn, &ProjectFigures::billed,
                         u"line 4 of the latest pay application + subtotals of invoices not void"_s);
}
QString projectRetainage(const DB &db, Breakdown &b)
{
    return projectColumn(db, b, ProjectFigures::RetainageColumn, &ProjectFigures::retainage,
                         u"line 5 of the latest pay application"_s);
}
QString projectPaid(const DB &db, Breakdown &b)
{
    return projectColumn(db, b, ProjectFigures::PaidColumn, &ProjectFigures::paid, u"payments received"_s);
}

} // namespace

QList<Figure> costFigures()
{
    const QString code = u"cost_code"_s;
    return {
        {u"budget.original"_s, u"Original budget"_s, code, true, &budgetOriginal},
        {u"budget.approved"_s, u"Approved budget changes"_s, code, true, &budgetApproved},
        {u"budget.pending"_s, u"Pending budget changes"_s, code, true, &budgetPending},
        {u"budget.revised"_s, u"Revised budget"_s, code, true, &budgetRevised},
        {u"budget.projected"_s, u"Projected budget"_s, code, true, &budgetProjected},
        {u"budget.margin"_s, u"Projected margin"_s, {}, true, &budgetMargin},
        {u"jobcost.budget"_s, u"Revised budget"_s, code, true, &jobBudget},
        {u"jobcost.committed"_s, u"Committed"_s, code, true, &jobCommitted},
        {u"jobcost.actual"_s, u"Actual cost"_s, code, true, &jobActual},
        {u"jobcost.variance"_s, u"Variance"_s, code, true, &jobVariance},
        {u"contract.original"_s, u"Original contract"_s, {}, true, &contractOriginal},
        {u"contract.approved"_s, u"Approved change orders"_s, {}, true, &contractApproved},
        {u"contract.pending"_s, u"Pending change orders"_s, {}, true, &contractPending},
        {u"contract.revised"_s, u"Revised contract"_s, {}, true, &contractRevised},
        {u"project.billed"_s, u"Billed to date"_s, {}, true, &projectBilled},
        {u"project.retainage"_s, u"Retainage held"_s, {}, true, &projectRetainage},
        {u"project.paid"_s, u"Paid to date"_s, {}, true, &projectPaid},
    };
}

} // namespace Explain
