#include "paybench.h"

#include "catalog/modules.h"
#include "screens/payappdetail.h"
#include "screens/payappscreen.h"
#include "shell/nav.h"
#include "store/db.h"

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr double kRefreshTargetMs = 16;

} // namespace

void runPayBench(const QString &path, int runs, QTextStream &out)
{
    DB db(path);
    // The longest chain of applications is the dearest: each one's line 7 walks the earlier ones.
    QString project;
    qsizetype most = -1;
    for (const Rec &p : db.list(u"project"_s)) {
        const qsizetype n = db.count(u"pay_app"_s, {.project = p.id});
        if (n > most) {
            most = n;
            project = p.id;
        }
    }
    if (project.isEmpty()) {
        out << "pay-app screen refresh: no project in the reference store" << Qt::endl;
        return;
    }
    Nav nav;
    nav.setProjectID(project);
    nav.setModule(u"payapps"_s);
    PayAppScreen screen(ScreenContext{db, nav, *Modules::get(u"payapps")});
    screen.resize(1400, 900);
    screen.show();
    QApplication::processEvents();
    const Rec app = db.get(screen.detail() ? screen.detail()->payAppId() : QString()).value_or(Rec());
    const qsizetype lines = db.count(u"sov_line"_s, {.project = project});

    std::vector<double> times;
    for (int i = 0; i < std::max(runs, 20); ++i) {
        if (!app.id.isEmpty())
            db.save(app);
        QElapsedTimer t;
        t.start();
        screen.refresh();
        times.push_back(t.nsecsElapsed() / 1e6);
        QApplication::processEvents();
    }
    std::sort(times.begin(), times.end());
    out << "pay-app screen refresh: " << QString::number(times.at(times.size() / 2), 'f', 2)
        << " ms  target < " << kRefreshTargetMs << "  [" << most << " applications, " << lines
        << " schedule lines]" << Qt::endl;
}
