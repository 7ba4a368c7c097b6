// A record editor beside its list in a 1600-pixel window, at 100 % and 140 %:
// nothing scrolls sideways, every editor control is reachable (its Print button
// included), and the list keeps room to read.
#include "testmain.h"

#include "interchange/sample.h"
#include "look/fwui.h"
#include "screens/screens.h"
#include "shell/nav.h"
#include "shell/printbutton.h"
#include "shell/recordeditor.h"
#include "shell/recordscreen.h"
#include "shell/recordscreenmodel.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTreeView>

using namespace Qt::StringLiterals;

class EditorFitTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Screens::registerAll(); }
    void cleanup() { FWUI::shared().setZoom(1.0); }

    void editorFitsBesideItsList_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<bool>("fresh");
        QTest::addColumn<double>("zoom");
        for (double zoom : {1.0, 1.4}) {
            const QString at = u" at "_s + QString::number(qRound(zoom * 100)) + u'%';
            QTest::newRow(qPrintable(u"new estimate"_s + at)) << u"estimates"_s << true << zoom;
            QTest::newRow(qPrintable(u"estimate with lines"_s + at)) << u"estimates"_s << false << zoom;
            QTest::newRow(qPrintable(u"project"_s + at)) << u"projects"_s << false << zoom;
            QTest::newRow(qPrintable(u"contact"_s + at)) << u"contacts"_s << false << zoom;
        }
    }
    void editorFitsBesideItsList()
    {
        QFETCH(QString, module);
        QFETCH(bool, fresh);
        QFETCH(double, zoom);
        FWUI::shared().setZoom(zoom);
        DB db;
        Nav nav;
        Sample::create(db);
        const QList<Rec> projects = db.list(u"project"_s, {});
        QVERIFY(!projects.isEmpty());
        nav.setProjectID(projects.first().id);
        nav.setModule(module);
        TLWindow window(db, nav);
        window.resize(1600, 1000);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto *screen = window.findChild<RecordScreen *>();
        QVERIFY(screen);
        if (fresh) {
            screen->newRecord();
        } else {
            QVERIFY(screen->model()->rowCount() > 0);
            screen->list()->setCurrentIndex(screen->model()->index(0, 0));
        }
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        QCOMPARE(window.width(), 1600);
        RecordEditor *editor = screen->editor();
        QVERIFY(editor);
        QVERIFY(editor->isVisible());

        // Nothing scrolls sideways, and nothing is cut where sideways scrolling is off.
        for (QScrollArea *area : window.findChildren<QScrollArea *>()) {
            if (!area->isVisible() || !area->widget())
                continue;
            QVERIFY2(area->horizontalScrollBar()->maximum() == 0,
                     qPrintable(area->objectName() + u" scrolls sideways by "_s +
                                QString::number(area->horizontalScrollBar()->maximum())));
            if (area->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff)
                QVERIFY2(area->widget()->minimumSizeHint().width() <= area->viewport()->width(),
                         qPrintable(u"content needs "_s +
                                    QString::number(area->widget()->minimumSizeHint().width()) + u" in "_s +
                                    QString::number(area->viewport()->width())));
        }
        // The editor's own Print button shows whole inside the window.
        auto *print = editor->findChild<PrintButton *>();
        QVERIFY(print);
        const QRect at(print->mapTo(&window, QPoint(0, 0)), print->size());
        QVERIFY2(window.rect().contains(at), qPrintable(u"Print at x "_s + QString::number(at.left())));
        QVERIFY(print->width() >= print->sizeHint().width());
        // The list beside it keeps room for a name and an amount.
        QVERIFY2(screen->list()->width() >= FWUI::shared().px(280),
                 qPrintable(u"list "_s + QString::number(screen->list()->width())));
    }
};

TRESTLE_TEST(EditorFitTests);
#include "editorfittests.moc"
