#include "tlapp.h"

#include "modulearea.h"
#include "nav.h"
#include "tlmain.h"
#include "tlwindow.h"

#include "documents/samplefiles.h"
#include "interchange/sample.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <cstring>

using namespace Qt::StringLiterals;

namespace TLApp {

bool wantsWindow(int argc, char **argv)
{
    return argc == 1 || std::strcmp(argv[1], "--screenshot") == 0;
}

std::function<void()> &helpPagesHook()
{
    static std::function<void()> hook;
    return hook;
}

std::function<void(QWidget *)> &helpWindowHook()
{
    static std::function<void(QWidget *)> hook;
    return hook;
}

void showHelp(QWidget *parent)
{
    if (helpWindowHook())
        helpWindowHook()(parent);
    else
        QApplication::beep();
}

void loadSample(DB &db)
{
    Sample::create(db, SampleDocs::files());
}

void ensureCompany(DB &db)
{
    // Only "no company at all" counts, so a deleted sample comes back on the next start.
    if (db.count(u"company"_s) == 0)
        loadSample(db);
}

int run(int &argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(u"Fenwright"_s);
    QApplication::setApplicationName(u"Trestle"_s);
    QApplication::setApplicationDisplayName(u"Fenwright Trestle"_s);
    QApplication::setApplicationVersion(QStringLiteral(TRESTLE_VERSION));
    if (helpPagesHook())
        helpPagesHook()();
    DB &db = DB::shared();
    ensureCompany(db);
    Nav &nav = Nav::shared();

    const QStringList args = app.arguments();
    const bool screenshot = args.size() >= 3 && args.at(1) == u"--screenshot";
    if (screenshot && args.size() >= 4)
        nav.setModule(args.at(3));

    TLWindow window(db, nav);
    window.show();
    if (screenshot) {
        const QString file = args.at(2);
        // Two turns: the first builds and lays out, the second has painted.
        QTimer::singleShot(300, &window, [&window, file] {
            window.main()->refresh();
            QTimer::singleShot(300, &window,
                               [&window, file] { QApplication::exit(window.grab().save(file) ? 0 : 1); });
        });
    }
    return app.exec();
}

} // namespace TLApp
