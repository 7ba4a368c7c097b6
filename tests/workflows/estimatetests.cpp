// Estimate to budget, contract and schedule of values; assemblies.
#include "shop.h"
#include "testmain.h"
#include "workflows/changeorders.h"
#include "workflows/estimates.h"

#include "calc/datefmt.h"
#include "calc/totals.h"

#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;
using TestShop::Shop;

struct EstLine
{
    int code; // index into the company's cost codes, -1 for none
    QString qty;
    qint64 unitCost;
};
Q_DECLARE_METATYPE(EstLine)

namespace {

Rec estimate(Shop &s, const QList<EstLine> &lines, const QString &markup, const QString &tax)
{
    const Rec est = s.db.add(u"estimate"_s, s.project.id, {}, {{u"markup"_s, markup}, {u"tax"_s, tax}});
    const QList<Rec> codes = s.db.costCodes();
    for (const EstLine &l : lines)
        s.db.add(u"est_line"_s, s.project.id, est.id,
                 {{u"costCode"_s, l.code < 0 ? QString() : codes.at(l.code).id},
                  {u"qty"_s, l.qty},
                  {u"unitCost"_s, QString::number(l.unitCost)}});
    return est;
}

QList<qint64> amounts(const QList<Rec> &recs, const QString &key)
{
    QList<qint64> out;
    for (const Rec &r : recs)
        out.append(r.i(key));
    return out;
}
} // namespace

class EstimateTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void shares_data()
    {
        QTest::addColumn<QList<EstLine>>("lines");
        QTest::addColumn<QString>("markup");
        QTest::addColumn<QList<qint64>>("originals");
        QTest::addColumn<QList<qint64>>("shares");
        QTest::newRow("grossed up by markup")
            << QList<EstLine>{{0, u"1"_s, 30000}, {1, u"1"_s, 70000}} << u"10"_s
            << QList<qint64>{30000, 70000} << QList<qint64>{33000, 77000};
        QTest::newRow("last takes the odd cents") // total 30001
            << QList<EstLine>{{0, u"1"_s, 10000}, {1, u"1"_s, 10000}, {2, u"1"_s, 10000}} << u"0.0033"_s
            << QList<qint64>{10000, 10000, 10000} << QList<qint64>{10000, 10000, 10001};
        QTest::newRow("codes merge in first-seen order")
            << QList<EstLine>{{1, u"2"_s, 1000},
                              {-1, u"1"_s, 500},
                              {1, u"1.5"_s, 1000},
                              {-1, u"0.333"_s, 1000}}
            << u"0"_s << QList<qint64>{3500, 833} << QList<qint64>{3500, 833};
        QTest::newRow("zero subtotal") << QList<EstLine>{{0, u"1"_s, 1000}, {1, u"-1"_s, 1000}} << u"10"_s
                                       << QList<qint64>{1000, -1000} << QList<qint64>{0, 0};
        QTest::newRow("no lines") << QList<EstLine>{} << u"10"_s << QList<qint64>{} << QList<qint64>{};
    }
    void shares()
    {
        QFETCH(QList<EstLine>, lines);
        QFETCH(QString, markup);
        QFETCH(QList<qint64>, originals);
        QFETCH(QList<qint64>, shares);
        Shop s;
        // Old budget and schedule lines go.
        s.db.add(u"budget_line"_s, s.project.id, {}, {{u"original"_s, u"5"_s}});
        s.sov(5, 1);
        const Rec est = estimate(s, lines, markup, u"0"_s);
        useEstimateAsBudget(s.db, est);
        const RecFilter inProject{.project = s.project.id};
        QCOMPARE(amounts(s.db.list(u"budget_line"_s, inProject), u"original"_s), originals);
        const QList<Rec> sov = s.db.list(u"sov_line"_s, inProject);
        QCOMPARE(amounts(sov, u"scheduled"_s), shares);
        QCOMPARE(s.field(s.project, u"contract"_s), QString::number(estimateTotals(s.db, est).total));
        for (qsizetype i = 0; i < sov.size(); ++i)
            QCOMPARE(sov.at(i).f.value(u"item"), QString::number(i + 1));
    }

    void descriptionsAndCOLines()
    {
        Shop s;
        const Rec co = s.co(2, u"owner"_s);
        setCOStatus(s.db, co, u"approved"_s);
        const Rec est = estimate(s, {{0, u"1"_s, 100}, {-1, u"1"_s, 100}}, u"0"_s, u"0"_s);
        useEstimateAsBudget(s.db, est);
        useEstimateAsBudget(s.db, est);
        const QList<Rec> sov = s.db.list(u"sov_line"_s, {.project = s.project.id});
        const QString code = s.db.label(s.db.costCodes().first().id);
        QCOMPARE(sov.size(), 3);
        QCOMPARE(sov.at(0).f.value(u"description"), code);
        QCOMPARE(sov.at(1).f.value(u"description"), u"General"_s);
        QCOMPARE(sov.at(2).f.value(u"co"), co.id);
        QCOMPARE(sov.at(2).f.value(u"sort"), u"1002"_s);
        QCOMPARE(s.db.list(u"budget_line"_s, {.project = s.project.id}).first().f.value(u"description"),
                 code);
    }

    void assembly_data()
    {
        QTest::addColumn<QString>("qtyPer");
        QTest::addColumn<double>("qty");
        QTest::addColumn<QString>("want");
        QTest::newRow("halves away from zero") << u"0.125"_s << 3.0 << u"0.38"_s;
        QTest::newRow("whole keeps a decimal") << u"4"_s << 300.0 << u"1200.0"_s;
        QTest::newRow("shortest text") << u"0.5"_s << 25.0 << u"12.5"_s;
        QTest::newRow("two decimals at most") << u"0.333"_s << 1.0 << u"0.33"_s;
        QTest::newRow("unreadable per") << u"x"_s << 10.0 << u"0.0"_s;
    }
    void assembly()
    {
        QFETCH(QString, qtyPer);
        QFETCH(double, qty);
        QFETCH(QString, want);
        Shop s;
        const Rec est = estimate(s, {{0, u"1"_s, 1}, {0, u"1"_s, 1}}, u"0"_s, u"0"_s);
        const Rec wall = s.db.add(u"assembly"_s, {}, {}, {{u"name"_s, u"Wall"_s}, {u"unit"_s, u"SF"_s}});
        s.db.add(u"asm_line"_s, {}, wall.id,
                 {{u"description"_s, u"Studs"_s},
                  {u"qtyPer"_s, qtyPer},
                  {u"unit"_s, u"EA"_s},
                  {u"unitCost"_s, u"375"_s}});
        s.db.add(u"asm_line"_s, {}, wall.id, {{u"description"_s, u"Board"_s}, {u"qtyPer"_s, u"1"_s}});
        addAssembly(s.db, wall, est, qty);
        const QList<Rec> lines = s.db.list(u"est_line"_s, {.parent = est.id});
        QCOMPARE(lines.size(), 4);
        const Rec &studs = lines.at(2);
        QCOMPARE(studs.f.value(u"qty"), want);
        QCOMPARE(studs.f.value(u"description"), u"Wall: Studs"_s);
        QCOMPARE(studs.f.value(u"unitCost"), u"375"_s);
        QCOMPARE(studs.project, s.project.id);
        QCOMPARE(lines.at(3).f.value(u"sort"), u"4"_s);

        const Rec empty = s.db.add(u"assembly"_s, {}, {}, {{u"name"_s, u"Nothing"_s}});
        addAssembly(s.db, empty, est, 5);
        QCOMPARE(s.db.count(u"est_line"_s, {.parent = est.id}), 4);
    }

    // Whatever the lines, the schedule adds up to the estimate total exactly
    // and the budget to its subtotal, one line per code.
    void sharesAddUp()
    {
        QRandomGenerator rng(20261115);
        Shop s;
        for (int round = 0; round < 300; ++round) {
            QList<EstLine> lines;
            QSet<int> codes;
            const int n = rng.bounded(1, 9);
            for (int k = 0; k < n; ++k) {
                const int code = rng.bounded(-1, 4);
                codes.insert(code);
                const double qty = (rng.bounded(-2000, 100000)) / 100.0;
                lines.append({code, QString::number(qty), qint64(rng.bounded(0, 10000000))});
            }
            const QString markup = QString::number(rng.bounded(0, 3000) / 100.0);
            const QString tax = QString::number(rng.bounded(0, 1100) / 100.0);
            const Rec est = estimate(s, lines, markup, tax);
            useEstimateAsBudget(s.db, est);
            const Calc::EstimateTotals t = estimateTotals(s.db, est);
            const QList<Rec> budget = s.db.list(u"budget_line"_s, {.project = s.project.id});
            const QList<qint64> scheduled =
                amounts(s.db.list(u"sov_line"_s, {.project = s.project.id}), u"scheduled"_s);
            const QList<qint64> original = amounts(budget, u"original"_s);
            QCOMPARE(std::accumulate(scheduled.begin(), scheduled.end(), qint64(0)), t.total);
            QCOMPARE(std::accumulate(original.begin(), original.end(), qint64(0)), t.subtotal);
            QCOMPARE(budget.size(), codes.size());
            s.db.remove(est.id);
        }
    }
};

TRESTLE_TEST(EstimateTests);
#include "estimatetests.moc"
