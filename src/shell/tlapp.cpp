#include "tlapp.h"
#include "keyring.h"

#include "firstrun.h"
#include "modulearea.h"
#include "nav.h"
#include "singleinstance.h"
#include "snapshotdialog.h"
#include "tlmain.h"
#include "tlwindow.h"

#include "catalog/modules.h"
#include "documents/samplefiles.h"
#include "interchange/sample.h"
#include "look/fwui.h"
#include "store/db.h"
#include "store/server/serverlink.h"

#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace TLApp {

bool wantsWindow(int argc, char **argv)
{
    return argc == 1 || std::strcmp(argv[1], "--screenshot") == 0 || std::strcmp(argv[1], "--open") == 0;
}

std::function<void()> &helpPagesHook()
{
    static std::function<void()> hook;
    return hook;
}

std::function<void(QWidget *, const QString &)> &helpWindowHook()
{
    static std::function<void(QWidget *, const QString &)> hook;
    return hook;
}

QList<std::function<void()>> &appReadyHooks()
{
    static QList<std::function<void()>> hooks;
    return hooks;
}

void showHelp(QWidget *parent, const QString &pageId)
{
    if (helpWindowHook())
        helpWindowHook()(parent, pageId);
    else
        QApplication::beep();
}

void loadSample(DB &db)
{
    Sample::create(db, SampleDocs::files());
}

void ensureCompany(DB &db)
{
    // Only "no company at all" counts, so a deleted sample comes back on the next start;
    // a file that did not open cleanly, or opened only for reading, never gets one.
    // On a company server an empty copy only means the server has not been heard from yet.
    if (db.isOpen() && !db.readOnly() && db.count(u"company"_s) == 0 && !ServerLink::isConnected())
        loadSample(db);
}

ScreenshotRequest parseScreenshot(const QStringList &args)
{
    ScreenshotRequest out;
    QStringList positional;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (arg == u"--finish" || arg == u"--zoom" || arg == u"--size") {
            if (i + 1 >= args.size()) {
                out.error = arg + u" needs a value."_s;
                return out;
            }
            const QString value = args.at(++i);
            if (arg == u"--finish") {
                for (const FWTheme &t : FWTheme::all())
                    if (t.id.compare(value, Qt::CaseInsensitive) == 0 ||
                        t.name.compare(value, Qt::CaseInsensitive) == 0)
                        out.finish = t.id;
                if (out.finish.isEmpty()) {
                    QStringList ids;
                    for (const FWTheme &t : FWTheme::all())
                        ids << t.id;
                    out.error = u"Unknown finish \""_s + value + u"\"; one of: "_s + ids.join(u", "_s) + u'.';
                    return out;
                }
            } else if (arg == u"--size") {
                const QStringList parts = value.split(u'x');
                const int w = parts.value(0).toInt();
                const int h = parts.value(1).toInt();
                if (parts.size() != 2 || w < 200 || h < 200) {
                    out.error =
                        u"The size is WIDTHxHEIGHT in pixels, at least 200x200, not \""_s + value + u"\"."_s;
                    return out;
                }
                out.size = QSize(w, h);
            } else {
                bool ok = false;
                const double percent = QString(value).remove(u'%').trimmed().toDouble(&ok);
                if (!ok || !std::isfinite(percent) || percent <= 0) {
                    out.error = u"The zoom is a percentage such as 150, not \""_s + value + u"\"."_s;
                    return out;
                }
                out.zoom = percent / 100;
            }
        } else {
            positional << arg;
        }
    }
    if (positional.value(0) != u"--screenshot" || positional.size() < 2) {
        out.error = u"Usage: --screenshot FILE [MODULE [RECORD]] [--finish NAME] [--zoom PCT] [--size WxH]"_s;
        return out;
    }
    if (positional.size() > 4) {
        out.error = u"Too many arguments after --screenshot."_s;
        return out;
    }
    out.file = positional.at(1);
    out.module = positional.value(2);
    out.record = positional.value(3);
    if (!out.module.isEmpty() && !Modules::get(out.module))
        out.error = u"Unknown module \""_s + out.module + u"\"."_s;
    return out;
}

QString findRecord(const DB &db, const ModuleDef &m, const QString &idOrNumber)
{
    if (idOrNumber.isEmpty())
        return {};
    if (const Rec *rec = db.find(idOrNumber); rec && rec->kind == m.kind)
        return rec->id;
    QString found;
    db.visit(m.kind, {}, [&](const Rec &r) {
        if (found.isEmpty() && r.f.value(u"number") == idOrNumber)
            found = r.id;
    });
    return found;
}

