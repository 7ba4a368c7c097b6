#include "explainbench.h"

#include "benchutil.h"

#include "screens/breakdownview.h"
#include "shell/nav.h"
#include "store/db.h"
#include "workflows/breakdown.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QTableView>

using namespace Qt::StringLiterals;

namespace {

constexpr double kOpenTargetMs = 50;

} // namespace

void runExplainBench(const QString &path, int runs, QTextStream &out)
{
    DB db(path);
    QString busiest;
    qsizetype cards = -1;
    for (const Rec &p : db.list(u"project"_s)) {
        const qsizetype n = db.count(u"timecard"_s, {.project = p.id});
        if (n > cards) {
            cards = n;
            busiest = p.id;
        }
    }
    const FigureRef ref{u"jobcost.actual"_s, busiest, {}};
    const std::optional<Breakdown> b = Explain::explain(db, ref);
    if (!b) {
        out << "breakdown: the reference store has no project" << Qt::endl;
        return;
    }
    const QString note = u"[%1 rows, %2 timecards]  target < %3 ms"_s.arg(b->rows.size()).arg(cards);
    const int n = std::max(runs, 10);
    Bench::figure(out, n, u"largest breakdown, worked out"_s, note.arg(kOpenTargetMs),
                  [&] { (void)Explain::explain(db, ref); });
    Bench::figure(out, n, u"largest breakdown, as text"_s, note.arg(kOpenTargetMs),
                  [&] { (void)Explain::lines(*Explain::explain(db, ref)); });

    // Opening from another figure of the window, as a click on a tile does; only the opening is timed.
    Nav nav;
    QWidget main;
    main.resize(1200, 800);
    main.show();
    const FigureRef start{u"contract.revised"_s, busiest, {}};
    BreakdownView *view = BreakdownView::show(&main, db, nav, start);
    QApplication::processEvents();
    std::vector<double> times;
    for (int k = 0; k < n; ++k) {
        view->back();
        view->open(start);
        QApplication::processEvents();
        QElapsedTimer t;
        t.start();
        view->open(ref);
        QApplication::processEvents();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    Bench::print(out, u"largest breakdown, opened in its window"_s,
                 {times[times.size() / 2], times.front(), times.back()}, note.arg(kOpenTargetMs));
    view->open(ref);
    if (view->table()->model()->rowCount() != b->rows.size())
        out << "breakdown window: " << view->table()->model()->rowCount() << " rows, not " << b->rows.size()
            << Qt::endl;
}
