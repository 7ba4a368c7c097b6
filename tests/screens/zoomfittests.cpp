// At the largest zoom every screen still fits the window's first size: a screen wider
// than the window scrolls inside the module area, and the header turns compact before
// its wide form can widen the window.
#include "testmain.h"

#include "interchange/sample.h"
#include "look/fwui.h"
#include "screens/screens.h"
#include "shell/modulearea.h"
#include "shell/nav.h"
#include "shell/tlwindow.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

class ZoomFitTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Screens::registerAll(); }

    void zoomKeepsTheWindowSize_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<double>("zoom");
        QTest::newRow("hub") << u"hub"_s << 2.0;
        QTest::newRow("record list with editor") << u"projects"_s << 2.0;
        QTest::newRow("pay apps") << u"payapps"_s << 2.0;
        QTest::newRow("reports") << u"reports"_s << 2.0;
        QTest::newRow("plans") << u"plans"_s << 2.0;
        QTest::newRow("schedule") << u"schedule"_s << 2.0;
        QTest::newRow("schedule at a middle step") << u"schedule"_s << 1.5;
    }
    void zoomKeepsTheWindowSize()
    {
        QFETCH(QString, module);
        QFETCH(double, zoom);
        FWUI &ui = FWUI::shared();
        const double before = ui.zoom();
        ui.setZoom(zoom);
        {
            DB db;
            Nav nav;
            Sample::create(db);
            const QList<Rec> projects = db.list(u"project"_s, {});
            QVERIFY(!projects.isEmpty());
            nav.setProjectID(projects.first().id);
            nav.setModule(module);
            TLWindow window(db, nav);
            const QSize first = window.size();
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            QCoreApplication::processEvents();
            QVERIFY2(window.minimumSizeHint().width() <= first.width(),
                     qPrintable(u"needs "_s + QString::number(window.minimumSizeHint().width())));
            QCOMPARE(window.width(), first.width());
        }
        ui.setZoom(before);
    }
};

TRESTLE_TEST(ZoomFitTests);
#include "zoomfittests.moc"