int run(int &argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(u"Fenwright"_s);
    QApplication::setApplicationName(u"Trestle"_s);
    QApplication::setApplicationDisplayName(u"Fenwright Trestle"_s);
    QApplication::setApplicationVersion(QStringLiteral(TRESTLE_VERSION));
    // The id names the installed .desktop file: Wayland finds the window's icon and menu entry by it.
    QGuiApplication::setDesktopFileName(u"com.fenwright.Trestle"_s);
    QApplication::setWindowIcon(QIcon(u":/com.fenwright.Trestle.svg"_s));
    for (const std::function<void()> &ready : std::as_const(appReadyHooks()))
        ready();
    // One window per data folder: a second start brings the first to the front.
    SingleInstance single(DB::appFolder());
    QString claimMessage;
    switch (single.claim(&claimMessage)) {
    case SingleInstance::Claim::Raised:
        QTextStream(stderr) << claimMessage << Qt::endl;
        // A picture was asked for and none was taken.
        return app.arguments().value(1) == u"--screenshot" ? 1 : 0;
    case SingleInstance::Claim::HeldElsewhere:
        QTextStream(stderr) << claimMessage << Qt::endl;
        if (QGuiApplication::platformName() != u"offscreen")
            QMessageBox::information(nullptr, u"Trestle is already open"_s, claimMessage);
        return 1;
    case SingleInstance::Claim::NoLock:
        // A folder that cannot take a lock cannot take records either; the store says so.
    case SingleInstance::Claim::Mine: break;
    }
    if (helpPagesHook())
        helpPagesHook()();
    // A company server's password kept in the keyring is handed over before the store connects.
    if (ServerLink::isConnected())
        ServerLink::setPassword(Keyring::password(ServerLink::conninfo()));
    DB &db = DB::shared();
    // The day's snapshot holds the store as it was before this run wrote anything.
    if (app.arguments().value(1) != u"--screenshot" && db.isOpen())
        SnapshotActions::startOfDay(db);
    const QStringList args = app.arguments();
    const bool screenshot = args.size() >= 2 && args.at(1) == u"--screenshot";
    // A person's first window asks how to begin; a picture still shows the sample.
    const bool firstRun = !screenshot && FirstRunSheet::wanted(db);
    if (!firstRun)
        ensureCompany(db);
    Nav &nav = Nav::shared();

    ScreenshotRequest shot;
    // The look and project a screenshot changes are put back, so the user's own stay.
    const QString keptFinish = FWUI::shared().theme().id;
    const double keptZoom = FWUI::shared().zoom();
    const QString keptProject = nav.projectID();
    if (screenshot) {
        shot = parseScreenshot(args);
        QString recordId;
        if (shot.error.isEmpty() && !shot.record.isEmpty()) {
            recordId =
                shot.module.isEmpty() ? QString() : findRecord(db, *Modules::get(shot.module), shot.record);
            if (recordId.isEmpty())
                shot.error = u"No record \""_s + shot.record + u"\" in module \""_s + shot.module + u"\"."_s;
        }
        if (!shot.error.isEmpty()) {
            QTextStream(stderr) << shot.error << Qt::endl;
            return 2;
        }
        if (!shot.module.isEmpty())
            nav.setModule(shot.module);
        if (!recordId.isEmpty()) {
            const Rec *rec = db.find(recordId);
            if (!rec->project.isEmpty())
                nav.setProjectID(rec->project);
            nav.setSelected(shot.module, recordId);
        }
        if (!shot.finish.isEmpty())
            FWUI::shared().setTheme(shot.finish);
        if (shot.zoom)
            FWUI::shared().setZoom(*shot.zoom);
    }

    // Opening at a screen: a record of the module, or the project a project's screen shows.
    if (args.value(1) == u"--open") {
        const ModuleDef *m = Modules::get(args.value(2));
        if (!m || args.size() > 4) {
            QTextStream(stderr) << u"Usage: --open MODULE [RECORD or PROJECT NUMBER]"_s << Qt::endl;
            return 2;
        }
        nav.setModule(m->id);
        if (const QString which = args.value(3); !which.isEmpty()) {
            const QString recordId = findRecord(db, *m, which);
            const QString projectId =
                recordId.isEmpty() ? findRecord(db, *Modules::get(u"projects"_s), which) : QString();
            if (recordId.isEmpty() && projectId.isEmpty()) {
                QTextStream(stderr) << u"No record or project "
                                       "_s + which + u"
                                       " for "_s +
                                           m->title + u'.'
                                    << Qt::endl;
                return 2;
            }
            const Rec *rec = db.find(recordId.isEmpty() ? projectId : recordId);
            nav.setProjectID(rec->kind == u"project" ? rec->id : rec->project);
            if (!recordId.isEmpty())
                nav.setSelected(m->id, recordId);
        }
    }

    TLWindow window(db, nav);
    QObject::connect(&single, &SingleInstance::raiseRequested, &window, &TLWindow::bringToFront);
    if (shot.size.isValid())
        window.resize(shot.size);
    window.show();
    if (firstRun)
        QTimer::singleShot(0, &window, [&db, &nav, &window] {
            auto *sheet = new FirstRunSheet(db, nav, &window);
            sheet->setAttribute(Qt::WA_DeleteOnClose);
            sheet->open();
        });
    if (screenshot) {
        const QString file = shot.file;
        // Two turns: the first builds and lays out, the second has painted.
        QTimer::singleShot(300, &window, [&window, file] {
            window.main()->refresh();
            QTimer::singleShot(300, &window,
                               [&window, file] { QApplication::exit(window.grab().save(file) ? 0 : 1); });
        });
    }
    const int result = app.exec();
    if (screenshot) {
        FWUI::shared().setTheme(keptFinish);
        FWUI::shared().setZoom(keptZoom);
        nav.setProjectID(keptProject);
    }
    return result;
}

} // namespace TLApp
