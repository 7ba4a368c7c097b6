// The WIP schedule against a computation of its own, written here from the
// accounting rules: random companies, then the edges one by one.
#include "testmain.h"
#include "workflows/wipschedule.h"

#include "calc/payapp.h"
#include "store/db.h"

#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// What a project was built with, as the schedule should read it.
struct Made
{
    QString status;
    qint64 contract = 0; // revised: original plus approved owner change orders
    qint64 budget = 0;   // revised: budget lines plus approved change-order lines
    qint64 cost = 0;
    qint64 billed = 0;
};

// The expected line, each figure from the rules in the plainest terms.
struct Want
{
    qint64 t, egp, etc, e, gp, loss, over, under, backlog;
    int tenths;
};

// The whole number nearest to num / den (den > 0), halves away from zero,
// found by comparing candidates exactly rather than by dividing.
qint64 nearest(qint64 a, qint64 b, qint64 den)
{
    __extension__ typedef __int128 W;
    const W num = W(a) * b;
    const auto guess = qint64(std::llround(static_cast<long double>(num) / den));
    qint64 best = guess;
    W bestGap = -1;
    for (qint64 c = guess - 2; c <= guess + 2; ++c) {
        W gap = W(c) * den * 2 - num * 2;
        gap = gap < 0 ? -gap : gap;
        const bool tieAway = gap == bestGap && (c < 0 ? -c : c) > (best < 0 ? -best : best);
        if (bestGap < 0 || gap < bestGap || tieAway) {
            best = c;
            bestGap = gap;
        }
    }
    return best;
}

Want expect(const Made &m)
{
    Want w{};
    const bool done = m.status == u"Complete";
    w.t = done ? m.cost : (m.cost > m.budget ? m.cost : m.budget);
    w.egp = m.contract - w.t;
    w.etc = w.t - m.cost;
    // A job in progress without a contract or an estimate: revenue follows cost
    // within 0…C, and there is no profit to recognise, nor a loss to foresee.
    if (!done && (m.contract <= 0 || m.budget <= 0)) {
        w.egp = 0;
        w.e = std::clamp<qint64>(m.cost, 0, std::max<qint64>(m.contract, 0));
        w.tenths = 0;
        w.gp = w.e - m.cost;
        w.loss = 0;
        w.over = m.billed > w.e ? m.billed - w.e : 0;
        w.under = w.e > m.billed ? w.e - m.billed : 0;
        w.backlog = m.contract - w.e;
        return w;
    }
    if (done) {
        w.e = m.contract;
        w.tenths = 1000;
    } else if (w.t <= 0 || m.cost <= 0) {
        w.e = 0;
        w.tenths = 0;
    } else if (m.cost >= w.t) {
        w.e = m.contract;
        w.tenths = 1000;
    } else {
        w.e = nearest(m.contract, m.cost, w.t);
        w.tenths = int(nearest(m.cost, 1000, w.t));
    }
    w.gp = w.egp < 0 ? w.egp : w.e - m.cost;
    w.loss = w.egp < 0 ? (w.e - m.cost) - w.egp : 0;
    w.over = m.billed > w.e ? m.billed - w.e : 0;
    w.under = w.e > m.billed ? w.e - m.billed : 0;
    w.backlog = m.contract - w.e;
    return w;
}

