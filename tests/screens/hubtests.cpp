// The Command Hub on a private store: what each role sees, which projects it
// lists, where its alerts lead, and its field pulse.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "interchange/sample.h"
#include "look/fwui.h"
#include "screens/fieldpulse.h"
#include "screens/hubparts.h"
#include "screens/hubscreen.h"
#include "screens/kpitile.h"
#include "screens/projectchart.h"
#include "shell/nav.h"
#include "shell/printcenter.h"
#include "shell/screentitle.h"
#include "store/db.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

class HubTests : public QObject
{
    Q_OBJECT

    static const ModuleDef &hub() { return *Modules::get(u"hub"_s); }

    // A company whose current user has `role`.
    static void company(DB &db, const QString &role = u"Owner"_s)
    {
        db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
        const Rec user = db.add(u"user"_s, {}, {}, {{u"name"_s, u"Uma"_s}, {u"role"_s, role}});
        db.setUserID(user.id);
    }

    static Rec project(DB &db, const QString &name, const QString &status, const QString &contractCents)
    {
        return db.add(u"project"_s, {}, {},
                      {{u"name"_s, name},
                       {u"number"_s, name.left(3)},
                       {u"status"_s, status},
                       {u"contract"_s, contractCents},
                       {u"type"_s, u"Commercial"_s}});
    }

    // Every text a person can see on the visible part of `root`: labels,
    // buttons, painted widgets' accessible texts, and the chart's own texts.
    static QStringList visibleTexts(QWidget *root)
    {
        QStringList out;
        const QList<QWidget *> all = root->findChildren<QWidget *>();
        for (QWidget *w : all) {
            if (!w->isVisibleTo(root))
                continue;
            if (auto *l = qobject_cast<QLabel *>(w))
                out << l->text();
            if (auto *b = qobject_cast<QAbstractButton *>(w))
                out << b->text();
            if (auto *c = qobject_cast<ProjectChart *>(w))
                out << c->texts();
            out << w->accessibleName() << w->accessibleDescription() << w->toolTip();
        }
        return out;
    }

