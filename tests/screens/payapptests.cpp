// The pay application screen on a private store: the list and its selection,
// the lock, typing amounts, the fill button, waivers and the schedule of values.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "screens/payappdetail.h"
#include "screens/payappscreen.h"
#include "screens/soveditor.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/numberfield.h"
#include "shell/printcenter.h"
#include "store/db.h"
#include "workflows/payappflow.h"

#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

class PayAppTests : public QObject
{
    Q_OBJECT

    struct Shop
    {
        DB db;
        Nav nav;
        Rec project;
        QList<Rec> sov;
        Shop(const QList<qint64> &scheduled = {100000, 50000})
        {
            db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
            project = db.add(u"project"_s, {}, {},
                             {{u"name"_s, u"Harbor Lofts"_s},
                              {u"contract"_s, u"150000"_s},
                              {u"retainage"_s, u"10"_s},
                              {u"state"_s, u"CO"_s}});
            for (qsizetype i = 0; i < scheduled.size(); ++i)
                sov.append(db.add(u"sov_line"_s, project.id, {},
                                  {{u"item"_s, QString::number(i + 1)},
                                   {u"description"_s, u"Line "_s + QString::number(i + 1)},
                                   {u"scheduled"_s, QString::number(scheduled[i])},
                                   {u"sort"_s, QString::number(i + 1)}}));
            nav.setProjectID(project.id);
            nav.setModule(u"payapps"_s);
        }
        Rec app(int number, const QString &status = u"draft"_s)
        {
            return db.add(u"pay_app"_s, project.id, {},
                          {{u"number"_s, QString::number(number)},
                           {u"status"_s, status},
                           {u"periodTo"_s, u"2026-03-31"_s},
                           {u"retWork"_s, u"10"_s},
                           {u"retMat"_s, u"10"_s}});
        }
        void bill(const Rec &app, int line, qint64 thisPeriod, qint64 stored = 0)
        {
            setPayLine(db, app, sov.at(line).id, thisPeriod, stored);
        }
        std::unique_ptr<PayAppScreen> screen()
        {
            return std::make_unique<PayAppScreen>(ScreenContext{db, nav, *Modules::get(u"payapps")});
        }
    };

private Q_SLOTS:
    void init() { DateFmt::setToday(QDate(2026, 4, 15)); }

    void listAndSelection_data()
    {
        QTest::addColumn<QString>("select"); // which number Nav selects: "", a number, or "gone"
        QTest::addColumn<int>("shown");
        QTest::newRow("nothing selected: the last") << QString() << 3;
        QTest::newRow("the selected one") << u"1"_s << 1;
        QTest::newRow("a deleted one: the last") << u"gone"_s << 3;
    }
    void listAndSelection()
    {
        QFETCH(QString, select);
        QFETCH(int, shown);
        Shop s;
        // Made out of order: the list goes by number.
        const Rec third = s.app(3);
        const Rec first = s.app(1);
        const Rec second = s.app(2);
        if (select == u"1")
            s.nav.setSelected(u"payapps"_s, first.id);
        if (select == u"gone") {
            const Rec extra = s.app(4);
            s.nav.setSelected(u"payapps"_s, extra.id);
            s.db.remove(extra.id);
        }
        auto screen = s.screen();
        QCOMPARE(screen->listed(), (QStringList{first.id, second.id, third.id}));
        QVERIFY(screen->detail());
        QCOMPARE(s.db.get(screen->detail()->payAppId())->i(u"number"), qint64(shown));
        QVERIFY(screen->emptyMessage()->isHidden());
    }

