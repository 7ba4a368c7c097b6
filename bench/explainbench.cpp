#include "explainbench.h"

#include "benchutil.h"

#include "screens/breakdownview.h"
#include "shell/nav.h"
#include "store/db.h"
#include "workflows/breakdown.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QTableWidget>

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

    // Opening: the window is made once per main window, then shows each figure asked for.
    Nav nav;
    QWidget main;
    main.resize(1200, 800);
    main.show();
    BreakdownView *view = BreakdownView::show(&main, db, nav, {u"hub.cost"_s, {}, {}});
    QApplication::processEvents();
    Bench::figure(out, n, u"largest breakdown, opened in its window"_s, note.arg(kOpenTargetMs), [&] {
        view->open(ref);
        QApplication::processEvents();
        view->back();
    });
    if (view->table()->rowCount() < 0)
        out << "breakdown window lost its rows" << Qt::endl;
}