    static QStringList cardNames(HubScreen &screen)
    {
        QStringList out;
        for (ProjectCard *c : screen.cards())
            out << c->accessibleName();
        return out;
    }

private Q_SLOTS:
    void cardsOpenByKeyboard_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("Enter") << int(Qt::Key_Return);
        QTest::newRow("keypad Enter") << int(Qt::Key_Enter);
        QTest::newRow("Space") << int(Qt::Key_Space);
    }
    void cardsOpenByKeyboard()
    {
        QFETCH(int, key);
        DB db;
        Nav nav;
        Sample::create(db);
        HubScreen screen(ScreenContext{db, nav, hub()});
        QVERIFY(screen.cards().size() >= 2);
        ProjectCard *card = screen.cards().at(1);
        QVERIFY(card->focusPolicy() & Qt::TabFocus);
        QTest::keyClick(card, Qt::Key(key));
        QCOMPARE(nav.projectID(), card->projectId());
    }

    void init()
    {
        DateFmt::setToday(QDate(2026, 11, 15));
        Nav().setProjectID(QString()); // the chosen project is remembered between runs
    }
    void cleanup() { DateFmt::setToday(QDate()); }

    // The sample company has money everywhere: a field user sees none of it,
    // while the owner's view of the same store is full of it.
    void moneyFollowsRole_data()
    {
        QTest::addColumn<QString>("role");
        QTest::addColumn<bool>("money");
        QTest::newRow("field") << u"Field"_s << false;
        QTest::newRow("owner") << u"Owner"_s << true;
        QTest::newRow("project manager") << u"Project Manager"_s << true;
    }
    void moneyFollowsRole()
    {
        QFETCH(QString, role);
        QFETCH(bool, money);
        DB db;
        Nav nav;
        Sample::create(db);
        const Rec user = db.add(u"user"_s, {}, {}, {{u"name"_s, u"Fran"_s}, {u"role"_s, role}});
        db.setUserID(user.id);
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.resize(1300, 900);
        screen.show();
        QVERIFY(!screen.cards().isEmpty());

        const QStringList texts = visibleTexts(&screen);
        const QStringList dollars = texts.filter(u"$"_s);
        if (money) {
            QVERIFY(screen.tiles().first()->height() > 0);
            QVERIFY(!dollars.isEmpty());
            QVERIFY(screen.chart()->isVisibleTo(&screen));
            QVERIFY(screen.tiles().first()->isVisibleTo(&screen));
        } else {
            QVERIFY2(dollars.isEmpty(), qPrintable(dollars.join(u" | "_s)));
            QVERIFY(!screen.chart()->isVisibleTo(&screen));
            QVERIFY(!screen.tiles().first()->isVisibleTo(&screen));
        }
        for (ProjectCard *card : screen.cards())
            QCOMPARE(card->gauge()->label(), money ? u"BILLED"_s : u"TIME"_s);
        // The pending change order's alert leads to a money module.
        const bool coAlert = !texts.filter(u"pending:"_s).isEmpty();
        QCOMPARE(coAlert, money);
    }

    void tilesInOrder()
    {
        DB db;
        Nav nav;
        company(db);
        HubScreen screen(ScreenContext{db, nav, hub()});
        QStringList titles;
        for (KPITile *t : screen.tiles())
            titles << t->title();
        QCOMPARE(titles, (QStringList{u"Revised contracts"_s, u"Pending CO exposure"_s, u"Billed to date"_s,
                                      u"Retainage held"_s, u"Cost to date"_s}));
    }

    // A company with no projects: tiles at zero, no chart, nothing to alert.
    void emptyCompany()
    {
        DB db;
        Nav nav;
        company(db);
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.show();
        for (KPITile *t : screen.tiles())
            QCOMPARE(t->value(), u"$0.00"_s);
        QVERIFY(!screen.tiles().at(1)->warn());
        QVERIFY(!screen.chart()->isVisibleTo(&screen));
        QVERIFY(screen.cards().isEmpty());
        QCOMPARE(screen.alerts()->headingText(), u"All clear"_s);
        QCOMPARE(screen.pulse()->lines(), QList<QStringList>());
        QVERIFY(visibleTexts(&screen).contains(u"No daily logs yet."_s));
        QVERIFY(visibleTexts(&screen).contains(u"Acme Builders · all active projects"_s));
    }

    void completeProjectLeavesTheHub_data()
    {
        QTest::addColumn<bool>("chooseComplete");
        QTest::addColumn<QStringList>("cards");
        QTest::addColumn<QString>("revised");
        QTest::addColumn<QString>("subtitle");
        QTest::newRow("all active projects") << false << QStringList{u"Active barn"_s, u"On-hold shed"_s}
                                             << u"$1,500.00"_s << u"Acme Builders · all active projects"_s;
        QTest::newRow("the complete project chosen")
            << true << QStringList{u"Done house"_s} << u"$700.00"_s << u"Acme Builders · Done house"_s;
    }
    void completeProjectLeavesTheHub()
    {
        QFETCH(bool, chooseComplete);
        QFETCH(QStringList, cards);
        QFETCH(QString, revised);
        QFETCH(QString, subtitle);
        DB db;
        Nav nav;
        company(db);
        project(db, u"Active barn"_s, u"Active"_s, u"100000"_s);
        const Rec done = project(db, u"Done house"_s, u"Complete"_s, u"70000"_s);
        project(db, u"On-hold shed"_s, u"On hold"_s, u"50000"_s);
        if (chooseComplete)
            nav.setProjectID(done.id);
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.show();
        QCOMPARE(cardNames(screen), cards);
        QCOMPARE(screen.tiles().first()->value(), revised);
        QCOMPARE(screen.chart()->groups().size(), cards.size());
        QVERIFY(visibleTexts(&screen).contains(subtitle));
    }

    // The hub follows the store: a project marked Complete leaves at the next refresh.
    void refreshFollowsTheStore()
    {
        DB db;
        Nav nav;
        company(db);
        Rec barn = project(db, u"Active barn"_s, u"Active"_s, u"100000"_s);
        project(db, u"Shed"_s, u"Active"_s, u"25000"_s);
        HubScreen screen(ScreenContext{db, nav, hub()});
        QCOMPARE(screen.tiles().first()->value(), u"$1,250.00"_s);
        barn.f.insert(u"status"_s, u"Complete"_s);
        db.save(barn);
        screen.refresh();
        QCOMPARE(cardNames(screen), QStringList{u"Shed"_s});
        QCOMPARE(screen.tiles().first()->value(), u"$250.00"_s);
    }

    void cardChoosesProject()
    {
        DB db;
        Nav nav;
        company(db);
        project(db, u"Barn"_s, u"Active"_s, u"100000"_s);
        const Rec shed = project(db, u"Shed"_s, u"Active"_s, u"25000"_s);
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.resize(1200, 800);
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        ProjectCard *card = screen.cards().at(1);
        QCOMPARE(card->projectId(), shed.id);
        // A click on the card's name reaches the card, as one on its background does.
        QLabel *name = nullptr;
        for (QLabel *l : card->findChildren<QLabel *>())
            if (l->text() == u"Shed"_s)
                name = l;
        QVERIFY(name);
        QTest::mouseClick(name, Qt::LeftButton);
        QCOMPARE(nav.projectID(), shed.id);
        nav.setProjectID(QString());
        QTest::mouseClick(card, Qt::LeftButton, {}, QPoint(card->width() - 4, card->height() - 4));
        QCOMPARE(nav.projectID(), shed.id);
        // Another button does not choose.
        nav.setProjectID(QString());
        QTest::mouseClick(card, Qt::RightButton, {}, QPoint(4, 4));
        QVERIFY(nav.projectID().isEmpty());
    }

    // In every finish the cost bars stand apart from the contract bars (the accent).
    void costBarsNeverMatchTheAccent()
    {
        for (const FWTheme &t : FWTheme::all()) {
            const QColor cost = ProjectChart::costColour(t.accent);
            int d = std::abs(cost.hsvHue() - t.accent.hsvHue()) % 360;
            d = std::min(d, 360 - d);
            QVERIFY2(t.accent.hsvHue() < 0 || d >= 60, qPrintable(t.name + u": "_s + QString::number(d)));
        }
    }

    void scheduleFraction_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<double>("fraction");
        // "now" is noon on 2026-11-15.
        QTest::newRow("no start") << QString() << u"2026-12-01"_s << 0.0;
        QTest::newRow("no end") << u"2026-11-01"_s << QString() << 0.0;
        QTest::newRow("unreadable start") << u"soon"_s << u"2026-12-01"_s << 0.0;
        QTest::newRow("end before start") << u"2026-12-01"_s << u"2026-11-01"_s << 0.0;
        QTest::newRow("same day") << u"2026-11-15"_s << u"2026-11-15"_s << 0.0;
        QTest::newRow("half way") << u"2026-11-05"_s << u"2026-11-25"_s << 0.525;
        QTest::newRow("not started") << u"2026-11-25"_s << u"2026-12-05"_s << -0.95;
        QTest::newRow("overrun") << u"2026-11-01"_s << u"2026-11-11"_s << 1.45;
    }
    void scheduleFraction()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(double, fraction);
        Rec p;
        p.f.insert(u"start"_s, start);
        p.f.insert(u"end"_s, end);
        const QDateTime now(QDate(2026, 11, 15), QTime(12, 0));
        QCOMPARE(ProjectCard::scheduleFraction(p, now), fraction);
    }

    void ringPercent_data()
    {
        QTest::addColumn<double>("fraction");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << u"0%"_s;
        QTest::newRow("below zero") << -0.4 << u"0%"_s;
        QTest::newRow("half") << 0.495 << u"50%"_s;
        QTest::newRow("over") << 1.25 << u"125%"_s;
        QTest::newRow("not a number") << std::nan("") << u"0%"_s;
    }
    void ringPercent()
    {
        QFETCH(double, fraction);
        QFETCH(QString, text);
        QCOMPARE(RingGauge::percentText(fraction), text);
    }

    // A click on an alert chooses its project, selects its record and opens its module.
    void alertClickNavigates()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec barn = project(db, u"Barn"_s, u"Active"_s, u"100000"_s);
        const Rec rfi = db.add(u"rfi"_s, barn.id, {},
                               {{u"number"_s, u"4"_s},
                                {u"subject"_s, u"Footing depth"_s},
                                {u"status"_s, u"Open"_s},
                                {u"due"_s, u"2026-11-10"_s}});
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.resize(1200, 800);
        screen.show();
        QCOMPARE(screen.alerts()->headingText(), u"1 Alerts"_s);
        const QList<ClickRow *> rows = screen.alerts()->findChildren<ClickRow *>();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first()->accessibleName(), u"RFI #4 overdue: Footing depth"_s);
        QVERIFY(nav.projectID().isEmpty());
        rows.first()->click();
        QCOMPARE(nav.module(), u"rfis"_s);
        QCOMPARE(nav.selected(u"rfis"_s), rfi.id);
        QCOMPARE(nav.projectID(), barn.id);
    }

    // A company-wide alert without a project leaves the chosen project alone.
    void companyAlertKeepsProject()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec barn = project(db, u"Barn"_s, u"Active"_s, u"100000"_s);
        const Rec dozer =
            db.add(u"equipment"_s, {}, {}, {{u"name"_s, u"Dozer"_s}, {u"service"_s, u"2026-11-01"_s}});
        nav.setProjectID(barn.id);
        HubScreen screen(ScreenContext{db, nav, hub()});
        const QList<ClickRow *> rows = screen.alerts()->findChildren<ClickRow *>();
        QCOMPARE(rows.size(), 1);
        rows.first()->click();
        QCOMPARE(nav.module(), u"equipment"_s);
        QCOMPARE(nav.selected(u"equipment"_s), dozer.id);
        QCOMPARE(nav.projectID(), barn.id);
    }

    void alertColours()
    {
        // Each severity has its own colour, so a red alert never reads as a blue one.
        QSet<QRgb> seen;
        for (AlertColor c : {AlertColor::red, AlertColor::orange, AlertColor::yellow, AlertColor::blue})
            seen.insert(AlertsPanel::color(c).rgb());
        QCOMPARE(seen.size(), 4);
    }

    void fieldPulseCounts()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec barn = project(db, u"Barn"_s, u"Active"_s, u"0"_s);
        const Rec done = project(db, u"Done"_s, u"Complete"_s, u"0"_s);
        for (const QString &status : {u"Open"_s, u"Ready for inspection"_s, u"Closed"_s, u""_s})
            db.add(u"punch"_s, barn.id, {}, {{u"status"_s, status}});
        for (const QString &status : {u"Open"_s, u"Answered"_s, u"Closed"_s, u"open"_s})
            db.add(u"rfi"_s, barn.id, {}, {{u"status"_s, status}});
        for (const QString &type : {u"Incident"_s, u"Toolbox talk"_s, u"Incident"_s})
            db.add(u"safety"_s, barn.id, {}, {{u"type"_s, type}});
        // A complete project's records are not counted on the hub of active projects.
        db.add(u"punch"_s, done.id, {}, {{u"status"_s, u"Open"_s}});
        db.add(u"safety"_s, done.id, {}, {{u"type"_s, u"Incident"_s}});
        HubScreen screen(ScreenContext{db, nav, hub()});
        const QList<Counter *> counters = screen.pulse()->counters();
        QCOMPARE(counters.size(), 3);
        QCOMPARE(counters.at(0)->label(), u"Open punch"_s);
        QCOMPARE(counters.at(0)->count(), 3);
        QCOMPARE(counters.at(1)->label(), u"Open RFIs"_s);
        QCOMPARE(counters.at(1)->count(), 1);
        QCOMPARE(counters.at(2)->label(), u"Incidents"_s);
        QCOMPARE(counters.at(2)->count(), 2);
    }

    void fieldPulseLatestLogs()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec barn = project(db, u"Barn"_s, u"Active"_s, u"0"_s);
        const Rec done = project(db, u"Done"_s, u"Complete"_s, u"0"_s);
        for (int day = 1; day <= FieldPulse::kLogs + 2; ++day)
            db.add(u"daily_log"_s, barn.id, {},
                   {{u"date"_s, DateFmt::iso(QDate(2026, 10, day))},
                    {u"weather"_s, u"Clear"_s},
                    {u"crew"_s, QString::number(day)},
                    {u"work"_s, u"Day "_s + QString::number(day)}});
        db.add(u"daily_log"_s, done.id, {}, {{u"date"_s, u"2026-11-01"_s}, {u"work"_s, u"Not listed"_s}});
        HubScreen screen(ScreenContext{db, nav, hub()});
        const QList<QStringList> lines = screen.pulse()->lines();
        QCOMPARE(lines.size(), FieldPulse::kLogs);
        const int newest = FieldPulse::kLogs + 2;
        QCOMPARE(lines.first(),
                 (QStringList{u"Oct 8, 2026"_s, u"Clear"_s, QString::number(newest) + u" crew"_s,
                              u"Day "_s + QString::number(newest)}));
        QCOMPARE(lines.last().at(3), u"Day 3"_s);
    }

    void printJobIsTheDashboard()
    {
        DB db;
        Nav nav;
        company(db);
        HubScreen screen(ScreenContext{db, nav, hub()});
        screen.show();
        const std::optional<PrintEntry> front = PrintCenter::shared().front();
        QVERIFY(front);
        QCOMPARE(front->job.title, u"Dashboard Summary"_s);
        const std::optional<PrintSource> source = front->job.make();
        QVERIFY(source);
        QVERIFY(source->html.contains(u"Dashboard Summary"_s));
        screen.hide();
    }

    void reflowColumns_data()
    {
        QTest::addColumn<int>("widgets");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("columns");
        // Cells of at least 100 with 12 between them, at 100 %.
        QTest::newRow("all in one row") << 5 << 600 << 5;
        QTest::newRow("four fit, rows of three and two") << 5 << 450 << 3;
        QTest::newRow("two fit, rows of two") << 5 << 250 << 2;
        QTest::newRow("narrower than one cell") << 5 << 50 << 1;
        QTest::newRow("fewer widgets than room") << 3 << 1000 << 3;
        QTest::newRow("six in rows of three") << 6 << 500 << 3;
    }
    void reflowColumns()
    {
        QFETCH(int, widgets);
        QFETCH(int, width);
        QFETCH(int, columns);
        ReflowGrid grid(100);
        QList<QWidget *> list;
        for (int i = 0; i < widgets; ++i)
            list << new QWidget;
        grid.setWidgets(list);
        grid.resize(width, 200);
        grid.show();
        QCOMPARE(grid.columns(), columns);
    }

    void chartScale_data()
    {
        QTest::addColumn<double>("max");
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("step");
        QTest::newRow("nothing") << 0.0 << 1000.0 << 200.0;
        QTest::newRow("one million one") << 1126940.0 << 1500000.0 << 500000.0;
        QTest::newRow("round") << 500000.0 << 500000.0 << 100000.0;
        QTest::newRow("small") << 7.0 << 8.0 << 2.0;
        QTest::newRow("fifty") << 51.0 << 60.0 << 20.0;
    }
    void chartScale()
    {
        QFETCH(double, max);
        QFETCH(double, top);
        QFETCH(double, step);
        const auto [gotTop, gotStep] = ProjectChart::niceScale(max);
        QCOMPARE(gotStep, step);
        QCOMPARE(gotTop, top);
    }

    // The chart's labels are distinct, in the short money form, and name every project.
    void chartTexts()
    {
        ProjectChart chart;
        chart.setGroups(
            {{u"Barn"_s, 125000000, 50000000, 20000000}, {u"Shed"_s, 0, 0, 0}, {u"Barn"_s, 1, 2, 3}});
        const QStringList texts = chart.texts();
        QVERIFY(texts.contains(u"Contract · billed · cost by project"_s));
        for (const QString &series : {u"Contract"_s, u"Billed"_s, u"Cost"_s})
            QVERIFY(texts.contains(series));
        QVERIFY(texts.contains(u"$0"_s));
        QVERIFY(texts.contains(u"$1.5M"_s));
        QVERIFY(texts.contains(u"Shed"_s));
        QCOMPARE(texts.filter(u"Barn"_s).size(), 2);
    }
};

TRESTLE_TEST(HubTests);
#include "hubtests.moc"