// Builds one project's records so that it reads as `m` asks, in ways a user
// would: change orders of both kinds, bills and credits, pay applications
// (the latest counts) and invoices, some of them Void.
Rec build(DB &db, QRandomGenerator &rnd, Made &m, int index)
{
    const qint64 original = m.contract;
    const Rec p = db.add(u"project"_s, {}, {},
                         {{u"name"_s, u"Job "_s + QString::number(index)},
                          {u"number"_s, QString::number(1000 + index)},
                          {u"status"_s, m.status},
                          {u"contract"_s, QString::number(original)}});
    if (m.budget != 0)
        db.add(u"budget_line"_s, p.id, {},
               {{u"costCode"_s, u"01"_s}, {u"original"_s, QString::number(m.budget)}});
    // An approved owner change order: revenue and budget both grow; a pending
    // one and a sub's change nothing of the contract.
    if (rnd.bounded(2)) {
        const qint64 amount = qint64(rnd.bounded(-200000, 500000));
        for (const auto &[kind, status] :
             {std::pair{u"owner"_s, u"approved"_s}, std::pair{u"owner"_s, u"pending"_s},
              std::pair{u"sub"_s, u"approved"_s}}) {
            const Rec co =
                db.add(u"co"_s, p.id, {}, {{u"kind"_s, kind}, {u"status"_s, status}, {u"markup"_s, u"0"_s}});
            db.add(u"co_line"_s, p.id, co.id,
                   {{u"costCode"_s, u"02"_s}, {u"amount"_s, QString::number(amount)}});
            if (status == u"approved") {
                m.budget += amount;
                if (kind == u"owner")
                    m.contract += amount;
            }
        }
    }
    // Cost to date in one to three bills; a credit may take it below zero.
    const int bills = int(rnd.bounded(1, 4));
    qint64 left = m.cost;
    for (int b = 0; b < bills; ++b) {
        const qint64 amount = b + 1 == bills ? left : left / 2;
        left -= amount;
        db.add(u"expense"_s, p.id, {}, {{u"costCode"_s, u"01"_s}, {u"amount"_s, QString::number(amount)}});
    }
    // Billed: line 4 of the latest pay application sent to the owner, plus
    // invoices neither Draft nor Void; a draft application after it is no billing.
    const qint64 billed = m.billed;
    m.billed = 0;
    if (billed != 0 && rnd.bounded(3) > 0) {
        const Rec sov =
            db.add(u"sov_line"_s, p.id, {},
                   {{u"scheduled"_s, QString::number(std::abs(billed) * 2 + 100)}, {u"sort"_s, u"1"_s}});
        const qint64 first = billed / 3;
        const Rec one = db.add(u"pay_app"_s, p.id, {},
                               {{u"number"_s, u"1"_s}, {u"retWork"_s, u"10"_s}, {u"status"_s, u"paid"_s}});
        setPayLine(db, one, sov.id, first, std::nullopt);
        const Rec two =
            db.add(u"pay_app"_s, p.id, {},
                   {{u"number"_s, u"2"_s}, {u"retWork"_s, u"5"_s}, {u"status"_s, u"submitted"_s}});
        setPayLine(db, two, sov.id, billed - first, std::nullopt);
        const Rec draft = db.add(u"pay_app"_s, p.id, {},
                                 {{u"number"_s, u"3"_s}, {u"retWork"_s, u"5"_s}, {u"status"_s, u"draft"_s}});
        setPayLine(db, draft, sov.id, 4321, std::nullopt);
        m.billed = billed;
    }
    const qint64 invoiced = qint64(rnd.bounded(0, 300000));
    for (const auto &[status, price] : {std::pair{u"Sent"_s, invoiced}, std::pair{u"Void"_s, qint64(77777)},
                                        std::pair{u"Draft"_s, qint64(5555)}}) {
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, status}, {u"tax"_s, u"8"_s}});
        db.add(u"inv_line"_s, p.id, inv.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, QString::number(price)}});
        if (status == u"Sent")
            m.billed += price;
    }
    return p;
}

void compareLine(const WipLine &l, const Made &m)
{
    const Want w = expect(m);
    QCOMPARE(l.contract, m.contract);
    QCOMPARE(l.costToDate, m.cost);
    QCOMPARE(l.billed, m.billed);
    QCOMPARE(l.estimatedCost, w.t);
    QCOMPARE(l.estimatedProfit, w.egp);
    QCOMPARE(l.costToComplete, w.etc);
    QCOMPARE(l.percentTenths, w.tenths);
    QCOMPARE(l.earned, w.e);
    QCOMPARE(l.profitToDate, w.gp);
    QCOMPARE(l.lossProvision, w.loss);
    QCOMPARE(l.overBilled, w.over);
    QCOMPARE(l.underBilled, w.under);
    QCOMPARE(l.backlog, w.backlog);
}

} // namespace

class WipTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void randomCompanies_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed : {1u, 2u, 3u, 17u, 99u, 2026u})
            QTest::newRow(qPrintable(u"seed %1"_s.arg(seed))) << seed;
    }

    void randomCompanies()
    {
        QFETCH(quint32, seed);
        QRandomGenerator rnd(seed);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const QStringList statuses{u"Bidding"_s,  u"Pre-construction"_s, u"Active"_s, u"On hold"_s,
                                   u"Closeout"_s, u"Complete"_s,         QString(),   u"complete"_s};
        QList<Made> made;
        QList<QString> ids;
        for (int i = 0; i < 24; ++i) {
            Made m;
            m.status = statuses.at(int(rnd.bounded(qsizetype(statuses.size()))));
            // Some without budget (T = 0), some with credits that turn C or CTD negative.
            m.contract = qint64(rnd.bounded(-50000, 900000000));
            m.budget = rnd.bounded(5) == 0 ? 0 : qint64(rnd.bounded(0, 800000000));
            m.cost = rnd.bounded(6) == 0 ? -qint64(rnd.bounded(1, 90000)) : qint64(rnd.bounded(0, 900000000));
            m.billed = rnd.bounded(4) == 0 ? 0 : qint64(rnd.bounded(1, 900000000));
            ids.append(build(db, rnd, m, i).id);
            made.append(m);
        }

        const WipSchedule s = WipSchedule::of(db);
        QList<Made> progress, completed;
        QStringList progressIds, completedIds;
        for (int i = 0; i < made.size(); ++i) {
            if (made.at(i).status == u"Bidding")
                continue;
            const bool done = made.at(i).status == u"Complete";
            (done ? completed : progress).append(made.at(i));
            (done ? completedIds : progressIds).append(ids.at(i));
        }
        QCOMPARE(s.inProgress.title, u"Contracts in progress"_s);
        QCOMPARE(s.completed.title, u"Completed contracts"_s);
        QCOMPARE(s.inProgress.lines.size(), progress.size());
        QCOMPARE(s.completed.lines.size(), completed.size());
        for (int i = 0; i < progress.size(); ++i) {
            QCOMPARE(s.inProgress.lines.at(i).project, progressIds.at(i)); // list order kept
            QVERIFY(!s.inProgress.lines.at(i).completed);
            compareLine(s.inProgress.lines.at(i), progress.at(i));
        }
        for (int i = 0; i < completed.size(); ++i) {
            QCOMPARE(s.completed.lines.at(i).project, completedIds.at(i));
            compareLine(s.completed.lines.at(i), completed.at(i));
        }

        // Totals: each money column summed, never netted; P from the summed CTD and T.
        const auto checkTotal = [](const WipLine &total, const QList<Made> &jobs) {
            qint64 c = 0, t = 0, ctd = 0, e = 0, over = 0, under = 0, loss = 0, b = 0;
            for (const Made &m : jobs) {
                const Want w = expect(m);
                c += m.contract;
                t += w.t;
                ctd += m.cost;
                e += w.e;
                over += w.over;
                under += w.under;
                loss += w.loss;
                b += m.billed;
            }
            QCOMPARE(total.contract, c);
            QCOMPARE(total.estimatedCost, t);
            QCOMPARE(total.costToDate, ctd);
            QCOMPARE(total.earned, e);
            QCOMPARE(total.overBilled, over);
            QCOMPARE(total.underBilled, under);
            QCOMPARE(total.lossProvision, loss);
            QCOMPARE(total.billed, b);
            QCOMPARE(total.backlog, c - e);
            QCOMPARE(total.percentTenths, t <= 0 || ctd <= 0 ? 0
                                          : ctd >= t         ? 1000
                                                             : int(nearest(ctd, 1000, t)));
        };
        checkTotal(s.inProgress.total, progress);
        checkTotal(s.completed.total, completed);
        checkTotal(s.total, progress + completed);
    }

    void edges_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<qint64>("contract");
        QTest::addColumn<qint64>("budget");
        QTest::addColumn<qint64>("cost");
        QTest::addColumn<qint64>("billed");
        // T, EGP, ETC, P in tenths, E, GP to date, loss provision, over, under, backlog: worked by hand.
        QTest::addColumn<QList<qint64>>("want");
        QTest::newRow("no estimate, no cost: nothing earned, no profit")
            << u"Active"_s << qint64(100000) << qint64(0) << qint64(0) << qint64(5000)
            << QList<qint64>{0, 0, 0, 0, 0, 0, 0, 5000, 0, 100000};
        QTest::newRow("no estimate: revenue equals cost, not the contract")
            << u"Active"_s << qint64(112694000) << qint64(0) << qint64(59500) << qint64(0)
            << QList<qint64>{59500, 0, 0, 0, 59500, 0, 0, 0, 59500, 112634500};
        QTest::newRow("no estimate, cost past the contract: revenue stops at it")
            << u"Active"_s << qint64(40000) << qint64(0) << qint64(50000) << qint64(45000)
            << QList<qint64>{50000, 0, 0, 0, 40000, -10000, 0, 5000, 0, 0};
        QTest::newRow("no contract: billings are all over billed")
            << u"Active"_s << qint64(0) << qint64(200000) << qint64(30000) << qint64(935000)
            << QList<qint64>{200000, 0, 170000, 0, 0, -30000, 0, 935000, 0, 0};
        QTest::newRow("cost credited below zero")
            << u"Active"_s << qint64(100000) << qint64(80000) << qint64(-3000) << qint64(0)
            << QList<qint64>{80000, 20000, 83000, 0, 0, 3000, 0, 0, 0, 100000};
        QTest::newRow("negative contract: no contract")
            << u"Active"_s << qint64(-10000) << qint64(5000) << qint64(2500) << qint64(1000)
            << QList<qint64>{5000, 0, 2500, 0, 0, -2500, 0, 1000, 0, -10000};
        QTest::newRow("completed without an estimate keeps its final figures")
            << u"Complete"_s << qint64(100000) << qint64(0) << qint64(70000) << qint64(100000)
            << QList<qint64>{70000, 30000, 0, 1000, 100000, 30000, 0, 0, 0, 0};
        QTest::newRow("cost past budget")
            << u"On hold"_s << qint64(300000) << qint64(100000) << qint64(150000) << qint64(200000)
            << QList<qint64>{150000, 150000, 0, 1000, 300000, 150000, 0, 0, 100000, 0};
        QTest::newRow("loss job, half done")
            << u"Active"_s << qint64(100000) << qint64(120000) << qint64(60000) << qint64(70000)
            << QList<qint64>{120000, -20000, 60000, 500, 50000, -20000, 10000, 20000, 0, 50000};
        QTest::newRow("completed, billed short")
            << u"Complete"_s << qint64(100000) << qint64(90000) << qint64(95000) << qint64(80000)
            << QList<qint64>{95000, 5000, 0, 1000, 100000, 5000, 0, 0, 20000, 0};
        QTest::newRow("completed under budget, no cost")
            << u"Complete"_s << qint64(50000) << qint64(40000) << qint64(0) << qint64(50000)
            << QList<qint64>{0, 50000, 0, 1000, 50000, 50000, 0, 0, 0, 0};
        QTest::newRow("half a cent rounds up") << u""_s << qint64(100) << qint64(8) << qint64(1) << qint64(0)
                                               << QList<qint64>{8, 92, 7, 125, 13, 12, 0, 0, 13, 87};
        QTest::newRow("a credit contract recognises nothing")
            << u"Closeout"_s << qint64(-100) << qint64(8) << qint64(1) << qint64(0)
            << QList<qint64>{8, 0, 7, 0, 0, -1, 0, 0, 0, -100};
        QTest::newRow("a third") << u"Active"_s << qint64(100000) << qint64(30000) << qint64(10000)
                                 << qint64(0)
                                 << QList<qint64>{30000, 70000, 20000, 333, 33333, 23333, 0, 0, 33333, 66667};
        // A product beyond 64 bits: C x CTD is about 3.3e21.
        QTest::newRow("largest amounts")
            << u"Active"_s << qint64(99999999999) << qint64(99999999997) << qint64(33333333333) << qint64(0)
            << QList<qint64>{99999999997, 2, 66666666664, 333,         33333333334,
                             1,           0, 0,           33333333334, 66666666665};
    }

    void edges()
    {
        QFETCH(QString, status);
        QFETCH(qint64, contract);
        QFETCH(qint64, budget);
        QFETCH(qint64, cost);
        QFETCH(qint64, billed);
        QFETCH(QList<qint64>, want);
        Made m{status, contract, budget, cost, billed};
        // Billed through a sent invoice only, so the line holds no pay application; a
        // draft invoice and a void one are no billings.
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const Rec p = db.add(
            u"project"_s, {}, {},
            {{u"name"_s, u"Edge"_s}, {u"status"_s, status}, {u"contract"_s, QString::number(contract)}});
        db.add(u"budget_line"_s, p.id, {}, {{u"original"_s, QString::number(budget)}});
        db.add(u"expense"_s, p.id, {}, {{u"amount"_s, QString::number(cost)}});
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}, {u"tax"_s, u"10"_s}});
        db.add(u"inv_line"_s, p.id, inv.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, QString::number(billed)}});
        const Rec draft = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Draft"_s}});
        db.add(u"inv_line"_s, p.id, draft.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, u"12345"_s}});
        const Rec voided = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Void"_s}});
        db.add(u"inv_line"_s, p.id, voided.id, {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, u"99999"_s}});

        const WipSchedule s = WipSchedule::of(db);
        const QList<WipLine> lines = s.inProgress.lines + s.completed.lines;
        QCOMPARE(lines.size(), 1);
        const WipLine &l = lines.first();
        QCOMPARE(l.completed, status == u"Complete");
        QCOMPARE(l.billed, billed);
        const QList<qint64> got{l.estimatedCost, l.estimatedProfit, l.costToComplete, l.percentTenths,
                                l.earned,        l.profitToDate,    l.lossProvision,  l.overBilled,
                                l.underBilled,   l.backlog};
        QCOMPARE(got, want);
        // The rules written out agree with the hand-worked figures.
        compareLine(l, m);
    }

    void csv()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const auto project = [&](const QString &number, const QString &name, const QString &status,
                                 qint64 contract, qint64 budget, qint64 cost) {
            const Rec p = db.add(u"project"_s, {}, {},
                                 {{u"number"_s, number},
                                  {u"name"_s, name},
                                  {u"status"_s, status},
                                  {u"contract"_s, QString::number(contract)}});
            db.add(u"budget_line"_s, p.id, {}, {{u"original"_s, QString::number(budget)}});
            db.add(u"expense"_s, p.id, {}, {{u"amount"_s, QString::number(cost)}});
        };
        project(u"A-1"_s, u"Done, early"_s, u"Complete"_s, 123456, 100000, 90000);
        project(u"B-2"_s, u"Bid only"_s, u"Bidding"_s, 500000, 400000, 0);
        project(u"C-3"_s, u"Mill, \"north\""_s, u"Active"_s, 1000000, 600000, 343800);
        project(u"D-4"_s, u"Credit"_s, u"Active"_s, -5000, 0, 0);
        const QList<QStringList> rows = WipSchedule::of(db).csvRows();
        QCOMPARE(rows.size(), 4); // heads and three jobs: no bidding project and no totals
        QCOMPARE(
            rows.at(0).join(u','),
            u"Number,Project,Section,Contract,Estimated cost,Estimated gross profit,Cost to date,"
            u"Cost to complete,% complete,Earned revenue,Gross profit to date,Loss provision,Billed to date,"
            u"Over billings,Under billings,Backlog"_s);
        // In progress first, then completed, whatever the list order.
        QCOMPARE(rows.at(1),
                 (QStringList{u"C-3"_s, u"Mill, \"north\""_s, u"In progress"_s, u"10000.00"_s, u"6000.00"_s,
                              u"4000.00"_s, u"3438.00"_s, u"2562.00"_s, u"57.3"_s, u"5730.00"_s, u"2292.00"_s,
                              u"0.00"_s, u"0.00"_s, u"0.00"_s, u"5730.00"_s, u"4270.00"_s}));
        QCOMPARE(rows.at(2), (QStringList{u"D-4"_s, u"Credit"_s, u"In progress"_s, u"-50.00"_s, u"0.00"_s,
                                          u"0.00"_s, u"0.00"_s, u"0.00"_s, u"0.0"_s, u"0.00"_s, u"0.00"_s,
                                          u"0.00"_s, u"0.00"_s, u"0.00"_s, u"0.00"_s, u"-50.00"_s}));
        QCOMPARE(rows.at(3),
                 (QStringList{u"A-1"_s, u"Done, early"_s, u"Completed"_s, u"1234.56"_s, u"900.00"_s,
                              u"334.56"_s, u"900.00"_s, u"0.00"_s, u"100.0"_s, u"1234.56"_s, u"334.56"_s,
                              u"0.00"_s, u"0.00"_s, u"0.00"_s, u"1234.56"_s, u"0.00"_s}));
    }

    void plainMoney_data()
    {
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << qint64(0) << u"0.00"_s;
        QTest::newRow("a cent") << qint64(1) << u"0.01"_s;
        QTest::newRow("a credit of a cent") << qint64(-1) << u"-0.01"_s;
        QTest::newRow("no grouping") << qint64(123456789) << u"1234567.89"_s;
        QTest::newRow("credit") << qint64(-5000) << u"-50.00"_s;
        QTest::newRow("64-bit floor") << std::numeric_limits<qint64>::min() << u"-92233720368547758.08"_s;
    }

    void plainMoney()
    {
        QFETCH(qint64, cents);
        QFETCH(QString, text);
        QCOMPARE(WipSchedule::plainMoney(cents), text);
        // What a spreadsheet reads back is the amount.
        if (cents != std::numeric_limits<qint64>::min())
            QCOMPARE(qint64(std::llround(text.toDouble() * 100)), cents);
    }
};

TRESTLE_TEST(WipTests);

#include "wiptests.moc"
