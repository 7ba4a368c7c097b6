// The documents that are not one record: pay application, logs, dashboard, reports, schedule.
#include "docshop.h"
#include "documents/costhtml.h"
#include "documents/payhtml.h"
#include "documents/printreports.h"
#include "documents/reportshtml.h"
#include "documents/schedulehtml.h"
#include "testmain.h"

#include "calc/datefmt.h"
#include "workflows/changeorders.h"
#include "workflows/figures.h"
#include "workflows/payappflow.h"

using namespace Qt::StringLiterals;
using DocShop::Shop;

namespace {
QString amountRow(const QString &label, const QString &amount)
{
    return u"<tr><td align=left>"_s + label + u"</td><td align=right>"_s + amount + u"</td></tr>"_s;
}

// The shaded cells of each chart row, as "from-to" (end exclusive), or "" for none.
QStringList bars(const QString &html)
{
    QStringList out;
    const QString chart = html.section(u"<h3>Gantt chart</h3>"_s, 1);
    for (const QString &row : chart.split(u"<tr>"_s).mid(1)) {
        const QStringList cells = row.split(u"</td>"_s).mid(1, PrintReports::kChartCells);
        qsizetype from = -1, to = -1;
        for (qsizetype k = 0; k < cells.size(); ++k)
            if (cells.at(k).contains(u"#555555"_s)) {
                from = from < 0 ? k : from;
                to = k + 1;
            }
        out.append(from < 0 ? QString() : QString::number(from) + u'-' + QString::number(to));
    }
    return out;
}
} // namespace

class ReportHtmlTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(DocShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void payApplicationChain()
    {
        Shop s;
        const Rec sov = s.db.add(
            u"sov_line"_s, s.project.id, {},
            {{u"item"_s, u"1"_s}, {u"description"_s, u"Sitework"_s}, {u"scheduled"_s, u"1000000"_s}});
        Rec co = s.db.add(u"co"_s, s.project.id, {},
                          {{u"number"_s, u"1"_s},
                           {u"kind"_s, u"owner"_s},
                           {u"markup"_s, u"10"_s},
                           {u"title"_s, u"Rock"_s}});
        s.db.add(u"co_line"_s, s.project.id, co.id, {{u"amount"_s, u"100000"_s}});
        setCOStatus(s.db, co, u"approved"_s);
        const Rec first = newPayApp(s.db, s.project);
        setPayLine(s.db, first, sov.id, 300000, std::nullopt);
        const Rec second = newPayApp(s.db, s.project);
        setPayLine(s.db, second, sov.id, 200000, 50000);

        const QString html = PrintReports::payHTML(s.db, *s.db.get(second.id));
        QVERIFY(html.contains(u"Application for Payment #2</b>"_s));
        QVERIFY(html.contains(
            u"<p>Period to: Nov 15, 2026 &nbsp; · &nbsp; Owner: Owner LLC</p><h3>G702 — Summary</h3>"_s));
        const QStringList g702 = {
            amountRow(u"1. Original contract sum"_s, u"$10,000.00"_s),
            amountRow(u"2. Net change by change orders"_s, u"$1,100.00"_s),
            amountRow(u"3. Contract sum to date"_s, u"$11,100.00"_s),
            amountRow(u"4. Total completed &amp; stored to date"_s, u"$5,500.00"_s),
            amountRow(u"5a. Retainage — 10% of completed work"_s, u"$500.00"_s),
            amountRow(u"5b. Retainage — 10% of stored material"_s, u"$50.00"_s),
            amountRow(u"5. Total retainage"_s, u"$550.00"_s),
            amountRow(u"6. Total earned less retainage"_s, u"$4,950.00"_s),
            amountRow(u"7. Less previous certificates for payment"_s, u"$2,700.00"_s),
            amountRow(u"8. CURRENT PAYMENT DUE"_s, u"$2,250.00"_s),
            amountRow(u"9. Balance to finish, including retainage"_s, u"$6,150.00"_s),
        };
        QVERIFY2(html.contains(g702.join(QString())), qPrintable(html));
        const QString cell = u"<td align=right style='font-size:6.5pt'>"_s;
        QVERIFY(html.contains(u"<td align=left style='font-size:6.5pt'>Sitework</td>"_s + cell +
                              u"$10,000.00</td>"_s + cell + u"$3,000.00</td>"_s + cell + u"$2,000.00</td>"_s +
                              cell + u"$500.00</td>"_s + cell + u"$5,500.00</td>"_s + cell + u"55.0%</td>"_s +
                              cell + u"$4,500.00</td>"_s + cell + u"$550.00</td>"_s));
        // The change order's own line follows, then the totals.
        QVERIFY(html.contains(u"CO-1</td>"_s));
        QVERIFY(html.contains(u"TOTAL</td>"_s + cell + u"$11,100.00</td>"_s));
        QVERIFY(html.contains(u"$5,500.00</td>"_s + cell + u"</td>"_s + cell + u"$5,600.00</td>"_s));
    }

    void listColumns_data()
    {
        QTest::addColumn<bool>("chosen");
        QTest::addColumn<QString>("heads");
        QTest::newRow("all projects")
            << false
            << u"<th align=left>Project</th><th align=left>#</th><th "
               u"align=left>Title</th><th align=left>Status</th><th align=left>Date</th>"_s;
        QTest::newRow("one project")
            << true
            << u"<th align=left>#</th><th align=left>Title</th><th align=left>Status</th><th "
               u"align=left>Date</th>"_s;
    }
    void listColumns()
    {
        QFETCH(bool, chosen);
        QFETCH(QString, heads);
        Shop s;
        const Rec est =
            s.db.add(u"estimate"_s, s.project.id, {},
                     {{u"number"_s, u"4"_s}, {u"title"_s, u"A<B"_s}, {u"date"_s, u"2026-11-01"_s}});
        const ModuleDef &def = Shop::module(u"estimates"_s);
        const QString html =
            PrintReports::listHTML(s.db, def, {est}, chosen ? std::optional(s.project.id) : std::nullopt);
        QVERIFY2(html.contains(u"<tr style='background:#e8e8ee'>"_s + heads + u"</tr>"_s), qPrintable(html));
        QVERIFY(html.contains(u"<td align=left>4</td><td align=left>A&lt;B</td><td align=left></td><td "
                              u"align=left>Nov 1, 2026</td>"_s));
        QVERIFY(html.contains(u"Estimates Log</b>"_s));
        QCOMPARE(html.contains(u"<td align=left>J-7</td>"_s), !chosen);
        QVERIFY(html.contains(u"<p style='font-size:9pt;color:#444'>Printed Nov 15, 2026</p>"_s));
        QVERIFY(html.endsWith(u"<p style='font-size:9pt'>1 record</p>"_s));
        QVERIFY(PrintReports::listHTML(s.db, def, {}, std::nullopt).endsWith(u">0 records</p>"_s));
    }

    void hubForRoles_data()
    {
        QTest::addColumn<QString>("role");
        QTest::addColumn<bool>("money");
        QTest::newRow("owner") << u"Owner"_s << true;
        QTest::newRow("field") << u"Field"_s << false;
        QTest::newRow("sub") << u"Subcontractor"_s << false;
    }
    void hubForRoles()
    {
        QFETCH(QString, role);
        QFETCH(bool, money);
        Shop s;
        s.db.add(u"project"_s, {}, {}, {{u"name"_s, u"Old job"_s}, {u"status"_s, u"Complete"_s}});
        s.db.add(u"co"_s, s.project.id, {},
                 {{u"number"_s, u"2"_s}, {u"kind"_s, u"owner"_s}, {u"status"_s, u"pending"_s}});
        const Rec user = s.db.add(u"user"_s, {}, {}, {{u"name"_s, u"Fred"_s}, {u"role"_s, role}});
        s.db.setUserID(user.id);
        const QString html = PrintReports::hubHTML(s.db, std::nullopt);
        QCOMPARE(html.contains(u'$'), money);
        QVERIFY(html.contains(u">Tower</td>"_s));
        QVERIFY(!html.contains(u"Old job"_s));
        QCOMPARE(html.contains(u"<h3>Key figures — all active projects</h3>"_s), money);
        QCOMPARE(html.contains(u"<td align=left>Pending CO exposure</td><td align=right>$0.00</td>"_s),
                 money);
        // A chosen project is shown even when complete.
        const Rec old = s.db.list(u"project"_s).last();
        QVERIFY(PrintReports::hubHTML(s.db, old).contains(u"Old job"_s));
    }

    void projectReportSections()
    {
        Shop s;
        QString html = PrintReports::projectReport(s.db, s.project);
        QVERIFY(!html.contains(u"Change orders"_s));
        QVERIFY(!html.contains(u"Open RFIs"_s));
        QVERIFY(html.contains(amountRow(u"Projected margin"_s, u"$10,000.00"_s)));
        s.db.add(u"rfi"_s, s.project.id, {},
                 {{u"subject"_s, u"Answered one"_s}, {u"status"_s, u"Answered"_s}});
        s.db.add(u"punch"_s, s.project.id, {},
                 {{u"title"_s, u"Paint"_s}, {u"status"_s, u"Ready for review"_s}});
        s.db.add(u"punch"_s, s.project.id, {}, {{u"title"_s, u"Trim"_s}, {u"status"_s, u"Closed"_s}});
        html = PrintReports::projectReport(s.db, s.project);
        QVERIFY(!html.contains(u"Open RFIs"_s));
        QVERIFY(html.contains(u"<h3>Open punch items</h3>"_s));
        QVERIFY(html.contains(u">Paint</td>"_s));
        QVERIFY(!html.contains(u">Trim</td>"_s));
    }

    void scheduleChart_data()
    {
        QTest::addColumn<QList<int>>("durations"); // each task follows the one before
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("two halves") << QList<int>{5, 5} << QStringList{u"0-20"_s, u"20-40"_s};
        QTest::newRow("thirds") << QList<int>{1, 2} << QStringList{u"0-14"_s, u"13-40"_s};
        QTest::newRow("zero-length last") << QList<int>{3, 0} << QStringList{u"0-40"_s, QString()};
        QTest::newRow("one moment") << QList<int>{0} << QStringList{u"0-1"_s};
    }
    void scheduleChart()
    {
        QFETCH(QList<int>, durations);
        QFETCH(QStringList, expected);
        Shop s;
        QString pred;
        for (int k = 0; k < durations.size(); ++k)
            pred = s.db.add(u"task"_s, s.project.id, {},
                            {{u"name"_s, u"T"_s + QString::number(k)},
                             {u"duration"_s, QString::number(durations.at(k))},
                             {u"preds"_s, pred},
                             {u"sort"_s, QString::number(k)}})
                       .id;
        const QString html = PrintReports::scheduleHTML(s.db, s.project);
        QCOMPARE(bars(html), expected);
        for (const QString &row : html.section(u"<h3>Gantt chart</h3>"_s, 1).split(u"<tr>"_s).mid(1))
            QCOMPARE(row.count(u"<td"_s), PrintReports::kChartCells + 1);
    }

    void jobCostVariance()
    {
        Shop s;
        const QString code = s.db.costCodes().first().id;
        s.db.add(u"budget_line"_s, s.project.id, {}, {{u"costCode"_s, code}, {u"original"_s, u"100000"_s}});
        s.db.add(u"expense"_s, s.project.id, {}, {{u"amount"_s, u"2500"_s}});
        const QString html = PrintReports::reportHTML(s.db, s.project);
        QVERIFY(html.contains(u"Job Cost Report — Budget vs Actual</b>"_s));
        QVERIFY2(html.contains(
                     u"<td align=left>Uncoded</td><td align=right>$0.00</td><td align=right>$0.00</td><td "
                     u"align=right>$25.00</td><td align=right>-$25.00</td><td align=right>0.0%</td>"_s),
                 qPrintable(html));
        QVERIFY(html.contains(u"<td align=left>TOTAL</td><td align=right>$1,000.00</td>"_s));
        const QString budget = PrintReports::budgetHTML(s.db, s.project, ::budget(s.db, s.project.id));
        QVERIFY(budget.contains(u"<td align=left>TOTAL</td><td align=right>$1,000.00</td>"_s));
    }
};

TRESTLE_TEST(ReportHtmlTests);
#include "htmltests_reports.moc"
