// Pay application arithmetic and its chain through earlier applications.
#include "calc/payapp.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {
// A project with a contract, an approved owner change order and two schedule lines of 100000 each.
struct Job
{
    DB db;
    Rec project;
    QList<Rec> sov;
    explicit Job(int sovLines = 2)
    {
        db.setCompanyID(u"C"_s);
        project = db.add(u"project"_s, {}, {}, {{u"contract"_s, u"300000"_s}});
        const Rec co =
            db.add(u"co"_s, project.id, {},
                   {{u"kind"_s, u"owner"_s}, {u"status"_s, u"approved"_s}, {u"markup"_s, u"10"_s}});
        db.add(u"co_line"_s, project.id, co.id, {{u"amount"_s, u"10000"_s}});
        for (int k = 0; k < sovLines; ++k)
            sov.append(db.add(u"sov_line"_s, project.id, {}, {{u"scheduled"_s, u"100000"_s}}));
    }
    Rec app(int number, double retWork, double retMat = 0)
    {
        return db.add(u"pay_app"_s, project.id, {},
                      {{u"number"_s, QString::number(number)},
                       {u"retWork"_s, QString::number(retWork)},
                       {u"retMat"_s, QString::number(retMat)}});
    }
    void bill(const Rec &app, int sovIndex, qint64 thisPeriod, qint64 stored = 0)
    {
        setPayLine(db, app, sov.at(sovIndex).id, thisPeriod, stored);
    }
    Calc::G702 g(const Rec &app) { return payAppData(db, app).calc.g702; }
};
} // namespace

class PayAppTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void rows_data()
    {
        QTest::addColumn<Calc::PayLine>("line");
        QTest::addColumn<double>("pct");
        QTest::addColumn<qint64>("balance");
        QTest::addColumn<qint64>("retWork"); // at 10 %
        QTest::addColumn<qint64>("retMat");  // at 5 %
        QTest::newRow("a third") << Calc::PayLine{3, 0, 1, 0} << 33.3 << qint64(2) << qint64(0) << qint64(0);
        QTest::newRow("two thirds") << Calc::PayLine{3, 1, 1, 0} << 66.7 << qint64(1) << qint64(0)
                                    << qint64(0);
        QTest::newRow("nothing scheduled")
            << Calc::PayLine{0, 0, 500, 0} << 0.0 << qint64(-500) << qint64(50) << qint64(0);
        QTest::newRow("over billed") << Calc::PayLine{1000, 1000, 500, 0} << 150.0 << qint64(-500)
                                     << qint64(150) << qint64(0);
        QTest::newRow("stored apart")
            << Calc::PayLine{10000, 2000, 1000, 3000} << 60.0 << qint64(4000) << qint64(300) << qint64(150);
        QTest::newRow("credit rounds away")
            << Calc::PayLine{1000, 0, -5, -10} << -1.5 << qint64(1015) << qint64(-1) << qint64(-1);
    }
    void rows()
    {
        QFETCH(Calc::PayLine, line);
        QFETCH(double, pct);
        QFETCH(qint64, balance);
        QFETCH(qint64, retWork);
        QFETCH(qint64, retMat);
        const Calc::PayRow row = Calc::payApp({line}, 10, 5, 0, 0, 0).rows.at(0);
        QCOMPARE(row.pct, pct);
        QCOMPARE(row.balance, balance);
        QCOMPARE(row.retWork, retWork);
        QCOMPARE(row.retMat, retMat);
        QCOMPARE(row.completed, line.previous + line.thisPeriod + line.stored);
    }

    void retainagePerRow()
    {
        // 10 % of each 5-cent row is round(0.5) = 1: four rows hold 4 cents, not 10 % of 20.
        const Calc::PayApp app = Calc::payApp(QList<Calc::PayLine>(4, {5, 0, 5, 0}), 10, 0, 0, 0, 0);
        QCOMPARE(app.g702.l5, 4);
        QCOMPARE(app.g702.l6, 16);
    }

    void chainAndRelease()
    {
        Job job;
        // Made out of number order: the chain follows numbers, not creation.
        const Rec third = job.app(3, 0);
        const Rec second = job.app(2, 10);
        const Rec first = job.app(1, 10);
        job.bill(first, 0, 100000);
        job.bill(second, 1, 100000);
        job.bill(third, 0, 0);

        QCOMPARE(job.g(first),
                 (Calc::G702{300000, 11000, 311000, 100000, 10000, 0, 10000, 90000, 0, 90000, 221000}));
        QCOMPARE(job.g(second),
                 (Calc::G702{300000, 11000, 311000, 200000, 20000, 0, 20000, 180000, 90000, 90000, 131000}));
        // Retainage 0 on the last application releases all of it.
        QCOMPARE(job.g(third),
                 (Calc::G702{300000, 11000, 311000, 200000, 0, 0, 0, 200000, 180000, 20000, 111000}));
        const PayAppData d = payAppData(job.db, third);
        QCOMPARE(d.sov.size(), 2);
        QCOMPARE(d.sov.at(1).id, job.sov.at(1).id);
        QCOMPARE(d.calc.rows.at(0).line, (Calc::PayLine{100000, 100000, 0, 0}));
        QCOMPARE(d.calc.rows.at(1).line, (Calc::PayLine{100000, 100000, 0, 0}));
    }

    void oddCases()
    {
        Job empty(0);
        const Rec only = empty.app(1, 10);
        QCOMPARE(payAppData(empty.db, only).calc.rows.size(), 0);
        QCOMPARE(empty.g(only), (Calc::G702{300000, 11000, 311000, 0, 0, 0, 0, 0, 0, 0, 311000}));

        // Equal numbers: neither is earlier than the other.
        Job job;
        const Rec first = job.app(1, 0);
        const Rec a = job.app(2, 0), b = job.app(2, 0);
        job.bill(first, 0, 100);
        job.bill(a, 0, 20);
        job.bill(b, 0, 30);
        QCOMPARE(payAppData(job.db, a).calc.rows.at(0).line.previous, 100);
        QCOMPARE(job.g(b).l7, 100);
        QCOMPARE(job.g(b).l8, 30);

        // A second line for the same schedule line is ignored; one for a deleted line is not counted.
        job.db.add(u"pay_line"_s, job.project.id, a.id,
                   {{u"sov"_s, job.sov.at(0).id}, {u"thisPeriod"_s, u"999"_s}});
        job.db.add(u"pay_line"_s, job.project.id, a.id, {{u"sov"_s, u"gone"_s}, {u"thisPeriod"_s, u"999"_s}});
        QCOMPARE(job.g(a).l4, 120);

        // The recursion guard: at depth 200 line 7 is 0.
        QCOMPARE(payAppData(job.db, a, 199).calc.g702.l7, 100);
        QCOMPARE(payAppData(job.db, a, 200).calc.g702.l7, 0);

        // An application whose project is gone reads every figure as 0.
        const Rec orphan = job.db.add(u"pay_app"_s, u"gone"_s, {}, {{u"number"_s, u"1"_s}});
        QCOMPARE(job.g(orphan), Calc::G702{});
    }

    void setPayLineKeepsOneLine()
    {
        Job job;
        const Rec app = job.app(1, 0);
        setPayLine(job.db, app, job.sov.at(0).id, 500, std::nullopt);
        setPayLine(job.db, app, job.sov.at(0).id, std::nullopt, 70);
        const QList<Rec> lines = job.db.list(u"pay_line"_s, {.parent = app.id});
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).f,
                 (Fields{{u"sov"_s, job.sov.at(0).id}, {u"stored"_s, u"70"_s}, {u"thisPeriod"_s, u"500"_s}}));
        QCOMPARE(lines.at(0).project, job.project.id);
    }

    // Over any chain, the payments due add up to line 6 of the last application,
    // and each line's previous is the work billed on the earlier applications.
    void randomChains()
    {
        QRandomGenerator rng(7411);
        for (int round = 0; round < 30; ++round) {
            Job job(rng.bounded(1, 8));
            const int count = rng.bounded(1, 15);
            QList<int> numbers;
            for (int k = 1; k <= count; ++k)
                numbers.insert(rng.bounded(int(numbers.size()) + 1), k);
            QHash<int, Rec> apps;
            QHash<int, QHash<QString, qint64>> billed; // number → sov → this period
            for (int number : numbers) {
                const Rec app = job.app(number, rng.bounded(0, 21) / 2.0, rng.bounded(0, 11));
                apps.insert(number, app);
                for (int s = 0; s < job.sov.size(); ++s) {
                    if (rng.bounded(4) == 0)
                        continue;
                    const qint64 work = rng.bounded(-2000, 40000),
                                 stored = rng.bounded(0, 3) * rng.bounded(9000);
                    job.bill(app, s, work, stored);
                    billed[number][job.sov.at(s).id] = work;
                }
            }
            qint64 paid = 0;
            for (int number = 1; number <= count; ++number) {
                const PayAppData d = payAppData(job.db, apps.value(number));
                for (int s = 0; s < job.sov.size(); ++s) {
                    qint64 before = 0;
                    for (int k = 1; k < number; ++k)
                        before += billed.value(k).value(job.sov.at(s).id);
                    QCOMPARE(d.calc.rows.at(s).line.previous, before);
                }
                paid += d.calc.g702.l8;
                QCOMPARE(paid, d.calc.g702.l6);
            }
        }
    }

    // Reading a whole project at once gives each application exactly what reading
    // it alone gives, also where the depth guard cuts a chain of 205 applications.
    void wholeProjectMatchesOneByOne_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("shuffled");
        QTest::newRow("short, in order") << 6 << false;
        QTest::newRow("short, listed out of order") << 9 << true;
        QTest::newRow("past the guard") << 205 << true;
    }

    void wholeProjectMatchesOneByOne()
    {
        QFETCH(int, count);
        QFETCH(bool, shuffled);
        QRandomGenerator rng(count);
        Job job(2);
        QList<int> numbers;
        for (int k = 1; k <= count; ++k)
            numbers.insert(shuffled ? rng.bounded(int(numbers.size()) + 1) : numbers.size(), k);
        for (int number : numbers) {
            const Rec app = job.app(number, 5, 0);
            job.bill(app, rng.bounded(2), rng.bounded(1, 500));
        }
        const QHash<QString, PayAppData> all = payAppDataOfProject(job.db, job.project.id);
        const QList<Rec> apps = job.db.list(u"pay_app"_s, {.project = job.project.id});
        QCOMPARE(all.size(), apps.size());
        qint64 paid = 0;
        for (int number = 1; number <= count; ++number)
            for (const Rec &app : apps)
                if (app.i(u"number") == number) {
                    const Calc::G702 alone = payAppData(job.db, app).calc.g702;
                    QCOMPARE(all.value(app.id).calc.g702, alone);
                    paid += alone.l8;
                    QCOMPARE(paid, alone.l6);
                }
    }
};

TRESTLE_TEST(PayAppTests);
#include "payapptests.moc"
