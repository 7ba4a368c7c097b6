#pragma once
#include "store/rec.h"

#include <QtCore/QList>

#include <optional>

class DB;

namespace Calc {

// The four money columns of one schedule-of-values line on one application.
struct PayLine
{
    qint64 scheduled = 0;
    qint64 previous = 0;   // work billed on earlier applications
    qint64 thisPeriod = 0; // work billed on this one
    qint64 stored = 0;     // materials stored, this application only
    bool operator==(const PayLine &) const = default;
};

// One continuation-sheet row. Invariants: completed = previous + thisPeriod +
// stored; balance = scheduled − completed; retainage rounded per row.
struct PayRow
{
    PayLine line;
    qint64 completed = 0;
    double pct = 0; // one decimal; may exceed 100 or be negative
    qint64 balance = 0;
    qint64 retWork = 0;
    qint64 retMat = 0;
};

// Column sums of the continuation sheet, each a sum of rounded rows.
struct PayTotals
{
    qint64 scheduled = 0;
    qint64 previous = 0;
    qint64 thisPeriod = 0;
    qint64 stored = 0;
    qint64 completed = 0;
    qint64 balance = 0;
    qint64 retWork = 0;
    qint64 retMat = 0;
    bool operator==(const PayTotals &) const = default;
};

// The nine-line summary; l8 is the current payment due.
struct G702
{
    qint64 l1 = 0, l2 = 0, l3 = 0, l4 = 0, l5a = 0, l5b = 0, l5 = 0, l6 = 0, l7 = 0, l8 = 0, l9 = 0;
    bool operator==(const G702 &) const = default;
};

struct PayApp
{
    QList<PayRow> rows;
    PayTotals totals;
    G702 g702;
};

// The arithmetic of one application from its lines, its two retainage
// percentages, the contract figures and line 6 of the previous application.
PayApp payApp(const QList<PayLine> &lines, double retWorkPct, double retMatPct, qint64 original,
              qint64 approved, qint64 previousL6);

} // namespace Calc

// An application's figures with the schedule-of-values records behind its rows.
// Invariant: sov[i] is the line of calc.rows[i].
struct PayAppData
{
    Calc::PayApp calc;
    QList<Rec> sov;
    QString previous; // id of the application whose line 6 is line 7, or empty
};

// Figures of a pay application, chained through the earlier ones (depth: 0 from outside).
PayAppData payAppData(const DB &db, const Rec &payApp, int depth = 0);
// The figures of every application of a project by id, the chain walked once.
QHash<QString, PayAppData> payAppDataOfProject(const DB &db, const QString &projectId);
// Writes this period and/or stored for one schedule line; absent amounts are left alone.
void setPayLine(DB &db, const Rec &payApp, const QString &sovId, std::optional<qint64> thisPeriod,
                std::optional<qint64> stored);
