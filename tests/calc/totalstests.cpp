// Document totals, the contract summary, the budget and job cost.
#include "calc/budget.h"
#include "calc/totals.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;
using Calc::Line;

namespace {
QString num(double v)
{
    return QString::number(v, 'g', 17);
}
} // namespace

class TotalsTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void estimate_data()
    {
        QTest::addColumn<QList<Line>>("lines");
        QTest::addColumn<double>("markup");
        QTest::addColumn<double>("tax");
        QTest::addColumn<Calc::EstimateTotals>("want");
        const Line third{0.333, 1000};
        QTest::newRow("lines rounded before adding")
            << QList{third, third, third} << 0.0 << 0.0 << Calc::EstimateTotals{999, 0, 0, 999};
        QTest::newRow("half up") << QList<Line>{{2.5, 101}} << 0.0 << 0.0
                                 << Calc::EstimateTotals{253, 0, 0, 253};
        QTest::newRow("negative half")
            << QList<Line>{{-2.5, 1}} << 0.0 << 0.0 << Calc::EstimateTotals{-3, 0, 0, -3};
        QTest::newRow("no decimal correction") // 1.005 × 100 is 100.4999… as a double
            << QList<Line>{{1.005, 100}} << 0.0 << 0.0 << Calc::EstimateTotals{100, 0, 0, 100};
        QTest::newRow("markup and 8.25 tax")
            << QList<Line>{{1, 100000}} << 10.0 << 8.25 << Calc::EstimateTotals{100000, 10000, 9075, 119075};
        QTest::newRow("tax on rounded markup") // markup 0.5 → 1; tax 50 % of 11, not of 10.5
            << QList<Line>{{1, 10}} << 5.0 << 50.0 << Calc::EstimateTotals{10, 1, 6, 17};
    }
    void estimate()
    {
        QFETCH(QList<Line>, lines);
        QFETCH(double, markup);
        QFETCH(double, tax);
        QFETCH(Calc::EstimateTotals, want);
        QCOMPARE(Calc::estimateTotals(lines, markup, tax), want);
    }

    // The readers pick the right kinds, keys and parents.
    void storeReaders()
    {
        DB db;
        db.setCompanyID(u"C"_s);
        const Rec est = db.add(u"estimate"_s, u"P"_s, {}, {{u"markup"_s, u"10"_s}, {u"tax"_s, u"8.25"_s}});
        db.add(u"est_line"_s, u"P"_s, est.id, {{u"qty"_s, u"2"_s}, {u"unitCost"_s, u"50000"_s}});
        db.add(u"inv_line"_s, u"P"_s, est.id, {{u"qty"_s, u"9"_s}, {u"unitPrice"_s, u"9"_s}});
        QCOMPARE(estimateTotals(db, est), (Calc::EstimateTotals{100000, 10000, 9075, 119075}));

        // Retainage on the subtotal, not on subtotal + tax.
        const Rec inv = db.add(u"invoice"_s, u"P"_s, {}, {{u"tax"_s, u"5"_s}, {u"ret"_s, u"10"_s}});
        db.add(u"inv_line"_s, u"P"_s, inv.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, u"100000"_s}});
        db.add(u"inv_line"_s, u"P"_s, inv.id, {{u"qty"_s, u""_s}, {u"unitPrice"_s, u"777"_s}});
        QCOMPARE(invoiceTotals(db, inv), (Calc::InvoiceTotals{100000, 5000, 10000, 95000}));

        const Rec po = db.add(u"po"_s, u"P"_s, {}, {});
        for (int k = 0; k < 3; ++k)
            db.add(u"po_line"_s, u"P"_s, po.id, {{u"qty"_s, u"0.333"_s}, {u"unitCost"_s, u"1000"_s}});
        QCOMPARE(poTotal(db, po), 999);

        const Rec credit = db.add(u"co"_s, u"P"_s, {}, {{u"markup"_s, u"10"_s}});
        db.add(u"co_line"_s, u"P"_s, credit.id, {{u"amount"_s, u"-25"_s}});
        QCOMPARE(coTotals(db, credit), (Calc::COTotals{-25, -3, -28}));
    }

    void contractSummary()
    {
        DB db;
        db.setCompanyID(u"C"_s);
        const Rec project = db.add(u"project"_s, {}, {}, {{u"contract"_s, u"1000000"_s}});
        auto co = [&](const QString &kind, const QString &status, qint64 amount, int days) {
            const Rec r = db.add(u"co"_s, project.id, {},
                                 {{u"kind"_s, kind},
                                  {u"status"_s, status},
                                  {u"markup"_s, u"10"_s},
                                  {u"days"_s, QString::number(days)}});
            db.add(u"co_line"_s, project.id, r.id, {{u"amount"_s, QString::number(amount)}});
        };
        co(u"owner"_s, u"approved"_s, 20000, 5); // 22000 with markup
        co(u"owner"_s, u"approved"_s, -3000, 2); // a credit: -3300
        co(u"owner"_s, u"pending"_s, 5000, 3);   // 5500; its days do not count
        co(u"owner"_s, u"rejected"_s, 9999, 9);
        co(u"sub"_s, u"approved"_s, 7777777, 40); // never the contract
        co(u""_s, u"approved"_s, 1234, 1);
        QCOMPARE(contract(db, project), (Calc::ContractSummary{1000000, 18700, 5500, 1018700, 1024200, 7}));
    }

    void jobCostRows()
    {
        DB db;
        db.setCompanyID(u"C"_s);
        const QString p = u"P"_s;
        auto add = [&](const QString &kind, const QString &parent, const Fields &f) {
            return db.add(kind, p, parent, f);
        };
        add(u"budget_line"_s, {}, {{u"costCode"_s, u"01"_s}, {u"original"_s, u"100000"_s}});
        // Approved and pending changes on one code with different amounts: only the approved one revises.
        for (const auto &[status, code, amount] : {std::tuple{u"approved"_s, u"01"_s, u"5000"_s},
                                                   {u"pending"_s, u"01"_s, u"700"_s},
                                                   {u"rejected"_s, u"09"_s, u"5000"_s}}) {
            const Rec co = add(u"co"_s, {}, {{u"kind"_s, u"sub"_s}, {u"status"_s, status}});
            add(u"co_line"_s, co.id, {{u"costCode"_s, code}, {u"amount"_s, amount}});
        }
        for (const auto &[status, code, unit] : {std::tuple{u"Draft"_s, u"77"_s, u"999"_s},
                                                 {u"Issued"_s, u"03"_s, u"101"_s},
                                                 {u"Closed"_s, u""_s, u"16"_s},
                                                 {u"Received"_s, u"04"_s, u"200"_s},
                                                 {u"Void"_s, u"78"_s, u"333"_s}}) {
            const Rec po = add(u"po"_s, {}, {{u"status"_s, status}, {u"costCode"_s, code}});
            add(u"po_line"_s, po.id, {{u"qty"_s, u"2.5"_s}, {u"unitCost"_s, unit}}); // the order's code
        }
        add(u"expense"_s, {}, {{u"costCode"_s, u"05"_s}, {u"amount"_s, u"12345"_s}});
        for (const auto &[code, in, out, brk, rate] :
             {std::tuple{u"06"_s, u"22:00"_s, u"06:00"_s, u"30"_s, u"3000"_s}, // 7.5 h overnight
              {u"06"_s, u"08:00"_s, u"08:30"_s, u"60"_s, u"5000"_s},           // break longer than the shift
              {u"07"_s, u"08:00"_s, u"08:01"_s, u""_s, u"10000"_s},            // one minute is 0.02 h
              {u"11"_s, u"07:00"_s, u""_s, u"30"_s, u"4400"_s},                // still on the clock: nothing
              {u"11"_s, u"07:00"_s, u" \t "_s, u"0"_s, u"4400"_s},             // blanks are no time either
              {u"11"_s, u""_s, u"15:30"_s, u"0"_s, u"4400"_s}})                // never clocked in
            add(u"timecard"_s, {},
                {{u"costCode"_s, code},
                 {u"in"_s, in},
                 {u"out"_s, out},
                 {u"break"_s, brk},
                 {u"rate"_s, rate}});
        const Rec machine = db.add(u"equipment"_s, {}, {}, {{u"rate"_s, u"12500"_s}});
        add(u"equip_log"_s, {},
            {{u"costCode"_s, u"08"_s}, {u"equipment"_s, machine.id}, {u"hours"_s, u"2.5"_s}});
        add(u"equip_log"_s, {},
            {{u"costCode"_s, u"10"_s}, {u"equipment"_s, u"gone"_s}, {u"hours"_s, u"9"_s}});

        const Calc::JobCost jc = jobCost(db, p);
        QCOMPARE(jc.order, (QStringList{u"01"_s, u"09"_s, u"03"_s, u""_s, u"04"_s, u"05"_s, u"06"_s, u"07"_s,
                                        u"11"_s, u"08"_s, u"10"_s}));
        const QList<Calc::CostRow> want = {
            {105000, 0, 0}, {},          {0, 253, 0}, {0, 40, 0},    {0, 500, 0}, {0, 0, 12345},
            {0, 0, 22500},  {0, 0, 200}, {},          {0, 0, 31250}, {}};
        for (qsizetype k = 0; k < want.size(); ++k)
            QCOMPARE(jc.rows.value(jc.order.at(k)), want.at(k));
        QCOMPARE(jc.total, (Calc::CostRow{105000, 793, 12345 + 22500 + 200 + 31250}));
        // The budget tells the approved change from the pending one on the same code.
        QCOMPARE(budget(db, p).rows.value(u"01"_s), (Calc::BudgetRow{100000, 5000, 700, 105000, 105700}));
        QVERIFY(jobCost(db, u"empty"_s).order.isEmpty());
    }

    // Over random projects the rows keep their invariants and the totals are the column sums.
    void randomBudgetsAndCosts()
    {
        QRandomGenerator rng(20260301);
        const QStringList codes = {u""_s, u"01"_s, u"02"_s, u"03"_s};
        const QStringList statuses = {u"approved"_s, u"pending"_s, u"rejected"_s,
                                      u"Issued"_s,   u"Closed"_s,  u"Void"_s};
        auto pick = [&](const QStringList &from) { return from.at(rng.bounded(int(from.size()))); };
        for (int round = 0; round < 40; ++round) {
            DB db;
            db.setCompanyID(u"C"_s);
            qint64 committed = 0;
            for (int k = rng.bounded(6); k > 0; --k)
                db.add(u"budget_line"_s, u"P"_s, {},
                       {{u"costCode"_s, pick(codes)},
                        {u"original"_s, QString::number(rng.bounded(-1000, 90000))}});
            for (int k = rng.bounded(8); k > 0; --k) {
                const bool isCO = rng.bounded(2);
                const QString status = pick(statuses);
                const Rec head = db.add(isCO ? u"co"_s : u"po"_s, u"P"_s, {},
                                        {{u"status"_s, status}, {u"costCode"_s, pick(codes)}});
                for (int j = rng.bounded(4); j > 0; --j) {
                    const double qty = rng.bounded(1000) / 8.0;
                    const int amount = rng.bounded(-5000, 9000);
                    db.add(isCO ? u"co_line"_s : u"po_line"_s, u"P"_s, head.id,
                           {{u"costCode"_s, pick(codes)},
                            {u"qty"_s, num(qty)},
                            {u"unitCost"_s, QString::number(amount)},
                            {u"amount"_s, QString::number(amount)}});
                    if (!isCO && (status == u"Issued" || status == u"Closed"))
                        committed += qint64(std::round(qty * amount));
                }
            }

            // Costs, some with sort values, some on codes the budget has never seen.
            const QStringList costCodes = codes + QStringList{u"X1"_s, u"X2"_s};
            for (int k = rng.bounded(12); k > 0; --k) {
                Fields f{{u"costCode"_s, pick(costCodes)},
                         {u"amount"_s, QString::number(rng.bounded(9000))},
                         {u"in"_s, u"07:00"_s},
                         {u"out"_s, u"15:30"_s},
                         {u"rate"_s, u"3000"_s}};
                if (rng.bounded(2))
                    f.insert(u"sort"_s, QString::number(rng.bounded(3)));
                db.add(rng.bounded(2) ? u"expense"_s : u"timecard"_s, u"P"_s, {}, f);
            }

            const Calc::BudgetSummary b = budget(db, u"P"_s);
            QCOMPARE(QSet<QString>(b.order.begin(), b.order.end()).size(), b.rows.size());
            Calc::BudgetRow sum;
            for (const QString &code : b.order) {
                const Calc::BudgetRow r = b.rows.value(code);
                QCOMPARE(r.revised, r.original + r.approved);
                QCOMPARE(r.projected, r.revised + r.pending);
                sum = {sum.original + r.original, sum.approved + r.approved, sum.pending + r.pending,
                       sum.revised + r.revised, sum.projected + r.projected};
            }
            QCOMPARE(b.total, sum);

            const Calc::JobCost jc = jobCost(db, u"P"_s);
            QCOMPARE(jc.order.mid(0, b.order.size()), b.order);
            QCOMPARE(QSet<QString>(jc.order.begin(), jc.order.end()).size(), jc.rows.size());
            Calc::CostRow costs;
            for (const QString &code : jc.order) {
                const Calc::CostRow r = jc.rows.value(code);
                QCOMPARE(r.budget, b.rows.value(code).revised);
                costs = {costs.budget + r.budget, costs.committed + r.committed, costs.actual + r.actual};
            }
            QCOMPARE(jc.total, costs);
            QCOMPARE(jc.total.committed, committed);

            // Codes appear in the order their first records take in each list.
            QStringList expected = jc.order.mid(0, b.order.size());
            for (const Rec &po : db.list(u"po"_s, {.project = u"P"_s}))
                if (po.f.value(u"status") == u"Issued" || po.f.value(u"status") == u"Received" ||
                    po.f.value(u"status") == u"Closed")
                    for (const Rec &line : db.list(u"po_line"_s, {.parent = po.id})) {
                        const QString code = line.f.value(u"costCode").isEmpty() ? po.f.value(u"costCode")
                                                                                 : line.f.value(u"costCode");
                        if (!expected.contains(code))
                            expected.append(code);
                    }
            for (const QString &kind : {u"expense"_s, u"timecard"_s, u"equip_log"_s})
                for (const Rec &r : db.list(kind, {.project = u"P"_s}))
                    if (!expected.contains(r.f.value(u"costCode")))
                        expected.append(r.f.value(u"costCode"));
            QCOMPARE(jc.order, expected);
        }
    }
};

TRESTLE_TEST(TotalsTests);
#include "totalstests.moc"
