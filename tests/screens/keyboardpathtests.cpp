// The main path with the keyboard alone: a new company, a project, an estimate with a line,
// the estimate as the budget, a pay application billed, and its G702/G703 saved as a PDF.
// Every step is a key press or typed text sent to whatever has the keyboard.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "screens/screens.h"
#include "shell/fileactions.h"
#include "shell/modulerail.h"
#include "shell/nav.h"
#include "shell/tlmain.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;

namespace {

void settle()
{
    for (int i = 0; i < 4; ++i)
        QCoreApplication::processEvents();
}

// Where a key goes: an open menu, else the widget with the focus. With no window manager here,
// the main window is made active again when a sheet in front of it closes, as a desktop would.
QWidget *target()
{
    if (!QApplication::activeWindow() && !QApplication::topLevelWidgets().isEmpty())
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == u"main"_s && w->isVisible()) {
                QApplication::setActiveWindow(w);
                QCoreApplication::processEvents();
            }
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    return QApplication::focusWidget();
}

QString describe(QWidget *w)
{
    if (!w)
        return u"nothing"_s;
    QString out = QString::fromLatin1(w->metaObject()->className());
    if (auto *b = qobject_cast<QAbstractButton *>(w))
        out += u" \""_s + b->text() + u'"';
    return out;
}

bool key(int k, Qt::KeyboardModifiers mods = {})
{
    QWidget *to = target();
    if (!to)
        return false;
    QTest::keyClick(to, Qt::Key(k), mods);
    settle();
    return true;
}

bool type(const QString &text)
{
    QWidget *to = target();
    if (!to)
        return false;
    QTest::keyClicks(to, text);
    settle();
    return true;
}

// Tab until the focused widget is the button named `text`; false when Tab never reaches it.
bool tabToButton(const QString &text, int limit = 120)
{
    for (int i = 0; i < limit; ++i) {
        auto *b = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
        if (b && b->text() == text)
            return true;
        if (!key(Qt::Key_Tab))
            return false;
    }
    return false;
}

// Tab until the focused widget is a box whose nearest named ancestor (or itself) is `name`.
bool tabToBox(const QString &name, int limit = 120)
{
    for (int i = 0; i < limit; ++i) {
        for (QWidget *w = QApplication::focusWidget(); w; w = w->parentWidget())
            if (w->objectName() == name && qobject_cast<QLineEdit *>(QApplication::focusWidget()))
                return true;
        if (!key(Qt::Key_Tab))
            return false;
    }
    return false;
}

// Opens a module from the rail: F6 until the rail has the keyboard, its title's start, Enter.
bool openFromRail(TLWindow &w, const QString &typed)
{
    for (int i = 0; i < 3 && !w.main()->rail()->isAncestorOf(QApplication::focusWidget()); ++i)
        key(Qt::Key_F6);
    if (!w.main()->rail()->isAncestorOf(QApplication::focusWidget()))
        return false;
    type(typed);
    return key(Qt::Key_Return);
}

} // namespace

class KeyboardPathTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mainPathByKeyboardAlone()
    {
        DateFmt::setToday(QDate(2026, 11, 25));
        Screens::registerAll();
        DB db;
        Nav nav;
        db.createCompany(u"Grand Valley Builders"_s, u"Dana"_s, u"CO"_s);
        nav.setModule(u"hub"_s);
        TLWindow w(db, nav);
        w.resize(1600, 1000);
        w.show();
        QApplication::setActiveWindow(&w);
        QVERIFY(QTest::qWaitForWindowActive(&w));
        settle();
        key(Qt::Key_F6);

        // File ▸ New Company… from the menu bar.
        QTest::keyClick(&w, Qt::Key_F, Qt::AltModifier);
        settle();
        auto *file = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY2(file, "Alt+F opens the File menu");
        for (int i = 0;
             i < 20 && !(file->activeAction() && file->activeAction()->text() == u"New Company…"_s); ++i)
            key(Qt::Key_Down);
        QVERIFY(file->activeAction() && file->activeAction()->text() == u"New Company…"_s);
        key(Qt::Key_Return);
        settle();
        QVERIFY2(qobject_cast<QLineEdit *>(QApplication::focusWidget()),
                 qPrintable(describe(QApplication::focusWidget())));
        type(u"Keyboard Builders"_s);
        key(Qt::Key_Tab);
        type(u"Kim Keys"_s);
        key(Qt::Key_Tab);
        type(u"CO"_s);
        key(Qt::Key_Return);
        QCOMPARE(db.company()->f.value(u"name"), u"Keyboard Builders"_s);

        // Ctrl+N on the hub: a new project, its contract typed.
        QVERIFY(key(Qt::Key_N, Qt::ControlModifier));
        QVERIFY2(qobject_cast<QLineEdit *>(QApplication::focusWidget()),
                 qPrintable(describe(QApplication::focusWidget())));
        type(u"Harbor Lofts"_s);
        key(Qt::Key_Tab);
        key(Qt::Key_Tab);
        type(u"250000"_s);
        key(Qt::Key_Return);
        const QList<Rec> projects = db.list(u"project"_s);
        QCOMPARE(projects.size(), 1);
        QCOMPARE(projects.first().f.value(u"name"), u"Harbor Lofts"_s);
        QCOMPARE(projects.first().f.value(u"contract"), u"25000000"_s);
        QCOMPARE(nav.projectID(), projects.first().id);

        // An estimate: Ctrl+N puts the keyboard in its first field; Add Line in the line's first cell.
        QVERIFY(openFromRail(w, u"est"_s));
        QCOMPARE(nav.module(), u"estimates"_s);
        key(Qt::Key_N, Qt::ControlModifier);
        QVERIFY2(qobject_cast<QLineEdit *>(QApplication::focusWidget()),
                 qPrintable(describe(QApplication::focusWidget())));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        type(u"Base bid"_s);
        key(Qt::Key_Tab);
        const QList<Rec> estimates = db.list(u"estimate"_s);
        QCOMPARE(estimates.size(), 1);
        QCOMPARE(estimates.first().f.value(u"title"), u"Base bid"_s);
        QVERIFY2(tabToButton(u"Add Line"_s), qPrintable(describe(QApplication::focusWidget())));
        key(Qt::Key_Space);
        type(u"Framing"_s);
        key(Qt::Key_Tab); // cost code
        key(Qt::Key_Tab); // quantity
        type(u"100"_s);
        key(Qt::Key_Tab);
        type(u"sf"_s);
        key(Qt::Key_Tab);
        type(u"12.50"_s);
        key(Qt::Key_Tab);
        const QList<Rec> lines = db.list(u"est_line"_s, {.parent = estimates.first().id});
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.first().f.value(u"description"), u"Framing"_s);
        QCOMPARE(lines.first().f.value(u"qty"), u"100"_s);
        QCOMPARE(lines.first().f.value(u"unitCost"), u"1250"_s);

        // The estimate becomes the budget and the schedule of values.
        QVERIFY2(tabToButton(u"Use as Project Budget"_s), qPrintable(describe(QApplication::focusWidget())));
        key(Qt::Key_Space);
        QCOMPARE(nav.module(), u"budget"_s);
        QVERIFY(!db.list(u"budget_line"_s, {.project = projects.first().id}).isEmpty());
        const QList<Rec> sov = db.list(u"sov_line"_s, {.project = projects.first().id});
        QCOMPARE(sov.size(), 1);

        // A pay application, billed on its continuation sheet.
        QVERIFY(openFromRail(w, u"pay"_s));
        QCOMPARE(nav.module(), u"payapps"_s);
        QVERIFY2(tabToButton(u"New Pay App"_s), qPrintable(describe(QApplication::focusWidget())));
        key(Qt::Key_Space);
        const QList<Rec> apps = db.list(u"pay_app"_s, {.project = projects.first().id});
        QCOMPARE(apps.size(), 1);
        QVERIFY2(tabToBox(u"thisPeriod"_s), qPrintable(describe(QApplication::focusWidget())));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        type(u"500"_s);
        key(Qt::Key_Tab);
        const QList<Rec> billed = db.list(u"pay_line"_s, {.parent = apps.first().id});
        QCOMPARE(billed.size(), 1);
        QCOMPARE(billed.first().f.value(u"thisPeriod"), u"50000"_s);

        // Its G702/G703 as a PDF. The file chooser is the toolkit's own, whose
        // completer makes typed paths unreliable in a test; the path is answered here.
        QTemporaryDir dir;
        const QString path = dir.filePath(u"pay-app-1.pdf"_s);
        bool asked = false;
        FileActions::saveFileHook() = [&](QWidget *, const QString &, const QString &) {
            asked = true;
            return path;
        };
        QVERIFY2(tabToButton(u"G702 / G703 PDF"_s), qPrintable(describe(QApplication::focusWidget())));
        key(Qt::Key_Space);
        FileActions::saveFileHook() = nullptr;
        QVERIFY(asked);
        QFile pdf(path);
        QVERIFY2(pdf.open(QIODevice::ReadOnly), qPrintable(path));
        QVERIFY(pdf.read(5) == "%PDF-");
        DateFmt::setToday(QDate());
    }
};

TRESTLE_TEST(KeyboardPathTests);
#include "keyboardpathtests.moc"
