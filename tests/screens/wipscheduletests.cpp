// The Reports screen's WIP schedule view: switching, the File menu's print,
// the colours of over and under billing, the chart, and the PDF and CSV.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "documents/pageddocument.h"
#include "interchange/sample.h"
#include "look/fwui.h"
#include "screens/reportsscreen.h"
#include "screens/wipscheduleview.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/printcenter.h"
#include "shell/printengine.h"
#include "store/db.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtPrintSupport/QPrinter>

using namespace Qt::StringLiterals;

namespace {

ScreenContext context(DB &db, Nav &nav)
{
    return ScreenContext{db, nav, *Modules::get(u"reports")};
}

// A project with its contract, budget, cost to date and invoiced amount, in cents.
Rec job(DB &db, const QString &number, const QString &status, qint64 contract, qint64 budget, qint64 cost,
        qint64 invoiced)
{
    const Rec p = db.add(u"project"_s, {}, {},
                         {{u"number"_s, number},
                          {u"name"_s, u"Job "_s + number},
                          {u"status"_s, status},
                          {u"contract"_s, QString::number(contract)}});
    db.add(u"budget_line"_s, p.id, {}, {{u"original"_s, QString::number(budget)}});
    db.add(u"expense"_s, p.id, {}, {{u"amount"_s, QString::number(cost)}});
    if (invoiced != 0) {
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}});
        db.add(u"inv_line"_s, p.id, inv.id,
               {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, QString::number(invoiced)}});
    }
    return p;
}

} // namespace

class WipScheduleViewTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(QDate(2026, 11, 15));
        Nav().setProjectID(QString());
    }
    void cleanup()
    {
        DateFmt::setToday(QDate());
        ReportsScreen::saveFileHook() = nullptr;
        PrintEngine::dialogHook() = nullptr;
    }

    // The File menu prints the view in front, the schedule on a landscape page.
    void printFollowsTheView_data()
    {
        QTest::addColumn<int>("view");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("inHtml");
        QTest::addColumn<bool>("landscape");
        QTest::newRow("report") << 0 << u"WIP Report"_s << u"Work in Progress Report"_s << false;
        QTest::newRow("schedule") << 1 << u"WIP Schedule"_s << u"Contracts in progress"_s << true;
    }
    void printFollowsTheView()
    {
        QFETCH(int, view);
        QFETCH(QString, title);
        QFETCH(QString, inHtml);
        QFETCH(bool, landscape);
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        job(db, u"1"_s, u"Active"_s, 100000, 80000, 40000, 0);
        ReportsScreen screen(context(db, nav));
        screen.show();
        screen.showView(1 - view); // from the other view, so the switch is what counts
        screen.showView(view);
        QCOMPARE(screen.view(), view);
        const std::optional<PrintEntry> front = PrintCenter::shared().front();
        QVERIFY(front);
        QCOMPARE(front->job.title, title);
        const std::optional<PrintSource> source = front->job.make();
        QVERIFY(source && source->html.contains(inHtml));

        std::optional<QPageLayout::Orientation> printed;
        PrintEngine::dialogHook() = [&](PagedDocument &, QPrinter &printer, QWidget *) {
            printed = printer.pageLayout().orientation();
        };
        PrintEngine::run(front->job, &screen);
        QVERIFY(printed);
        if (landscape) // the report keeps whatever the page setup holds
            QCOMPARE(*printed, QPageLayout::Landscape);
        screen.hide();
    }

    // Over billings in the warning colour, under billings in the accent; the
    // chart shows the same amounts, over above the line and under below.
    void colourAndChart()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        job(db, u"OV"_s, u"Active"_s, 100000, 80000, 40000, 70000); // E 50000, over 20000
        job(db, u"UN"_s, u"Active"_s, 100000, 80000, 40000, 10000); // under 40000
        job(db, u"BD"_s, u"Bidding"_s, 100000, 80000, 0, 0);
        ReportsScreen screen(context(db, nav));
        const WipScheduleTable *table = screen.schedule()->table();
        const auto &rows = table->rows();
        int over = -1, under = -1;
        for (int i = 0; i < rows.size(); ++i) {
            over = rows.at(i).cells.value(0) == u"OV" ? i : over;
            under = rows.at(i).cells.value(0) == u"UN" ? i : under;
        }
        QVERIFY(over > 0 && under > 0);
        const FWTheme &t = FWUI::shared().theme();
        QCOMPARE(rows.at(over).cells.value(12), u"200.00"_s);
        QCOMPARE(table->colourOf(over, 12), Notice::orange());
        QCOMPARE(table->colourOf(over, 13), t.text); // nothing under billed
        QCOMPARE(rows.at(under).cells.value(13), u"400.00"_s);
        QCOMPARE(table->colourOf(under, 13), t.accent);
        QCOMPARE(table->colourOf(under, 12), t.text);

        const WipBillingChart *chart = screen.schedule()->chart();
        QCOMPARE(chart->categories(), (QStringList{u"OV"_s, u"UN"_s}));
        QCOMPARE(chart->overBars(), (QList<double>{200.0, 0.0}));
        QCOMPARE(chart->underBars(), (QList<double>{0.0, -400.0}));

        // A change in the records reaches the view on the next refresh.
        const Rec p = db.list(u"project"_s).value(1);
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}});
        db.add(u"inv_line"_s, p.id, inv.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, u"60000"_s}});
        screen.refresh();
        QCOMPARE(chart->overBars(), (QList<double>{200.0, 200.0}));
        QCOMPARE(screen.schedule()->schedule().total.overBilled, 40000);
    }

    // The view's buttons write the schedule itself: the CSV row for row, the PDF.
    void saves()
    {
        DB db;
        Nav nav;
        Sample::create(db);
        QTemporaryDir dir;
        QStringList proposed;
        QString path;
        ReportsScreen::saveFileHook() = [&](QWidget *, const QString &, const QString &name,
                                            const QString &) {
            proposed << name;
            return path;
        };
        ReportsScreen screen(context(db, nav));
        screen.showView(1);
        path = dir.filePath(u"wip.csv"_s);
        screen.saveScheduleCSV();
        QFile csv(path);
        QVERIFY(csv.open(QIODevice::ReadOnly));
        const QList<QStringList> rows = WipSchedule::of(db).csvRows();
        QCOMPARE(QString::fromUtf8(csv.readAll()).count(u"\r\n"_s), rows.size());
        QVERIFY(proposed.last().endsWith(u"WIP Schedule.csv"_s));

        path = dir.filePath(u"wip.pdf"_s);
        screen.saveSchedulePDF();
        QFile pdf(path);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-");
        QVERIFY(proposed.last().endsWith(u"WIP Schedule.pdf"_s));
    }
};

TRESTLE_TEST(WipScheduleViewTests);

#include "wipscheduletests.moc"
