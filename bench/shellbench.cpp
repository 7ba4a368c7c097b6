#include "shellbench.h"

#include "shell/modulearea.h"
#include "shell/nav.h"
#include "shell/tlmain.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEvent>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr double kFirstPaintTargetMs = 2000;
constexpr double kRefreshTargetMs = 16;

// Notes the first paint of the watched widget.
class PaintWatch : public QObject
{
public:
    bool painted = false;
    bool eventFilter(QObject *o, QEvent *e) override
    {
        if (e->type() == QEvent::Paint)
            painted = true;
        return QObject::eventFilter(o, e);
    }
};

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.at(v.size() / 2);
}

void figure(QTextStream &out, const QString &name, double ms, double target, const QString &note = {})
{
    out << name << ": " << QString::number(ms, 'f', 2) << " ms  target < " << target
        << (note.isEmpty() ? "" : "  ") << note << Qt::endl;
}

} // namespace

void runShellBench(const QString &path, int runs, QTextStream &out)
{
    std::vector<double> starts;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        auto db = std::make_unique<DB>(path);
        Nav nav;
        TLWindow w(*db, nav);
        PaintWatch watch;
        w.main()->installEventFilter(&watch);
        w.show();
        while (!watch.painted)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        starts.push_back(t.nsecsElapsed() / 1e6);
    }
    figure(out, u"window start to first paint (open store, build, paint)"_s, median(starts),
           kFirstPaintTargetMs);

    DB db(path);
    for (const QString &module : {u"hub"_s, u"contacts"_s, u"budget"_s}) {
        Nav nav;
        const QList<Rec> projects = db.list(u"project"_s);
        if (!projects.isEmpty())
            nav.setProjectID(projects.last().id);
        nav.setModule(module);
        TLWindow w(db, nav);
        w.show();
        QApplication::processEvents();
        const Rec one = db.list(u"contact"_s).value(0);
        std::vector<double> refreshes;
        for (int i = 0; i < std::max(runs, 20); ++i) {
            db.save(one);
            QElapsedTimer t;
            t.start();
            w.main()->refresh();
            refreshes.push_back(t.nsecsElapsed() / 1e6);
            QApplication::processEvents();
        }
        figure(out, u"refresh after a save"_s, median(refreshes), kRefreshTargetMs,
               u"[module "_s + module + u']');
    }
}