    void listByKeyboard_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<int>("selected"); // the number selected after the keys
        QTest::newRow("up from the last") << QStringList{u"Up"_s} << 4;
        QTest::newRow("up twice") << QStringList{u"Up"_s, u"Up"_s} << 3;
        QTest::newRow("home") << QStringList{u"Home"_s} << 1;
        QTest::newRow("home then down") << QStringList{u"Home"_s, u"Down"_s} << 2;
        QTest::newRow("down at the end stays") << QStringList{u"Down"_s} << 5;
        QTest::newRow("up at the top stays") << QStringList{u"Home"_s, u"Up"_s} << 1;
        QTest::newRow("page up then end") << QStringList{u"PgUp"_s, u"End"_s} << 5;
        QTest::newRow("page up") << QStringList{u"PgUp"_s} << 1;
    }
    void listByKeyboard()
    {
        // Earlier applications are in reach without a mouse: the list is a Tab stop with arrows.
        QFETCH(QStringList, keys);
        QFETCH(int, selected);
        Shop s;
        for (int n = 1; n <= 5; ++n)
            s.app(n, n < 5 ? u"paid"_s : u"draft"_s);
        auto screen = s.screen();
        QWidget *list = screen->list();
        QVERIFY(list->focusPolicy() & Qt::TabFocus);
        for (const QString &k : keys) {
            QTest::keyClick(list, Qt::Key(QKeySequence::fromString(k)[0].key()));
            screen->refresh();
        }
        QVERIFY(screen->detail());
        QCOMPARE(s.db.get(screen->detail()->payAppId())->i(u"number"), qint64(selected));
    }

    // The application's detail is a deep screen: its print job stands at level 2,
    // above the project screens at level 1; the screen shows how retainage works.
    void printsAtDetailLevelAndExplainsRetainage()
    {
        Shop s;
        const Rec first = s.app(1);
        auto screen = s.screen();
        screen->show();
        const std::optional<PrintEntry> front = PrintCenter::shared().front();
        QVERIFY(front);
        QCOMPARE(front->level, 2);
        QCOMPARE(front->job.title, PayAppScreen::printJob(s.db, first.id).title);
        QStringList texts;
        for (const QLabel *label : screen->findChildren<QLabel *>())
            texts << label->text();
        QVERIFY(texts.join(u'\n').contains(QString::fromUtf16(PayAppText::kRetainageExplained)));
        QVERIFY(texts.join(u'\n').contains(
            u"Retainage on work is a percentage of previous + this period; retainage on stored materials has "
            u"its own percentage. Line 7 is line 6 of the previous application. Setting retainage to 0% on "
            u"the final application releases it."_s));
    }

    void emptyWithSchedule()
    {
        Shop s;
        auto screen = s.screen();
        QVERIFY(!screen->detail());
        QVERIFY(!screen->emptyMessage()->isHidden());
        QCOMPARE(screen->emptyMessage()->text(),
                 u"No pay apps yet. Set up the schedule of values, then click New Pay App."_s);
        QVERIFY(!screen->sovEditor());
        screen->sovButton()->click();
        QVERIFY(screen->sovEditor());
        QVERIFY(!screen->sovEditor()->isHidden());
        QVERIFY(!screen->emptyMessage()->isHidden());
        QCOMPARE(screen->sovButton()->text(), u"Hide Schedule of Values"_s);
        QCOMPARE(screen->sovEditor()->caption(), u"Schedule of values — total $1,500.00"_s);
        screen->sovButton()->click();
        QVERIFY(screen->sovEditor()->isHidden());
        QCOMPARE(screen->sovButton()->text(), u"Schedule of Values"_s);
    }

    void newAppIsSelected()
    {
        Shop s;
        s.app(1);
        auto screen = s.screen();
        screen->newButton()->click();
        const QString selected = s.nav.selected(u"payapps"_s);
        const std::optional<Rec> app = s.db.get(selected);
        QVERIFY(app);
        QCOMPARE(app->f.value(u"number"), u"2"_s);
        QCOMPARE(app->f.value(u"periodTo"), u"2026-04-15"_s);
        screen->refresh();
        QCOMPARE(screen->detail()->payAppId(), selected);
    }

    void lockDisablesTheListedControls_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("locked");
        QTest::newRow("draft") << u"draft"_s << false;
        QTest::newRow("submitted") << u"submitted"_s << false;
        QTest::newRow("approved") << u"approved"_s << true;
        QTest::newRow("paid") << u"paid"_s << true;
    }
    void lockDisablesTheListedControls()
    {
        QFETCH(QString, status);
        QFETCH(bool, locked);
        Shop s;
        s.app(1, status);
        auto screen = s.screen();
        PayAppDetail *d = screen->detail();
        QVERIFY(d);
        QCOMPARE(d->lockNotice()->isHidden(), !locked);
        if (locked)
            QCOMPARE(d->lockNotice()->text(), u"This application is "_s + status +
                                                  u" and locked. Set it back to Draft to change amounts."_s);
        QVERIFY(d->statusEditor()->isEnabled());
        for (FieldEditor *e : d->lockedFields())
            QCOMPARE(e->isEnabled(), !locked);
        for (const Rec &line : s.sov)
            for (const QString &key : {u"thisPeriod"_s, u"stored"_s}) {
                QVERIFY(d->box(line.id, key));
                QCOMPARE(d->box(line.id, key)->isEnabled(), !locked);
            }
        QCOMPARE(d->fillButton()->isEnabled(), !locked);
        for (FWChromeButton *b : d->documentButtons())
            QVERIFY(b->isEnabled());
    }

    void settingBackUnlocks()
    {
        Shop s;
        const Rec app = s.app(1, u"paid"_s);
        auto screen = s.screen();
        PayAppDetail *d = screen->detail();
        QVERIFY(!d->fillButton()->isEnabled());
        auto *choice = d->statusEditor()->findChild<ThemedChoice *>();
        QVERIFY(choice);
        Q_EMIT choice->activated(0); // "draft"
        QCOMPARE(s.db.get(app.id)->f.value(u"status"), u"draft"_s);
        screen->refresh();
        QCOMPARE(screen->detail(), d);
        QVERIFY(d->lockNotice()->isHidden());
        QVERIFY(d->fillButton()->isEnabled());
        QVERIFY(d->box(s.sov[0].id, u"stored"_s)->isEnabled());
    }

    // Past its scheduled value a line is still billed, its percentage in the
    // warning colour with a note; at or under it, nothing is said.
    void billedPastScheduledIsWarned_data()
    {
        QTest::addColumn<qint64>("thisPeriod");
        QTest::addColumn<qint64>("stored");
        QTest::addColumn<QString>("pct");
        QTest::addColumn<bool>("past");
        QTest::newRow("under") << qint64(50000) << qint64(0) << u"50.0%"_s << false;
        QTest::newRow("exactly full") << qint64(90000) << qint64(10000) << u"100.0%"_s << false;
        QTest::newRow("past by a cent") << qint64(100001) << qint64(0) << u"100.0%"_s << true;
        QTest::newRow("past with stored material") << qint64(100000) << qint64(17500) << u"117.5%"_s << true;
    }
    void billedPastScheduledIsWarned()
    {
        QFETCH(qint64, thisPeriod);
        QFETCH(qint64, stored);
        QFETCH(QString, pct);
        QFETCH(bool, past);
        Shop s;
        const Rec app = s.app(1);
        s.bill(app, 0, thisPeriod, stored);
        auto screen = s.screen();
        auto *cell = screen->detail()->sheet()->cell<QLabel>(s.sov[0].id, 7);
        QVERIFY(cell);
        QCOMPARE(cell->text(), pct);
        QCOMPARE(cell->toolTip(), past ? u"Line 1 is billed past its scheduled value."_s : QString());
        QCOMPARE(cell->palette().color(QPalette::WindowText) == Notice::orange(), past);
        // The amount stays as billed.
        QCOMPARE(s.db.list(u"pay_line"_s, {.parent = app.id}).value(0).f.value(u"thisPeriod"),
                 QString::number(thisPeriod));
        // Brought back under, the warning goes.
        s.bill(app, 0, 1000, 0);
        screen->refresh();
        QCOMPARE(cell->toolTip(), QString());
    }

    void typingThisPeriodStores()
    {
        Shop s;
        const Rec app = s.app(1);
        s.bill(app, 0, 0, 7000);
        auto screen = s.screen();
        screen->show();
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        PayAppDetail *d = screen->detail();
        NumberField *box = d->box(s.sov[0].id, u"thisPeriod"_s);
        box->box()->setFocus();
        box->box()->selectAll();
        QTest::keyClicks(box->box(), u"250"_s);
        QList<Rec> lines = s.db.list(u"pay_line"_s, {.parent = app.id});
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0].f.value(u"thisPeriod"), u"25000"_s);
        // Only the edited field is written.
        QCOMPARE(lines[0].f.value(u"stored"), u"7000"_s);

        // Typing into a line with no pay line yet makes one; a refresh keeps the caret's box.
        NumberField *other = d->box(s.sov[1].id, u"thisPeriod"_s);
        other->box()->setFocus();
        QTest::keyClicks(other->box(), u"1,000"_s);
        screen->refresh();
        QCOMPARE(d->box(s.sov[1].id, u"thisPeriod"_s), other);
        QCOMPARE(other->box()->text(), u"1,000"_s);
        lines = s.db.list(u"pay_line"_s, {.parent = app.id});
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[1].f.value(u"sov"), s.sov[1].id);
        QCOMPARE(lines[1].f.value(u"thisPeriod"), u"100000"_s);
        QVERIFY(!lines[1].f.contains(u"stored"_s));

        // The summary follows at once: completed 25000 + 7000 + 100000, retainage 10 % of each part.
        QCOMPARE(d->summaryValue(3), qint64(132000));
        QCOMPARE(d->summaryValue(9), qint64(132000 - 2500 - 700 - 10000));

        // A bad amount keeps the amount the box held when it took the focus.
        box->box()->setFocus();
        other->box()->setFocus();
        QTest::keyClick(other->box(), Qt::Key_End);
        QTest::keyClick(other->box(), Qt::Key_X);
        QCOMPARE(s.db.list(u"pay_line"_s, {.parent = app.id})[1].f.value(u"thisPeriod"), u"100000"_s);
        QVERIFY(other->error().has_value());
    }

    void fillWritesTheBalances()
    {
        Shop s({100000, 50000});
        const Rec first = s.app(1);
        s.bill(first, 0, 60000);
        s.bill(first, 1, 60000); // overbilled: the fill takes it back
        const Rec second = s.app(2);
        s.bill(second, 0, 0, 10000);
        auto screen = s.screen();
        QCOMPARE(screen->detail()->payAppId(), second.id);
        screen->detail()->fillButton()->click();
        const QList<Rec> lines = s.db.list(u"pay_line"_s, {.parent = second.id});
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].f.value(u"thisPeriod"), u"30000"_s);
        QCOMPARE(lines[0].f.value(u"stored"), u"10000"_s);
        QCOMPARE(lines[1].f.value(u"thisPeriod"), u"-10000"_s);
        screen->refresh();
        QCOMPARE(screen->detail()->box(s.sov[0].id, u"thisPeriod"_s)->box()->text(), u"300.00"_s);
        // Every line is at 100 percent.
        QCOMPARE(screen->detail()->sheet()->cell<QLabel>(s.sov[1].id, 7)->text(), u"100.0%"_s);
    }

    void waivers_data()
    {
        QTest::addColumn<bool>("wholeContract");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("kind");
        QTest::newRow("part billed, unconditional button")
            << false << u"unconditional"_s << u"conditional_progress"_s;
        QTest::newRow("all billed, unconditional button")
            << true << u"unconditional"_s << u"unconditional_final"_s;
        QTest::newRow("all billed, conditional button")
            << true << u"conditional"_s << u"conditional_progress"_s;
    }
    void waivers()
    {
        QFETCH(bool, wholeContract);
        QFETCH(QString, button);
        QFETCH(QString, kind);
        Shop s;
        const Rec app = s.app(1, u"paid"_s);
        s.bill(app, 0, 100000);
        if (wholeContract)
            s.bill(app, 1, 50000);
        auto screen = s.screen();
        auto *b = screen->detail()->findChild<FWChromeButton *>(button);
        QVERIFY(b);
        b->click();
        const QList<Rec> waivers = s.db.list(u"waiver"_s);
        QCOMPARE(waivers.size(), 1);
        QCOMPARE(waivers[0].f.value(u"kind"), kind);
        QCOMPARE(waivers[0].f.value(u"payApp"), app.id);
        const qint64 due = wholeContract ? 135000 : 90000;
        QCOMPARE(waivers[0].f.value(u"amount"), QString::number(due));
        QCOMPARE(waivers[0].project, s.project.id);
        QCOMPARE(s.nav.module(), u"waivers"_s);
        QCOMPARE(s.nav.selected(u"waivers"_s), waivers[0].id);
    }

    void scheduleOfValues()
    {
        Shop s({100000});
        // A line made by an approved change order: shown, not editable, not removable.
        const Rec co = s.db.add(u"co"_s, s.project.id, {}, {{u"number"_s, u"1"_s}});
        const Rec coLine = s.db.add(
            u"sov_line"_s, s.project.id, {},
            {{u"item"_s, u"CO-1"_s}, {u"scheduled"_s, u"20000"_s}, {u"sort"_s, u"1001"_s}, {u"co"_s, co.id}});
        SOVEditor editor(s.db, s.project.id);
        QCOMPARE(editor.caption(), u"Schedule of values — total $1,200.00"_s);
        QCOMPARE(editor.grid()->keys(),
                 (QStringList{SOVEditor::rowKey(s.sov[0].id, false), SOVEditor::rowKey(coLine.id, true)}));
        const QString coKey = SOVEditor::rowKey(coLine.id, true);
        for (int c = 0; c < 3; ++c)
            QVERIFY(!editor.grid()->cells(coKey).at(c)->isEnabled());
        auto *link = editor.grid()->cell<QLabel>(coKey, 3);
        QVERIFY(link);
        QCOMPARE(link->toolTip(), u"Added by an approved owner change order"_s);
        QVERIFY(editor.grid()->cell<FWChromeButton>(s.sov[0].id, 3));

        // Add Line numbers after every line, the change order's included.
        editor.addButton()->click();
        editor.refresh();
        const QList<Rec> lines = s.db.list(u"sov_line"_s, {.project = s.project.id});
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[1].f.value(u"item"), u"3"_s);
        QCOMPARE(editor.grid()->keys().at(1), lines[1].id);

        // Editing a scheduled value goes to the store and into the caption.
        auto *scheduled = editor.grid()->cell<NumberField>(lines[1].id, 2);
        QVERIFY(scheduled);
        scheduled->box()->selectAll();
        QTest::keyClicks(scheduled->box(), u"50"_s);
        QCOMPARE(s.db.get(lines[1].id)->f.value(u"scheduled"), u"5000"_s);
        editor.refresh();
        QCOMPARE(editor.caption(), u"Schedule of values — total $1,250.00"_s);

        editor.grid()->cell<FWChromeButton>(lines[1].id, 3)->click();
        QVERIFY(!s.db.get(lines[1].id));
    }

    void addLineByKeyboardLandsInItsFirstCell()
    {
        Shop s({100000, 50000});
        SOVEditor editor(s.db, s.project.id);
        editor.show();
        QApplication::setActiveWindow(&editor);
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        editor.addButton()->setFocus();
        QTest::keyClick(editor.addButton(), Qt::Key_Space);
        const QList<Rec> lines = s.db.list(u"sov_line"_s, {.project = s.project.id});
        QCOMPARE(lines.size(), 3);
        QWidget *first = editor.grid()->cells(lines[2].id).value(0);
        QVERIFY(first);
        QCOMPARE(QApplication::focusWidget(), first);
        // Typing replaces the suggested item number instead of adding to it.
        QTest::keyClicks(QApplication::focusWidget(), u"A-7"_s);
        QCOMPARE(s.db.get(lines[2].id)->f.value(u"item"), u"A-7"_s);
    }
};

TRESTLE_TEST(PayAppTests);
#include "payapptests.moc"
