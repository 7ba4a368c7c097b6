// The schedule screen on a private store: adding tasks, the After menu and its
// toggle, the chart's span, and schedules that loop or lose a predecessor.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "screens/gantt.h"
#include "screens/ganttview.h"
#include "screens/schedulescreen.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/screentitle.h"
#include "store/db.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;

namespace {

const QDate kToday(2026, 3, 14);

// A company with one project starting on `start`; the project.
Rec project(DB &db, const QString &start = u"2026-03-02"_s)
{
    db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
    return db.add(u"project"_s, {}, {}, {{u"name"_s, u"Clubhouse"_s}, {u"start"_s, start}});
}

Rec task(DB &db, const Rec &p, const QString &name, int days, const QString &preds = {}, int sort = 0)
{
    return db.add(u"task"_s, p.id, {},
                  {{u"name"_s, name},
                   {u"duration"_s, QString::number(days)},
                   {u"preds"_s, preds},
                   {u"sort"_s, QString::number(sort)},
                   {u"progress"_s, u"0"_s}});
}

} // namespace

class ScheduleTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(kToday);
        Nav().setProjectID(QString());
    }
    void cleanup() { DateFmt::setToday(QDate()); }

    void addTaskFollowsTheLast_data()
    {
        QTest::addColumn<QString>("projectStart");
        QTest::addColumn<int>("existing");
        QTest::addColumn<QString>("start");
        QTest::newRow("first task starts with the project") << u"2026-03-02"_s << 0 << u"2026-03-02"_s;
        QTest::newRow("first task without a project start starts today") << QString() << 0 << u"2026-03-14"_s;
        QTest::newRow("a later task follows, with no start of its own") << u"2026-03-02"_s << 2 << QString();
    }
    void addTaskFollowsTheLast()
    {
        QFETCH(QString, projectStart);
        QFETCH(int, existing);
        QFETCH(QString, start);
        DB db;
        const Rec p = project(db, projectStart);
        for (int i = 0; i < existing; ++i)
            task(db, p, u"T"_s + QString::number(i), 3, {}, i + 1);
        const QList<Rec> before = db.list(u"task"_s, RecFilter{.project = p.id});
        const Rec made = GanttView::addTask(db, p, before);
        const Rec stored = *db.get(made.id);
        QCOMPARE(stored.kind, u"task"_s);
        QCOMPARE(stored.project, p.id);
        QCOMPARE(stored.company, db.companyID());
        QCOMPARE(stored.f.value(u"name"), u"New task"_s);
        QCOMPARE(stored.f.value(u"duration"), u"5"_s);
        QCOMPARE(stored.f.value(u"progress"), u"0"_s);
        QCOMPARE(stored.f.value(u"sort"), QString::number(existing + 1));
        QCOMPARE(stored.f.value(u"start"), start);
        QCOMPARE(stored.f.value(u"preds"), existing ? before.last().id : QString());
        // It lands as the last row.
        QCOMPARE(db.list(u"task"_s, RecFilter{.project = p.id}).last().id, made.id);
    }

    void togglePred_data()
    {
        QTest::addColumn<QString>("preds");
        QTest::addColumn<QString>("toggle");
        QTest::addColumn<QString>("after");
        QTest::newRow("adds to none") << QString() << u"A"_s << u"A"_s;
        QTest::newRow("appends at the end") << u"A"_s << u"B"_s << u"A,B"_s;
        QTest::newRow("takes one away") << u"A,B"_s << u"A"_s << u"B"_s;
        QTest::newRow("empty pieces dropped") << u",A,,B,"_s << u"C"_s << u"A,B,C"_s;
        QTest::newRow("only the first of a repeat") << u"A,B,A"_s << u"A"_s << u"B,A"_s;
        QTest::newRow("the last one leaves it empty") << u"A"_s << u"A"_s << QString();
    }
    void togglePred()
    {
        QFETCH(QString, preds);
        QFETCH(QString, toggle);
        QFETCH(QString, after);
        DB db;
        const Rec p = project(db);
        const Rec t = task(db, p, u"Frame"_s, 4, preds);
        GanttView::togglePred(db, t, toggle);
        QCOMPARE(db.get(t.id)->f.value(u"preds"), after);
    }

    void chartSpan_data()
    {
        QTest::addColumn<QList<int>>("durations"); // a chain, each after the one before
        QTest::addColumn<int>("days");
        QTest::newRow("no tasks: a month, and the ten days after") << QList<int>{} << 40;
        QTest::newRow("5 days still shows 30") << QList<int>{5} << 30;
        QTest::newRow("100 days shows 110") << QList<int>{40, 60} << 110;
        QTest::newRow("20 days is exactly 30") << QList<int>{20} << 30;
        QTest::newRow("21 days shows 31") << QList<int>{21} << 31;
    }
    void chartSpan()
    {
        QFETCH(QList<int>, durations);
        QFETCH(int, days);
        DB db;
        Nav nav;
        const Rec p = project(db);
        QString prev;
        for (int i = 0; i < durations.size(); ++i)
            prev = task(db, p, u"T"_s + QString::number(i), durations[i], prev, i + 1).id;
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        QVERIFY(screen.view());
        GanttCanvas *canvas = screen.view()->canvas();
        QCOMPARE(canvas->days(), days);
        QCOMPARE(canvas->range().first, QDate(2026, 3, 2));
        QCOMPARE(canvas->rows(), int(durations.size()));
        QCOMPARE(canvas->sizeHint().width(), int(std::ceil(16 * FWUI::shared().zoom() * days)));
    }

    // Without a start, the chart starts today; an unreadable start counts as none.
    void emptyChartWithoutAStartBeginsToday()
    {
        const GanttRange r = GanttRange::of({}, u"soon"_s, kToday);
        QCOMPARE(r.first, kToday);
        QCOMPARE(r.days, 40);
        QCOMPARE(r.dayOf(kToday.addDays(-3)), -3);
        QCOMPARE(r.dayOf(QDate()), 0);
    }

    void barsSitOnTheirRows()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec a = task(db, p, u"Dig"_s, 5, {}, 1);
        task(db, p, u"Pour"_s, 0, a.id, 2); // a milestone is still one day wide
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        const qreal z = FWUI::shared().zoom();
        const QRectF first = screen.view()->canvas()->barRect(0);
        QCOMPARE(first, QRectF(0, (30 + 0.22 * 34) * z, 5 * 16 * z, 0.56 * 34 * z));
        const QRectF second = screen.view()->canvas()->barRect(1);
        QCOMPARE(second.left(), 5 * 16 * z);
        QCOMPARE(second.width(), 16 * z);
        QCOMPARE(second.top(), (30 + 34 + 0.22 * 34) * z);
        // The task rows stand on the same heights as the bars.
        const QList<QWidget *> rows = screen.view()->rowWidgets();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows[0]->height(), FWUI::shared().px(34));
    }

    // A start worked out from the predecessors reads as that day, not "Set date";
    // a stored start shows in the picker, and clearing it brings the worked-out day back.
    void workedOutStartsShowTheirDay()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec dig = task(db, p, u"Dig"_s, 5, {}, 1);
        task(db, p, u"Pour"_s, 3, dig.id, 2);
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        const QList<QWidget *> rows = screen.view()->rowWidgets();
        QCOMPARE(rows.size(), 2);
        auto *pour = rows[1]->findChild<ThemedDate *>();
        QVERIFY(pour);
        QCOMPARE(pour->setButton()->text(), u"Mar 7, 2026"_s);
        // The predecessor moves and the follower's day with it.
        Rec moved = *db.get(dig.id);
        moved.f.insert(u"duration"_s, u"7"_s);
        db.save(moved);
        screen.refresh();
        QCOMPARE(pour->setButton()->text(), u"Mar 9, 2026"_s);
    }

    // A name that fits its bar is written inside it; a longer one after the bar's end, never cut.
    void barNamesAreNeverCut()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec dig = task(db, p, u"Dig"_s, 10, {}, 1);
        task(db, p, u"Excavation and footings for the north wing"_s, 1, dig.id, 2);
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        GanttCanvas *canvas = screen.view()->canvas();
        QVERIFY(canvas->labelOnBar(0));
        QVERIFY(canvas->labelRect(0).left() > canvas->barRect(0).left() &&
                canvas->labelRect(0).left() < canvas->barRect(0).right());
        QVERIFY(!canvas->labelOnBar(1));
        QVERIFY(canvas->labelRect(1).left() > canvas->barRect(1).right());
    }

    void subtitleCountsAndFinishes()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec a = task(db, p, u"Dig"_s, 5, {}, 1);
        task(db, p, u"Pour"_s, 3, a.id, 2);
        QCOMPARE(GanttView::subtitle(p, scheduleDates(db, p.id)),
                 u"Clubhouse · 2 tasks · finish Mar 10, 2026"_s);
        QCOMPARE(GanttView::subtitle(p, {}), u"Clubhouse · 0 tasks · finish —"_s);
    }

    // The menu lists the other tasks with checks on the predecessors; a click toggles.
    void afterMenu()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec a = task(db, p, u"Dig"_s, 5, {}, 1);
        const Rec b = task(db, p, u"Forms"_s, 2, {}, 2);
        const Rec c = task(db, p, u"Pour"_s, 3, a.id, 3);
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        QMenu *menu = screen.view()->afterMenu(2);
        QVERIFY(menu);
        const QList<QAction *> actions = menu->actions();
        QCOMPARE(actions.size(), 2);
        QCOMPARE(actions[0]->text(), u"Dig"_s);
        QVERIFY(actions[0]->isChecked());
        QCOMPARE(actions[1]->text(), u"Forms"_s);
        QVERIFY(!actions[1]->isChecked());
        actions[1]->trigger();
        QCOMPARE(db.get(c.id)->f.value(u"preds"), QString(a.id + u',' + b.id));
        screen.refresh();
        QCOMPARE(GanttView::afterText(db, *db.get(c.id)), u"Dig, Forms"_s);
        screen.view()->afterMenu(2)->actions().at(0)->trigger();
        QCOMPARE(db.get(c.id)->f.value(u"preds"), b.id);
    }

    void addAndRemoveThroughTheButtons()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        QAbstractButton *add = nullptr;
        for (QAbstractButton *b : screen.findChildren<QAbstractButton *>())
            if (b->text() == u"Add Task")
                add = b;
        QVERIFY(add);
        // An empty schedule says how to begin; the hint goes with the first task.
        QVERIFY(!screen.view()->emptyHint()->isHidden());
        add->click();
        add->click();
        screen.refresh();
        QVERIFY(screen.view()->emptyHint()->isHidden());
        const QList<Rec> tasks = db.list(u"task"_s, RecFilter{.project = p.id});
        QCOMPARE(tasks.size(), 2);
        QCOMPARE(tasks[0].f.value(u"start"), u"2026-03-02"_s);
        QCOMPARE(tasks[1].f.value(u"preds"), tasks[0].id);
        QCOMPARE(screen.view()->rowWidgets().size(), 2);
        QCOMPARE(screen.view()->canvas()->rows(), 2);
        // The remove button deletes at once, without asking.
        QAbstractButton *remove = nullptr;
        for (QAbstractButton *b : screen.view()->rowWidgets()[0]->findChildren<QAbstractButton *>())
            if (b->toolTip() == u"Remove task")
                remove = b;
        QVERIFY(remove);
        remove->click();
        QCOMPARE(db.count(u"task"_s, RecFilter{.project = p.id}), 1);
        screen.refresh();
        QCOMPARE(screen.view()->rowWidgets().size(), 1);
        QVERIFY(screen.view()->emptyHint()->isHidden());
    }

    // A loop and a predecessor that is gone still give a drawn chart, with no hang.
    void loopsAndLostPredecessorsDraw()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        Rec a = task(db, p, u"A"_s, 3, {}, 1);
        const Rec b = task(db, p, u"B"_s, 3, a.id, 2);
        a.f.insert(u"preds"_s, b.id);
        db.save(a);
        const Rec gone = task(db, p, u"Gone"_s, 2, {}, 3);
        const Rec c = task(db, p, u"C"_s, 150, QString(gone.id + u',' + a.id), 4);
        Rec self = task(db, p, u"Self"_s, 2, {}, 5);
        self.f.insert(u"preds"_s, self.id);
        db.save(self);
        db.remove(gone.id);
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        screen.resize(1400, 700);
        const QImage shot = screen.grab().toImage();
        QVERIFY(!shot.isNull());
        QCOMPARE(screen.view()->canvas()->rows(), 4);
        QCOMPARE(GanttView::afterText(db, *db.get(c.id)), u"A"_s);
        // Solving A reaches B, whose wait on A is cut: B 0–3, A 3–6, and C after A.
        const qreal day = 16 * FWUI::shared().zoom();
        QCOMPARE(screen.view()->canvas()->barRect(0).left(), 3 * day);
        QCOMPARE(screen.view()->canvas()->barRect(1).left(), 0.0);
        QCOMPARE(screen.view()->canvas()->barRect(2).left(), 6 * day);
        QCOMPARE(screen.view()->canvas()->barRect(3).left(), 0.0);
    }
};

TRESTLE_TEST(ScheduleTests);
#include "scheduletests.moc"
