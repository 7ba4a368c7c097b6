// Open jobs brought in with what was billed on them: the next application
// carries on to the cent, bad figures are named, and the books are not billed twice.
#include "testmain.h"

#include "calc/datefmt.h"
#include "calc/payapp.h"
#include "importtest.h"
#include "interchange/importmap.h"
#include "interchange/importwrite.h"
#include "interchange/qb.h"
#include "store/db.h"
#include "workflows/payappflow.h"

using namespace Qt::StringLiterals;
using ImportTest::planOf;

class ImportJobTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { DateFmt::setToday(QDate(2026, 11, 25)); }

    void openJob_data()
    {
        QTest::addColumn<QString>("csv");
        QTest::addColumn<qint64>("billed");
        QTest::addColumn<qint64>("retainage");
        QTest::newRow("one line, ten percent")
            << u"Job number,Project name,Contract amount,Billed to date,Retainage held,Retainage %\n"
               u"1022,Maple Court,\"$48,500.00\",\"$12,125.00\",$606.25,5\n"_s
            << qint64(1212500) << qint64(60625);
        QTest::newRow("lines whose retainage is not a round percentage")
            << u"Job number,Project name,Contract amount,Billed to date,Retainage held,Item,Description,"
               u"Scheduled value,Line billed to date\n"
               u"9,Depot,\"100,000.00\",\"33,333.35\",\"3,210.99\",,,,\n"
               u"9,,,,,1,Sitework,\"33,333.33\",\"11,111.11\"\n"
               u"9,,,,,2,Shell,\"33,333.33\",\"22,222.23\"\n"
               u"9,,,,,3,Finishes,\"33,333.34\",0.01\n"_s
            << qint64(3333335) << qint64(321099);
        QTest::newRow("the template as saved")
            << Import::openJobsTemplate() << qint64(10000000) << qint64(1000000);
    }
    // The next pay application of an imported job carries on from what was billed before, to the cent.
    void openJob()
    {
        QFETCH(QString, csv);
        QFETCH(qint64, billed);
        QFETCH(qint64, retainage);
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Harbor Street LLC"_s}, {u"type"_s, u"Client / Owner"_s}});
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ruth Alvarez"_s}, {u"type"_s, u"Client / Owner"_s}});
        const Import::Plan plan = planOf(db, {{u"open jobs.csv"_s, csv}});
        QCOMPARE(plan.errors(), QStringList());
        QVERIFY(Import::write(db, plan, false).ok);
        const Rec project = db.list(u"project"_s).first();
        const Rec next = newPayApp(db, project);
        const PayAppData data = payAppData(db, next);
        QCOMPARE(data.calc.totals.previous, billed);
        QCOMPARE(data.calc.g702.l4, billed);
        QCOMPARE(data.calc.g702.l5, retainage);
        QCOMPARE(data.calc.g702.l7, billed - retainage);
        QCOMPARE(data.calc.g702.l8, 0);

        // The books had the earlier billing already: only the next application goes to QuickBooks,
        // with the retainage of its own period.
        QVERIFY(!QB::invoicesIIF(db).contains(u"INVOICE"_s));
        const Calc::PayRow &first = data.calc.rows.first();
        setPayLine(db, next, data.sov.first().id, first.line.scheduled - first.line.previous, std::nullopt);
        Rec submitted = *db.get(next.id);
        submitted.f.insert(u"status"_s, u"submitted"_s);
        db.save(submitted);
        const Calc::G702 g = payAppData(db, submitted).calc.g702;
        const QString iif = QB::invoicesIIF(db);
        QCOMPARE(iif.count(u"\nTRNS\t"_s), 1);
        QStringList amounts; // of the lines, by account
        for (const QString &line : iif.split(u'\n'))
            if (line.startsWith(u"TRNS\t"_s) || line.startsWith(u"SPL\t"_s))
                amounts << line.section(u'\t', 4, 4) + u'=' + line.section(u'\t', 6, 6);
        QVERIFY2(amounts.contains(u"Accounts Receivable="_s + QB::amount(g.l8)), qPrintable(iif));
        QVERIFY2(amounts.contains(u"Retainage Receivable="_s + QB::amount(g.l5 - retainage)),
                 qPrintable(iif));

        // Brought in again: nothing changes, nothing doubles.
        const Import::Plan again = planOf(db, {{u"open jobs.csv"_s, csv}});
        QCOMPARE(again.errors(), QStringList());
        for (const auto &[kind, count] : again.counts())
            QCOMPARE(count.fresh + count.updated, 0);
    }

    void openJobBad_data()
    {
        QTest::addColumn<QString>("csv");
        QTest::addColumn<QString>("error");
        const QString head =
            u"Job number,Project name,Contract amount,Billed to date,Retainage held,Item,Scheduled "
            u"value,Line billed to date\n"_s;
        QTest::newRow("schedule short of the contract")
            << head + u"5,Barn,1000,500,0,,,\n5,,,,,1,900,500\n"_s
            << u"open jobs.csv:2: Contract amount: the schedule of values adds up to $900.00, not $1000.00."_s;
        QTest::newRow("lines billed short")
            << head + u"5,Barn,1000,500,0,,,\n5,,,,,1,1000,400\n"_s
            << u"open jobs.csv:2: Billed to date: the lines add up to $400.00, not $500.00."_s;
        QTest::newRow("retainage past billed")
            << head + u"5,Barn,1000,500,600,,,\n"_s
            << u"open jobs.csv:2: Retainage held: more than billed to date."_s;
        QTest::newRow("bad amount")
            << head + u"5,Barn,1000,5OO,0,,,\n"_s
            << u"open jobs.csv:2: Billed to date: Not a valid amount. Use a form like 1,234.56 or (5.00)."_s;
        QTest::newRow("retainage percentage past 100")
            << u"Job number,Project name,Contract amount,Billed to date,Retainage held,Retainage %\n"
               u"5,Barn,1000,500,50,1e300\n"_s
            << u"open jobs.csv:2: Retainage %: not between 0 and 100."_s;
        QTest::newRow("application number in pieces")
            << u"Job number,Project name,Contract amount,Billed to date,Last pay app #\n5,Barn,1000,500,2.5\n"_s
            << u"open jobs.csv:2: Last pay app #: not a whole number up to 9999."_s;
        QTest::newRow("lines only")
            << head + u"5,,,,,1,900,500\n"_s
            << u"open jobs.csv:2: Job number: lines of a job with no row of its own."_s;
    }
    void openJobBad()
    {
        QFETCH(QString, csv);
        QFETCH(QString, error);
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const Import::Plan plan = planOf(db, {{u"open jobs.csv"_s, csv}});
        QCOMPARE(plan.errors(), QStringList{error});
        QVERIFY(!Import::write(db, plan, false).ok);
        QCOMPARE(db.count(u"project"_s), 0);
    }
    // Work added to an imported job since keeps the import from being undone, which would take it too.
    void undoRefusedAfterWorkOnAJob()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const Import::Outcome out = Import::write(
            db,
            planOf(
                db,
                {{u"open jobs.csv"_s,
                  u"Job number,Project name,Contract amount,Billed to date,Retainage held\n4,Barn,1000,500,50\n"_s}}),
            false);
        QVERIFY(out.ok);
        const Rec project = db.list(u"project"_s).first();
        QVERIFY(Import::canUndo(db, out.undo));
        newPayApp(db, project);
        QString why;
        QVERIFY(!Import::undo(db, out.undo, &why));
        QCOMPARE(
            why,
            u"Records were added to \u201CBarn\u201D after the import, so the import can no longer be undone."_s);
        QCOMPARE(db.count(u"pay_app"_s, {.project = project.id}), 2);
    }
};

TRESTLE_TEST(ImportJobTests);
#include "importjobtests.moc"
