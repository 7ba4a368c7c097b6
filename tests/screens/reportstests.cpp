// The Reports and QuickBooks export screens on a private store: the WIP table
// and its CSV, the print jobs, and the export into a chosen folder.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "documents/pageddocument.h"
#include "documents/pdfpages.h"
#include "interchange/sample.h"
#include "screens/fieldpulse.h"
#include "screens/projectchart.h"
#include "screens/qbexportscreen.h"
#include "screens/reportsscreen.h"
#include "shell/nav.h"
#include "shell/printcenter.h"
#include "shell/printengine.h"
#include "shell/printsetup.h"
#include "shell/savedpdf.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QMessageBox>

using namespace Qt::StringLiterals;

class ReportsTests : public QObject
{
    Q_OBJECT

    static ScreenContext context(DB &db, Nav &nav, const QString &module)
    {
        return ScreenContext{db, nav, *Modules::get(module)};
    }

    static void company(DB &db) { db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s); }

    static Rec project(DB &db, const QString &number, const QString &name, const QString &contractCents,
                       const QString &status = u"Active"_s)
    {
        return db.add(u"project"_s, {}, {},
                      {{u"name"_s, name},
                       {u"number"_s, number},
                       {u"status"_s, status},
                       {u"contract"_s, contractCents}});
    }

    // Cells of one CSV table as the one writer writes it: quoted cells may hold commas.
    static QList<QStringList> readCSV(const QString &path)
    {
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(f.readAll());
        QList<QStringList> rows;
        QStringList row;
        QString cell;
        bool quoted = false;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text.at(i);
            if (quoted) {
                if (c == u'"' && i + 1 < text.size() && text.at(i + 1) == u'"')
                    cell += u'"', ++i;
                else if (c == u'"')
                    quoted = false;
                else
                    cell += c;
            } else if (c == u'"') {
                quoted = true;
            } else if (c == u',') {
                row << cell;
                cell.clear();
            } else if (c == u'\r') {
                continue;
            } else if (c == u'\n') {
                row << cell;
                rows << row;
                row.clear();
                cell.clear();
            } else {
                cell += c;
            }
        }
        return rows;
    }

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
        QBExportScreen::chooseFolderHook() = nullptr;
        QBExportScreen::revealHook() = nullptr;
        PrintEngine::dialogHook() = nullptr;
    }

    void wipTableRows_data()
    {
        QTest::addColumn<QString>("contract");
        QTest::addColumn<QString>("invoiceSubtotal");
        QTest::addColumn<QString>("percent");
        QTest::newRow("contract zero shows zero percent") << u"0"_s << u"5000"_s << u"0.0%"_s;
        QTest::newRow("a quarter billed") << u"400000"_s << u"100000"_s << u"25.0%"_s;
        QTest::newRow("nothing billed") << u"400000"_s << QString() << u"0.0%"_s;
    }
    void wipTableRows()
    {
        QFETCH(QString, contract);
        QFETCH(QString, invoiceSubtotal);
        QFETCH(QString, percent);
        DB db;
        Nav nav;
        company(db);
        const Rec p = project(db, u"007"_s, u"Barn"_s, contract, u"Complete"_s);
        if (!invoiceSubtotal.isEmpty()) {
            const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}});
            db.add(u"inv_line"_s, p.id, inv.id,
                   {{u"description"_s, u"Work"_s}, {u"qty"_s, u"1"_s}, {u"unitPrice"_s, invoiceSubtotal}});
        }
        ReportsScreen screen(context(db, nav, u"reports"_s));
        // Reports cover every project, the complete ones too.
        QCOMPARE(screen.table()->rows().size(), 1);
        const QStringList row = screen.table()->rows().first();
        QCOMPARE(row.size(), 9);
        QCOMPARE(row.at(0), u"007"_s);
        QCOMPARE(row.at(4), percent);
        QCOMPARE(screen.chart()->groups().size(), 1);
    }

    // Figures kept between refreshes follow every change of the records and of the company.
    void figuresFollowTheStore()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec p = project(db, u"007"_s, u"Barn"_s, u"400000"_s, u"Active"_s);
        ReportsScreen screen(context(db, nav, u"reports"_s));
        QCOMPARE(screen.table()->rows().value(0).value(4), u"0.0%"_s);
        screen.refresh(); // nothing changed: the same figures
        QCOMPARE(screen.table()->rows().value(0).value(4), u"0.0%"_s);
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}});
        db.add(u"inv_line"_s, p.id, inv.id,
               {{u"description"_s, u"Work"_s}, {u"qty"_s, u"1"_s}, {u"unitPrice"_s, u"100000"_s}});
        screen.refresh();
        QCOMPARE(screen.table()->rows().value(0).value(4), u"25.0%"_s);
        const QString first = db.companyID();
        db.createCompany(u"Second Co"_s, u"Sam Second"_s, u"UT"_s);
        QVERIFY(db.companyID() != first);
        screen.refresh();
        QVERIFY(screen.table()->rows().isEmpty());
    }

    // The CSV holds the nine columns of the report, a head row and a row per project.
    void wipCSV()
    {
        DB db;
        Nav nav;
        Sample::create(db);
        project(db, u"099"_s, u"Barn, with a comma"_s, u"123456"_s);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"wip.csv"_s);
        QString proposed;
        ReportsScreen::saveFileHook() = [&](QWidget *, const QString &, const QString &name,
                                            const QString &) {
            proposed = name;
            return path;
        };
        ReportsScreen screen(context(db, nav, u"reports"_s));
        screen.saveCSV();
        QVERIFY(proposed.endsWith(u"WIP Report.csv"_s));
        const QList<QStringList> rows = readCSV(path);
        const qsizetype projects = db.count(u"project"_s);
        QCOMPARE(rows.size(), projects + 1);
        QCOMPARE(rows.first(),
                 (QStringList{u"Number"_s, u"Project"_s, u"Revised contract"_s, u"Billed"_s, u"% billed"_s,
                              u"Retainage"_s, u"Paid"_s, u"Cost to date"_s, u"Projected margin"_s}));
        for (const QStringList &row : rows)
            QCOMPARE(row.size(), 9);
        QCOMPARE(rows.last().mid(0, 3), (QStringList{u"099"_s, u"Barn, with a comma"_s, u"$1,234.56"_s}));
        // The screen's table and the file agree row for row.
        QCOMPARE(rows.mid(1), screen.table()->rows());
    }

    void cancelledSaveWritesNothing()
    {
        DB db;
        Nav nav;
        company(db);
        QTemporaryDir dir;
        ReportsScreen::saveFileHook() = [](QWidget *, const QString &, const QString &, const QString &) {
            return QString();
        };
        ReportsScreen screen(context(db, nav, u"reports"_s));
        screen.saveCSV();
        screen.savePDF();
        QVERIFY(QDir(dir.path()).isEmpty());
    }

    // The saved PDF takes the page setup's orientation and opens in the viewer.
    void wipPDF_data()
    {
        QTest::addColumn<bool>("landscape");
        QTest::newRow("portrait") << false;
        QTest::newRow("landscape") << true;
    }
    void wipPDF()
    {
        QFETCH(bool, landscape);
        DB db;
        Nav nav;
        Sample::create(db);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"wip.pdf"_s);
        ReportsScreen::saveFileHook() = [&](QWidget *, const QString &, const QString &, const QString &) {
            return path;
        };
        QStringList opened;
        SavedPdf::openHook() = [&](const QString &p) { opened << p; };
        PrintSetup::setShared(
            PagedDocument::letter(landscape ? QPageLayout::Landscape : QPageLayout::Portrait));
        ReportsScreen screen(context(db, nav, u"reports"_s));
        screen.savePDF();
        PrintSetup::setShared(PagedDocument::letter());
        SavedPdf::openHook() = [](const QString &) {};
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(f.read(5) == "%PDF-");
        // Saved, said and not opened until asked.
        QVERIFY(opened.isEmpty());
        bool said = false;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QString::fromUtf16(SavedPdf::kSavedMessage) && w->isVisible()) {
                said = true;
                w->close();
            }
        QVERIFY(said);
        QCOMPARE(PdfPages(path).pageSize(0).toSize(), landscape ? QSize(792, 612) : QSize(612, 792));
    }

    // File > Print in front of Reports prints the WIP report, never a project report.
    void printFromMenuIsWip()
    {
        DB db;
        Nav nav;
        company(db);
        project(db, u"001"_s, u"Barn"_s, u"100000"_s);
        ReportsScreen screen(context(db, nav, u"reports"_s));
        screen.show();
        const std::optional<PrintEntry> front = PrintCenter::shared().front();
        QVERIFY(front);
        QCOMPARE(front->job.title, u"WIP Report"_s);
        const std::optional<PrintSource> source = front->job.make();
        QVERIFY(source && source->html.contains(u"Work in Progress Report"_s));
        QVERIFY(!source->html.contains(u"Project Report"_s));
        screen.hide();
    }

    void printProjectReport()
    {
        DB db;
        Nav nav;
        company(db);
        project(db, u"001"_s, u"Barn"_s, u"100000"_s);
        const Rec shed = project(db, u"002"_s, u"Shed"_s, u"50000"_s);
        QStringList titles;
        PrintEngine::dialogHook() = [&](PagedDocument &pages, QPrinter &, QWidget *) {
            titles << pages.title();
        };
        ReportsScreen screen(context(db, nav, u"reports"_s));
        auto *combo = screen.findChild<QComboBox *>();
        QVERIFY(combo);
        QCOMPARE(combo->count(), 2);
        QCOMPARE(combo->itemText(1), u"002 Shed"_s);
        screen.chooseReportProject(shed.id);
        screen.printProjectReport();
        QCOMPARE(titles, QStringList{u"Project Report Shed"_s});
        // The choice survives a refresh after the store changes.
        project(db, u"003"_s, u"Annex"_s, u"0"_s);
        screen.refresh();
        QCOMPARE(screen.reportProject(), shed.id);
        QCOMPARE(combo->currentText(), u"002 Shed"_s);
    }

    void noProjects()
    {
        DB db;
        Nav nav;
        company(db);
        ReportsScreen screen(context(db, nav, u"reports"_s));
        QVERIFY(screen.table()->rows().isEmpty());
        QCOMPARE(screen.pulse()->lines(), QList<QStringList>());
        QVERIFY(screen.pulse()->counters().isEmpty());
        QCOMPARE(ReportsScreen::csvRows(db).size(), 1);
        int printed = 0;
        PrintEngine::dialogHook() = [&](PagedDocument &, QPrinter &, QWidget *) { ++printed; };
        screen.printProjectReport();
        QCOMPARE(printed, 0);
    }

    // --- QuickBooks export ---

    void scopeLine_data()
    {
        QTest::addColumn<bool>("choose");
        QTest::addColumn<QString>("line");
        QTest::newRow("all projects")
            << false << u"Scope: all projects — change it with the Project menu above"_s;
        QTest::newRow("one project") << true << u"Scope: Barn — change it with the Project menu above"_s;
    }
    void scopeLine()
    {
        QFETCH(bool, choose);
        QFETCH(QString, line);
        DB db;
        Nav nav;
        company(db);
        const Rec barn = project(db, u"001"_s, u"Barn"_s, u"0"_s);
        QBExportScreen screen(context(db, nav, u"qb"_s));
        if (choose) {
            nav.setProjectID(barn.id);
            screen.refresh();
        }
        QCOMPARE(screen.scope(), line);
    }

    void filesPanel()
    {
        QStringList names;
        for (const auto &[name, description] : QBExportScreen::files())
            names << name;
        QCOMPARE(names,
                 (QStringList{u"invoices-and-pay-apps.iif"_s, u"bills.iif"_s,
                              u"customers.csv / vendors.csv"_s, u"payments.csv"_s, u"job-cost.csv"_s}));
    }

    // The export writes the six files into a dated folder, says where and shows it.
    void exportWritesSixFiles_data()
    {
        QTest::addColumn<bool>("sample");
        QTest::newRow("sample company") << true;
        QTest::newRow("no records") << false;
    }
    void exportWritesSixFiles()
    {
        QFETCH(bool, sample);
        DB db;
        Nav nav;
        if (sample)
            Sample::create(db);
        else
            company(db);
        QTemporaryDir dir;
        QString revealed;
        QBExportScreen::chooseFolderHook() = [&](QWidget *) { return dir.path(); };
        QBExportScreen::revealHook() = [&](const QString &folder) { revealed = folder; };
        QBExportScreen screen(context(db, nav, u"qb"_s));
        QVERIFY(screen.status().isEmpty());
        screen.exportFiles();
        const QString folder = QDir(dir.path()).filePath(u"QuickBooks export 2026-11-15"_s);
        QCOMPARE(revealed, folder);
        QCOMPARE(screen.status(), u"Exported to "_s + folder);
        QStringList files = QDir(folder).entryList(QDir::Files);
        files.sort();
        QCOMPARE(files, (QStringList{u"bills.iif"_s, u"customers.csv"_s, u"invoices-and-pay-apps.iif"_s,
                                     u"job-cost.csv"_s, u"payments.csv"_s, u"vendors.csv"_s}));
        QFile iif(QDir(folder).filePath(u"invoices-and-pay-apps.iif"_s));
        QVERIFY(iif.open(QIODevice::ReadOnly));
        const QByteArray text = iif.readAll();
        QVERIFY(text.startsWith("!TRNS\t"));
        QCOMPARE(text.contains("\nTRNS\t"), sample);
        // A second export on the same day writes into the same folder.
        screen.exportFiles();
        QCOMPARE(QDir(dir.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    }

    void cancelledExportWritesNothing()
    {
        DB db;
        Nav nav;
        company(db);
        bool revealed = false;
        QBExportScreen::chooseFolderHook() = [](QWidget *) { return QString(); };
        QBExportScreen::revealHook() = [&](const QString &) { revealed = true; };
        QBExportScreen screen(context(db, nav, u"qb"_s));
        screen.exportFiles();
        QVERIFY(!revealed);
        QVERIFY(screen.status().isEmpty());
    }

    // A folder that cannot be made stops at the "Export failed" alert and changes nothing.
    void failedExportAlerts()
    {
        DB db;
        Nav nav;
        company(db);
        QTemporaryDir dir;
        const QString blocker = dir.filePath(u"a-file"_s);
        QFile f(blocker);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        QBExportScreen::chooseFolderHook() = [&](QWidget *) { return blocker; };
        bool revealed = false;
        QBExportScreen::revealHook() = [&](const QString &) { revealed = true; };
        QBExportScreen screen(context(db, nav, u"qb"_s));
        screen.show();
        QString title;
        QTimer::singleShot(0, &screen, [&title] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            title = box->text();
            box->accept();
        });
        screen.exportFiles();
        QCOMPARE(title, u"Export failed"_s);
        QVERIFY(!revealed);
        QVERIFY(screen.status().isEmpty());
    }

    void qbScreenHasNoPrintJob()
    {
        DB db;
        Nav nav;
        company(db);
        QBExportScreen screen(context(db, nav, u"qb"_s));
        screen.show();
        QVERIFY(!PrintCenter::shared().front());
    }
};

TRESTLE_TEST(ReportsTests);
#include "reportstests.moc"
