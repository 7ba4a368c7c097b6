#include "flowbench.h"

#include "benchutil.h"

#include "store/db.h"
#include "workflows/alerts.h"
#include "workflows/figures.h"

#include <QtCore/QElapsedTimer>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr double kHubTargetMs = 50;

using Bench::measure;

void figure(QTextStream &out, const QString &name, const Bench::Stats &s, const QString &note)
{
    Bench::print(out, name, s, note);
}

} // namespace

void runFlowBench(const DB &db, int runs, QTextStream &out)
{
    const QList<Rec> projects = db.list(u"project"_s);
    QList<Rec> active;
    for (const Rec &p : projects)
        if (p.f.value(u"status") == u"Active")
            active.append(p);

    // The active project with the longest pay-application chain is the dearest one.
    const QList<Rec> &pool = active.isEmpty() ? projects : active;
    const Rec *busiest = nullptr;
    qsizetype apps = -1;
    for (const Rec &p : pool) {
        const qsizetype n = db.count(u"pay_app"_s, {.project = p.id});
        if (n > apps) {
            busiest = &p;
            apps = n;
        }
    }

    // Results go somewhere the optimiser cannot drop.
    volatile qint64 sink = 0;
    if (busiest)
        figure(out, u"project figures"_s,
               measure(runs, [&] { sink = sink + ProjectFigures::of(db, *busiest).billed; }),
               u"[project %1, %2 pay apps]"_s.arg(busiest->f.value(u"number")).arg(apps));
    figure(out, u"alerts, whole company"_s,
           measure(runs, [&] { sink = sink + Alerts::all(db, std::nullopt).size(); }),
           u"[%1 alerts]"_s.arg(Alerts::all(db, std::nullopt).size()));
    figure(out, u"hub figures, active projects"_s,
           measure(runs,
                   [&] {
                       for (const Rec &p : active)
                           sink = sink + ProjectFigures::of(db, p).billed;
                   }),
           u"[%1 projects]  target < %2 ms"_s.arg(active.size()).arg(kHubTargetMs));
}
