// The window by keyboard: the rail as one stop with its keys, F6 between regions, the Go
// menu's names and scrolling, the focus after New, Add Line and Delete, the help window's
// keys and place, the focus ring on screen, and menus after a PDF is saved.
#include "testmain.h"

#include "catalog/modules.h"
#include "documents/pdfwrite.h"
#include "look/applook.h"
#include "look/contrast.h"
#include "look/focusring.h"
#include "look/fwui.h"
#include "look/helpview.h"
#include "look/tones.h"
#include "shell/focuscycle.h"
#include "shell/headerbar.h"
#include "shell/linecells.h"
#include "shell/lineseditor.h"
#include "shell/menus.h"
#include "shell/modulearea.h"
#include "shell/moduleextras.h"
#include "shell/modulerail.h"
#include "shell/nav.h"
#include "shell/recordeditor.h"
#include "shell/recordscreen.h"
#include "shell/recordscreenmodel.h"
#include "shell/tlmain.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QTableView>
#include <QtWidgets/QTreeView>

using namespace Qt::StringLiterals;

namespace {

bool showActive(QWidget *w, QSize size = {1400, 900})
{
    w->resize(size);
    w->show();
    QApplication::setActiveWindow(w);
    return QTest::qWaitForWindowActive(w);
}

// Lets the coalesced refresh and any queued focus move run.
void settle()
{
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

QMenu *goMenu(TLWindow &w)
{
    for (QAction *a : w.menuBar()->actions())
        if (a->text().remove(u'&') == u"Go"_s)
            return a->menu();
    return nullptr;
}

// The module id of the rail entry that has the focus, or empty.
QString focusedEntry()
{
    auto *b = qobject_cast<RailButton *>(QApplication::focusWidget());
    return b ? b->module().id : QString();
}

} // namespace

class KeyboardTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        FWUI::shared().setTheme(FWTheme::all().first().id);
        FWUI::shared().setZoom(1.0);
    }

    void railIsOneTabStop()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        TLWindow w(db, nav);
        QVERIFY(showActive(&w));
        ModuleRail *rail = w.main()->rail();
        QVERIFY(rail->moduleIds().size() > 20);
        int stops = 0;
        for (RailButton *b : rail->findChildren<RailButton *>())
            stops += (b->focusPolicy() & Qt::TabFocus) ? 1 : 0;
        QCOMPARE(stops, 1);
        rail->focusRail();
        QCOMPARE(focusedEntry(), nav.module());
        // One Tab leaves the rail, whatever its length.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(QApplication::focusWidget());
        QVERIFY(!rail->isAncestorOf(QApplication::focusWidget()));
    }

    void railKeys_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QStringList>("keys");   // key names, or "type:" and the letters
        QTest::addColumn<int>("expected");       // a position in the rail; -1 for the last
        QTest::addColumn<QString>("expectedId"); // or a module id, when not empty
        QTest::newRow("down") << u"hub"_s << QStringList{u"Down"_s} << 1 << QString();
        QTest::newRow("up at the top stays") << u"hub"_s << QStringList{u"Up"_s} << 0 << QString();
        QTest::newRow("end") << u"hub"_s << QStringList{u"End"_s} << -1 << QString();
        QTest::newRow("end then home") << u"hub"_s << QStringList{u"End"_s, u"Home"_s} << 0 << QString();
        QTest::newRow("down at the bottom stays")
            << u"hub"_s << QStringList{u"End"_s, u"Down"_s} << -1 << QString();
        QTest::newRow("type a title's start") << u"hub"_s << QStringList{u"type:tea"_s} << 0 << u"team"_s;
        QTest::newRow("type in capitals") << u"hub"_s << QStringList{u"type:PAY"_s} << 0 << u"payapps"_s;
        QTest::newRow("nothing matches stays") << u"hub"_s << QStringList{u"type:zzq"_s} << 0 << QString();
    }
    void railKeys()
    {
        QFETCH(QString, start);
        QFETCH(QStringList, keys);
        QFETCH(int, expected);
        QFETCH(QString, expectedId);
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        nav.setModule(start);
        TLWindow w(db, nav);
        QVERIFY(showActive(&w));
        ModuleRail *rail = w.main()->rail();
        rail->focusRail();
        for (const QString &k : keys) {
            if (k.startsWith(u"type:"_s))
                QTest::keyClicks(QApplication::focusWidget(), k.mid(5));
            else
                QTest::keyClick(QApplication::focusWidget(), Qt::Key(QKeySequence::fromString(k)[0].key()));
        }
        const QStringList ids = rail->moduleIds();
        const QString want =
            !expectedId.isEmpty() ? expectedId : ids.at(expected < 0 ? ids.size() - 1 : expected);
        QCOMPARE(focusedEntry(), want);
        // The entry with the keyboard is the rail's Tab stop from now on, and Enter opens it.
        QVERIFY(rail->button(want)->focusPolicy() & Qt::TabFocus);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(nav.module(), want);
    }

    void f6CyclesRegions()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        nav.setModule(u"contacts"_s);
        TLWindow w(db, nav);
        QVERIFY(showActive(&w));
        settle();
        TLMain *m = w.main();
        m->rail()->focusRail();
        const QList<QWidget *> order = {m->header(), m->area(), m->rail()};
        for (QWidget *region : order) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
            QVERIFY2(region->isAncestorOf(QApplication::focusWidget()),
                     QApplication::focusWidget()->metaObject()->className());
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, Qt::ShiftModifier);
        QVERIFY(m->area()->isAncestorOf(QApplication::focusWidget()));
    }

    void goMenuKeepsAmpersand()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        TLWindow w(db, nav);
        QMenu *go = goMenu(w);
        QVERIFY(go);
        const QList<QAction *> actions = go->actions();
        QAccessibleInterface *menu = QAccessible::queryAccessibleInterface(go);
        QVERIFY(menu);
        int checked = 0;
        for (int i = 0; i < Modules::all().size(); ++i) {
            const QString title = Modules::all().at(i).title;
            if (!title.contains(u'&'))
                continue;
            ++checked;
            QCOMPARE(actions.at(i)->text(), Menus::menuText(title));
            QCOMPARE(menu->child(i)->text(QAccessible::Name), title);
        }
        QVERIFY2(checked >= 2, "the module table should have titles with an ampersand");
    }

    void goMenuScrollsRail()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        TLWindow w(db, nav);
        QVERIFY(showActive(&w, {1200, 520}));
        settle();
        ModuleRail *rail = w.main()->rail();
        const QString last = rail->moduleIds().last();
        auto inView = [&] {
            RailButton *b = rail->button(last);
            const QRect r(b->mapTo(rail->viewport(), QPoint(0, 0)), b->size());
            return rail->viewport()->rect().contains(r);
        };
        QVERIFY(!inView());
        for (QAction *a : goMenu(w)->actions())
            if (a->text() == Menus::menuText(Modules::get(last)->title))
                a->trigger();
        settle();
        QCOMPARE(nav.module(), last);
        QVERIFY(inView());
    }

    void newRecordFocusesFirstField()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        RecordScreen screen({db, nav, *Modules::get(u"contacts")});
        QVERIFY(showActive(&screen));
        screen.newRecord();
        screen.refresh();
        settle();
        QVERIFY(screen.editor());
        QWidget *focus = QApplication::focusWidget();
        QVERIFY(focus && screen.editor()->isAncestorOf(focus));
        QVERIFY2(focus->inherits("QLineEdit"), focus->metaObject()->className());
    }

    void deleteMovesToNextRow_data()
    {
        QTest::addColumn<int>("deleted");
        QTest::addColumn<QString>("next");
        QTest::newRow("first goes to the new first") << 0 << u"Bea"_s;
        QTest::newRow("middle goes to the one after") << 1 << u"Cy"_s;
        QTest::newRow("last goes to the one before") << 2 << u"Bea"_s;
    }
    void deleteMovesToNextRow()
    {
        QFETCH(int, deleted);
        QFETCH(QString, next);
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        for (const QString &name : {u"Ann"_s, u"Bea"_s, u"Cy"_s})
            db.add(u"contact"_s, {}, {}, {{u"name"_s, name}});
        RecordScreen screen({db, nav, *Modules::get(u"contacts")});
        QVERIFY(showActive(&screen));
        nav.setSelected(u"contacts"_s, screen.model()->rowRecord(deleted).id);
        screen.refresh();
        settle();
        QVERIFY(screen.editor());
        QWidget *inside = FocusCycle::firstIn(screen.editor());
        QVERIFY(inside);
        inside->setFocus();
        screen.editor()->deleteRecord();
        screen.refresh();
        settle();
        QVERIFY(screen.editor());
        QCOMPARE(db.label(nav.selected(u"contacts"_s)), next);
        QCOMPARE(QApplication::focusWidget(), screen.list());
    }

    void addLineFocusesItsFirstCell()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Harbor Lofts"_s}});
        const Rec est = db.add(u"estimate"_s, p.id, {}, {{u"name"_s, u"Base bid"_s}});
        std::unique_ptr<QWidget> holder(
            makeLinesEditor(db, nav, *Modules::get(u"estimates"), est.id, nullptr));
        auto *lines = qobject_cast<LinesEditor *>(holder.get());
        QVERIFY(lines);
        QVERIFY(showActive(lines, {900, 400}));
        for (int n = 1; n <= 2; ++n) {
            lines->add();
            settle();
            QCOMPARE(lines->lineIds().size(), n);
            QWidget *focus = QApplication::focusWidget();
            QVERIFY(focus && lines->grid()->isAncestorOf(focus));
            // The box open is the new (last) line's first cell.
            QCOMPARE(lines->grid()->currentIndex().row(), n - 1);
            QCOMPARE(lines->grid()->currentIndex().column(), 0);
        }
    }

    void helpPlacement_data()
    {
        QTest::addColumn<QRect>("parent");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("expected");
        const QRect screen(0, 0, 1600, 1000);
        QTest::newRow("centred over the window")
            << QRect(100, 100, 1200, 800) << QSize(900, 640) << QRect(250, 180, 900, 640);
        QTest::newRow("window at the right edge")
            << QRect(1300, 100, 600, 400) << QSize(900, 640) << QRect(700, 0, 900, 640);
        QTest::newRow("window above the screen")
            << QRect(100, -500, 600, 400) << QSize(900, 640) << QRect(0, 0, 900, 640);
        QTest::newRow("bigger than the screen")
            << QRect(0, 0, 800, 600) << QSize(2000, 1400) << QRect(0, 0, 1600, 1000);
    }
    void helpPlacement()
    {
        QFETCH(QRect, parent);
        QFETCH(QSize, size);
        QFETCH(QRect, expected);
        QCOMPARE(FWHelpView::placement(parent, size, QRect(0, 0, 1600, 1000)), expected);
    }

    void focusRingOnScreen_data()
    {
        QTest::addColumn<QString>("finish");
        QTest::addColumn<double>("zoom");
        for (const FWTheme &t : FWTheme::all())
            for (double zoom : {1.0, 1.4})
                QTest::addRow("%s at %d%%", qPrintable(t.id), int(zoom * 100)) << t.id << zoom;
    }
    void focusRingOnScreen()
    {
        QFETCH(QString, finish);
        QFETCH(double, zoom);
        FWUI::shared().setTheme(finish);
        FWUI::shared().setZoom(zoom);
        AppLook::follow();
        QWidget window;
        window.setAutoFillBackground(true);
        auto *field = new QLineEdit(&window);
        field->setGeometry(40, 40, 200, 30);
        auto *other = new QLineEdit(&window);
        other->setGeometry(40, 120, 200, 30);
        QVERIFY(showActive(&window, {300, 200}));
        field->setFocus();
        settle();
        const QImage img = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QColor back = window.palette().color(QPalette::Window);
        const QColor ring = FWTones::current().focus;
        const int width = FocusRing::width();
        QVERIFY(width >= 2);
        // Above the middle of the field, every row of the ring's width is the ring's colour.
        int ringRows = 0;
        for (int y = 40 - width - 1; y < 40; ++y) {
            const QColor c(img.pixel(140, y));
            if (Contrast::ratio(c, ring) < 1.1)
                ++ringRows;
        }
        QVERIFY2(ringRows >= 2, qPrintable(QString::number(ringRows)));
        QVERIFY(Contrast::ratio(ring, back) >= Contrast::kNonText);
        // The other field has no ring.
        QVERIFY(Contrast::ratio(QColor(img.pixel(140, 117)), ring) > 1.5);
    }

    void menusKeepTheirFontAfterAPdf()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        TLWindow w(db, nav);
        QMenu menu;
        menu.addAction(u"Export Company as CSV Folder…"_s);
        QComboBox box;
        box.addItem(u"Gunmetal Blue"_s);
        auto measure = [&] {
            return QList<int>{QFontInfo(menu.font()).pixelSize(), menu.sizeHint().width(),
                              QFontInfo(box.font()).pixelSize(), box.sizeHint().width(),
                              QFontInfo(QApplication::font()).pixelSize()};
        };
        const QList<int> before = measure();
        QCOMPARE(before.first(), FWUI::shared().px(13));
        QTemporaryDir dir;
        QVERIFY(PDFOut::saveHTML(db, u"<h1>Pay App 3</h1><p>Work completed to date.</p>"_s,
                                 dir.filePath(u"a.pdf"_s)));
        QCOMPARE(measure(), before);
    }
};

TRESTLE_TEST(KeyboardTests);
#include "keyboardtests.moc"
