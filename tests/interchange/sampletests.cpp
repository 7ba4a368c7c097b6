#include "iif.h"
#include "testmain.h"

#include "calc/budget.h"
#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "calc/totals.h"
#include "interchange/qb.h"
#include "interchange/sample.h"
#include "store/db.h"
#include "workflows/alerts.h"

using namespace Qt::StringLiterals;

class SampleTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { DateFmt::setToday(QDate(2026, 11, 15)); }

    void invariants()
    {
        DB db;
        int planCalls = 0;
        QStringList bodies;
        SampleFiles files;
        files.planPDF = [&](DB &) {
            ++planCalls;
            return std::optional<QString>(u"ABCD1234-A-101.pdf"_s);
        };
        files.documentBody = [&](DB &, const Rec &doc) { bodies.append(doc.f.value(u"title")); };
        const Rec company = Sample::create(db, files);
        QCOMPARE(company.f.value(u"name"), u"Grand Valley Builders (Sample)"_s);
        QCOMPARE(db.companyID(), company.id);
        QCOMPARE(planCalls, 1);
        QCOMPARE(bodies, QStringList{u"Notice to Proceed — Mesa Electric"_s});
        QCOMPARE(db.list(u"plan_sheet"_s).first().f.value(u"file"), u"ABCD1234-A-101.pdf"_s);

        // Every family of hub alert shows at least once.
        QSet<QString> symbols;
        for (const HubAlert &a : Alerts::all(db, std::nullopt, DateFmt::now()))
            symbols.insert(a.symbol);
        const QSet<QString> families = {u"shield.slash.fill"_s,        u"shield.lefthalf.filled"_s,
                                        u"questionmark.bubble.fill"_s, u"arrow.triangle.branch"_s,
                                        u"wrench.adjustable.fill"_s,   u"tray.full.fill"_s,
                                        u"envelope.badge.fill"_s};
        QCOMPARE(symbols, families);

        const QList<Rec> projects = db.list(u"project"_s);
        QCOMPARE(projects.size(), 3);
        const Rec club = projects.first();
        QCOMPARE(club.f.value(u"name"), u"Monument Ridge Clubhouse"_s);
        // The schedule of values adds up to the revised contract, CO lines included.
        const Calc::ContractSummary contract = ::contract(db, club);
        QVERIFY(contract.approved > 0);
        QVERIFY(contract.pending > 0);
        qint64 scheduled = 0;
        for (const Rec &s : db.list(u"sov_line"_s, {.project = club.id}))
            scheduled += s.i(u"scheduled");
        QCOMPARE(scheduled, contract.revised);
        QCOMPARE(budget(db, club.id).total.revised > 0, true);

        const QList<Rec> apps = db.list(u"pay_app"_s, {.project = club.id});
        QCOMPARE(apps.size(), 2);
        const Calc::G702 first = payAppData(db, apps.at(0)).calc.g702;
        const Calc::G702 second = payAppData(db, apps.at(1)).calc.g702;
        QVERIFY(second.l7 != 0);
        QCOMPARE(second.l7, first.l6);
        // The payment received is the first application's payment due.
        QCOMPARE(db.list(u"payment"_s).first().i(u"amount"), first.l8);
        QCOMPARE(db.count(u"co_line"_s), 4);
        QCOMPARE(db.count(u"asm_line"_s), 3);
        QCOMPARE(db.count(u"compliance"_s), 4);

        // The books it exports balance.
        const QList<IIF::Txn> txns = IIF::read(QB::invoicesIIF(db));
        QCOMPARE(txns.size(), 3); // one invoice, two applications
        for (const IIF::Txn &t : txns)
            QCOMPARE(t.sum, 0);
        QVERIFY(QB::billsIIF(db).contains(u"Job Expenses:Uncoded"_s));
    }

    // Each billed line is a whole share of its schedule line, turned to cents by the
    // rounding rule (nearest cent, halves away from zero), never cut by a cast.
    void payLinesRoundToTheCent()
    {
        DB db;
        Sample::create(db);
        int checked = 0;
        bool sawTruncationCase = false;
        for (const Rec &line : db.list(u"pay_line"_s)) {
            const Rec *sov = db.find(line.f.value(u"sov"));
            QVERIFY(sov);
            const qint64 scheduled = sov->i(u"scheduled"), billed = line.i(u"thisPeriod");
            if (scheduled == 0 || billed == 0)
                continue;
            const double share = std::round(double(billed) / double(scheduled) * 100) / 100;
            QCOMPARE(billed, Money::fromDouble(double(scheduled) * share));
            // 5,376,000 × 0.35 is 1,881,599.9999… as a double: the cast gave $18,815.99.
            if (scheduled == 5376000 && share == 0.35) {
                QCOMPARE(billed, qint64(1881600));
                sawTruncationCase = true;
            }
            ++checked;
        }
        QVERIFY(checked >= 15);
        QVERIFY(sawTruncationCase);
    }

    void twiceMakesTwo()
    {
        DB db;
        const Rec a = Sample::create(db);
        const Rec b = Sample::create(db);
        QVERIFY(a.id != b.id);
        QCOMPARE(db.list(u"company"_s).size(), 2);
        QCOMPARE(db.companyID(), b.id);
        QCOMPARE(db.count(u"project"_s, {.company = a.id}), 3);
        QCOMPARE(db.count(u"project"_s, {.company = b.id}), 3);
        // Without the hooks the records are still made.
        QVERIFY(!db.list(u"plan_sheet"_s).first().f.contains(u"file"));
    }
};

TRESTLE_TEST(SampleTests);
#include "sampletests.moc"
