#include "hubbench.h"

#include "benchutil.h"

#include "catalog/modules.h"
#include "screens/hubscreen.h"
#include "screens/reportsscreen.h"
#include "shell/nav.h"
#include "store/db.h"

#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

namespace {

constexpr double kHubRefreshTargetMs = 50;

} // namespace

void runHubBench(const QString &path, int runs, QTextStream &out)
{
    DB db(path);
    const int n = std::max(runs, 20);
    const QString note = u"target < %1 ms  [%2 projects, %3 records]"_s;

    // Every active project, then the chosen one: the refresh after a save recomputes all figures.
    {
        Nav nav;
        nav.setProjectID(QString());
        HubScreen screen(ScreenContext{db, nav, *Modules::get(u"hub")});
        screen.resize(1400, 900);
        screen.show();
        QApplication::processEvents();
        const qsizetype listed = HubScreen::listed(db, nav).size();
        Bench::figure(out, n, u"hub refresh"_s, note.arg(kHubRefreshTargetMs).arg(listed).arg(db.size()),
                      [&] { screen.refresh(); });
        const QList<Rec> projects = db.list(u"project"_s);
        if (!projects.isEmpty()) {
            nav.setProjectID(projects.first().id);
            screen.refresh();
            Bench::figure(out, n, u"hub refresh, one project chosen"_s,
                          note.arg(kHubRefreshTargetMs).arg(1).arg(db.size()), [&] { screen.refresh(); });
        }
        nav.setProjectID(QString());
    }

    {
        Nav nav;
        ReportsScreen screen(ScreenContext{db, nav, *Modules::get(u"reports")});
        screen.resize(1400, 900);
        screen.show();
        QApplication::processEvents();
        // A save in one project before each refresh: that project's figures are worked out again.
        const Rec touched = db.list(u"project"_s).value(0);
        Bench::figure(out, n, u"reports refresh after a save"_s,
                      u"[%1 projects, one worked out again]"_s.arg(db.count(u"project"_s)), [&] {
                          db.save(touched);
                          screen.refresh();
                      });
        // A record outside every project may be read by any: all of them are worked out again.
        const Rec shared = db.list(u"contact"_s).value(0);
        Bench::figure(out, n, u"reports refresh after a company-wide save"_s,
                      u"[%1 projects, all of them]"_s.arg(db.count(u"project"_s)), [&] {
                          db.save(shared);
                          screen.refresh();
                      });
        Bench::figure(out, n, u"reports refresh, records unchanged"_s,
                      u"[%1 projects, all of them]"_s.arg(db.count(u"project"_s)), [&] { screen.refresh(); });
    }
}
