// Figures of the calculation engine on the reference company.
#include "calcbench.h"

#include "benchutil.h"

#include "calc/budget.h"
#include "calc/payapp.h"
#include "calc/totals.h"
#include "store/db.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTextStream>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Bench::figure;

constexpr int kPayAppRank = 20;
constexpr double kPayAppTargetMs = 5;
constexpr double kJobCostTargetMs = 5;

// The project with the most records of `kind`.
QString busiest(const DB &db, const QString &kind)
{
    QString best;
    qsizetype most = -1;
    for (const Rec &p : db.list(u"project"_s)) {
        const qsizetype n = db.count(kind, {.project = p.id});
        if (n > most) {
            best = p.id;
            most = n;
        }
    }
    return best;
}

} // namespace

void runCalcBench(const DB &db, int runs, QTextStream &out)
{
    // Cost grows with the chain, so the application is the 20th of the project with the most.
    const QString appProject = busiest(db, u"pay_app"_s);
    QList<Rec> apps = db.list(u"pay_app"_s, {.project = appProject});
    std::stable_sort(apps.begin(), apps.end(),
                     [](const Rec &a, const Rec &b) { return a.i(u"number") < b.i(u"number"); });
    if (!apps.isEmpty()) {
        const Rec app = apps.at(std::min<qsizetype>(kPayAppRank, apps.size()) - 1);
        const qsizetype lines = db.count(u"sov_line"_s, {.project = appProject});
        figure(out, runs, u"payAppData"_s,
               u"[application %1 of %2, %3 schedule lines]  target < %4 ms"_s.arg(app.f[u"number"])
                   .arg(apps.size())
                   .arg(lines)
                   .arg(kPayAppTargetMs),
               [&] { (void)payAppData(db, app); });
    }

    const QString costProject = busiest(db, u"timecard"_s);
    if (costProject.isEmpty())
        return;
    const QString costNote = u"[%1 timecards, %2 bills, %3 purchase orders]"_s
                                 .arg(db.count(u"timecard"_s, {.project = costProject}))
                                 .arg(db.count(u"expense"_s, {.project = costProject}))
                                 .arg(db.count(u"po"_s, {.project = costProject}));
    figure(out, runs, u"jobCost"_s, costNote + u"  target < %1 ms"_s.arg(kJobCostTargetMs),
           [&] { (void)jobCost(db, costProject); });
    figure(out, runs, u"budget"_s,
           u"[%1 budget lines, %2 change orders]"_s.arg(db.count(u"budget_line"_s, {.project = costProject}))
               .arg(db.count(u"co"_s, {.project = costProject})),
           [&] { (void)budget(db, costProject); });
    const Rec project = *db.get(costProject);
    figure(out, runs, u"contract"_s, {}, [&] { (void)contract(db, project); });
}
