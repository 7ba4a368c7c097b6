// The schedule's task rows: a start worked out from the predecessors shows
// its date, marked apart from a date of its own; After lists and bar names
// show whole at every zoom.
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
#include "store/db.h"

#include <QtWidgets/QDateEdit>

using namespace Qt::StringLiterals;

namespace {

Rec task(DB &db, const Rec &p, const QString &name, int days, int sort, const QString &preds = {},
         const QString &start = {}, int lag = 0)
{
    return db.add(u"task"_s, p.id, {},
                  {{u"name"_s, name},
                   {u"duration"_s, QString::number(days)},
                   {u"preds"_s, preds},
                   {u"start"_s, start},
                   {u"lag"_s, QString::number(lag)},
                   {u"sort"_s, QString::number(sort)},
                   {u"progress"_s, u"0"_s}});
}

ThemedDate *startBox(GanttView *view, int row)
{
    return view->rowWidgets().value(row)->findChild<ThemedDate *>(u"start"_s);
}

FWChromeButton *afterButton(GanttView *view, int row)
{
    return view->rowWidgets().value(row)->findChild<FWChromeButton *>(u"after"_s);
}

} // namespace

class GanttStartTests : public QObject
{
    Q_OBJECT

    DB *m_db = nullptr;
    Nav *m_nav = nullptr;
    Rec m_project;

private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(QDate(2026, 3, 14));
        Nav().setProjectID(QString());
        m_db = new DB;
        m_nav = new Nav;
        m_db->createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
        m_project =
            m_db->add(u"project"_s, {}, {}, {{u"name"_s, u"Clubhouse"_s}, {u"start"_s, u"2026-03-02"_s}});
        m_nav->setProjectID(m_project.id);
    }
    void cleanup()
    {
        delete m_nav;
        delete m_db;
        FWUI::shared().setZoom(1.0);
        DateFmt::setToday(QDate());
    }

    // Dig starts with the project; Forms follows it; Pour follows Forms two days late;
    // Frame has a date of its own though it comes after Dig; Survey has nothing before it.
    void computedStarts_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QDate>("shown");
        QTest::addColumn<bool>("own");
        QTest::newRow("own date") << 0 << QDate(2026, 3, 2) << true;
        QTest::newRow("after its predecessor") << 1 << QDate(2026, 3, 7) << false;
        QTest::newRow("after its predecessor with a lag") << 2 << QDate(2026, 3, 12) << false;
        QTest::newRow("own date past its predecessor") << 3 << QDate(2026, 4, 1) << true;
        QTest::newRow("nothing before it: the project's start") << 4 << QDate(2026, 3, 2) << false;
    }
    void computedStarts()
    {
        QFETCH(int, row);
        QFETCH(QDate, shown);
        QFETCH(bool, own);
        const Rec dig = task(*m_db, m_project, u"Dig"_s, 5, 1, {}, u"2026-03-02"_s);
        const Rec forms = task(*m_db, m_project, u"Forms"_s, 3, 2, dig.id);
        task(*m_db, m_project, u"Pour"_s, 1, 3, forms.id, {}, 2);
        task(*m_db, m_project, u"Frame"_s, 4, 4, dig.id, u"2026-04-01"_s);
        const Rec survey = task(*m_db, m_project, u"Survey"_s, 1, 5);
        ScheduleScreen screen({*m_db, *m_nav, *Modules::get(u"schedule")});
        ThemedDate *start = startBox(screen.view(), row);
        QVERIFY(start);
        if (own) {
            QVERIFY(!start->setButton()->isVisibleTo(start));
            QCOMPARE(start->picker()->date(), shown);
            return;
        }
        // Not "Set date": the worked-out date, with the reason in the tip.
        QVERIFY(start->setButton()->isVisibleTo(start));
        QCOMPARE(start->setButton()->text(), QLocale().toString(shown, u"MMM d, yyyy"_s));
        QVERIFY2(start->setButton()->toolTip().startsWith(u"Worked out"_s),
                 qPrintable(start->setButton()->toolTip()));
        QCOMPARE(scheduleDates(*m_db, m_project.id)
                     .value(m_db->list(u"task"_s, {.project = m_project.id})[row].id)
                     .start,
                 shown);
        // Choosing it fixes that date rather than today's.
        start->setButton()->click();
        const QString id = m_db->list(u"task"_s, {.project = m_project.id})[row].id;
        QCOMPARE(m_db->get(id)->f.value(u"start"), DateFmt::iso(shown));
        Q_UNUSED(survey);
    }

    // A start that stops being worked out (a date set, then cleared) follows along.
    void clearedStartIsWorkedOutAgain()
    {
        const Rec dig = task(*m_db, m_project, u"Dig"_s, 5, 1, {}, u"2026-03-02"_s);
        const Rec forms = task(*m_db, m_project, u"Forms"_s, 3, 2, dig.id, u"2026-03-20"_s);
        ScheduleScreen screen({*m_db, *m_nav, *Modules::get(u"schedule")});
        ThemedDate *start = startBox(screen.view(), 1);
        QVERIFY(!start->setButton()->isVisibleTo(start));
        start->clearButton()->click();
        screen.refresh();
        QVERIFY(start->setButton()->isVisibleTo(start));
        QCOMPARE(start->setButton()->text(), QLocale().toString(QDate(2026, 3, 7), u"MMM d, yyyy"_s));
        QCOMPARE(m_db->get(forms.id)->f.value(u"start"), QString());
    }

    void namesShowWhole_data()
    {
        QTest::addColumn<double>("zoom");
        QTest::newRow("100%") << 1.0;
        QTest::newRow("140%") << 1.4;
    }
    void namesShowWhole()
    {
        QFETCH(double, zoom);
        FWUI::shared().setZoom(zoom);
        const Rec a = task(*m_db, m_project, u"Excavation"_s, 5, 1, {}, u"2026-03-02"_s);
        const Rec b = task(*m_db, m_project, u"Underground plumbing"_s, 2, 2, a.id);
        task(*m_db, m_project, u"Slab pour"_s, 1, 3, a.id + u',' + b.id);
        ScheduleScreen screen({*m_db, *m_nav, *Modules::get(u"schedule")});
        GanttView *view = screen.view();
        // The After lists read whole.
        QCOMPARE(afterButton(view, 1)->text(), u"Excavation"_s);
        QCOMPARE(afterButton(view, 2)->text(), u"Excavation, Underground plumbing"_s);
        for (int r = 1; r < 3; ++r)
            QVERIFY(afterButton(view, r)->sizeHint().width() <= afterButton(view, r)->width());
        // Bar names: on a bar long enough, else just past it; never past the chart's end.
        GanttCanvas *canvas = view->canvas();
        const QFontMetricsF fm(FWUI::shared().font(GanttSize::kLabel));
        const QStringList names{u"Excavation"_s, u"Underground plumbing"_s, u"Slab pour"_s};
        for (int r = 0; r < canvas->rows(); ++r) {
            const QRectF label = canvas->labelRect(r);
            const QRectF bar = canvas->barRect(r);
            QVERIFY(label.width() >= fm.horizontalAdvance(names[r]));
            QVERIFY2(label.right() <= canvas->sizeHint().width(), qPrintable(names[r]));
            if (canvas->labelOnBar(r))
                QVERIFY(label.right() <= bar.right());
            else
                QVERIFY(label.left() >= bar.right());
        }
        // The one-day slab is too short for its name.
        QVERIFY(!canvas->labelOnBar(2));
    }
};

TRESTLE_TEST(GanttStartTests);
#include "ganttstarttests.moc"
