#pragma once
#include "parts.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

class DB;

namespace Calc {

// Invariant: revised = original + approved; projected = revised + pending.
struct BudgetRow
{
    qint64 original = 0;
    qint64 approved = 0;
    qint64 pending = 0;
    qint64 revised = 0;
    qint64 projected = 0;
    bool operator==(const BudgetRow &) const = default;
};

// One change-order line as the budget sees it (amount without markup).
struct BudgetCOLine
{
    QString code;
    qint64 amount = 0;
    QString status; // the status of the line's change order
};

// Rows by cost code text (the empty text is a code of its own).
// Invariant: `order` holds each key of `rows` once, in first-appearance order;
// `total` is the column sums over `order`.
struct BudgetSummary
{
    QStringList order;
    QHash<QString, BudgetRow> rows;
    BudgetRow total;
};

// One job-cost row of a cost code.
struct CostRow
{
    qint64 budget = 0; // the revised budget
    qint64 committed = 0;
    qint64 actual = 0;
    bool operator==(const CostRow &) const = default;
};

// Same invariants as BudgetSummary.
struct JobCost
{
    QStringList order;
    QHash<QString, CostRow> rows;
    CostRow total;
};

// Budget lines first, then change-order lines, each code's row made on first sight.
BudgetSummary budgetSummary(const QList<std::pair<QString, qint64>> &lines,
                            const QList<BudgetCOLine> &coLines);
// What the job-cost screen calls variance: budget less the larger of committed and actual.
qint64 variance(const CostRow &row);

// The `column` of the budget's parts, and of the job cost's.
enum BudgetColumn { OriginalColumn, ApprovedColumn, PendingColumn };
enum CostColumn { CommittedColumn, ActualColumn };

} // namespace Calc

// The project's budget by cost code, with owner and sub change orders.
// Each budget line and change-order line goes to `sink` as it is added in.
Calc::BudgetSummary budget(const DB &db, const QString &projectId, const Calc::PartSink &sink = {});
// Budget against committed (issued POs) and actual (bills, labour, equipment) by cost code.
// Each PO line, bill, timecard and equipment log goes to `sink` as it is added in.
Calc::JobCost jobCost(const DB &db, const QString &projectId, const Calc::PartSink &sink = {});
