// The schedule's forward pass and its dates, and the small trade rules.
#include "calc/datefmt.h"
#include "calc/rules.h"
#include "calc/schedule.h"
#include "store/db.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

namespace {
// Tasks written "id/duration/preds joined by +/lag/fixed start", e.g. "C/3/B/2/".
QList<Calc::Task> tasksOf(const QStringList &texts)
{
    QList<Calc::Task> tasks;
    for (const QString &text : texts) {
        const QStringList p = text.split(u'/');
        Calc::Task t{p[0], p[1].toLongLong(), p[2].split(u'+', Qt::SkipEmptyParts), p[3].toLongLong(), {}};
        if (!p[4].isEmpty())
            t.fixedStart = p[4].toLongLong();
        tasks.append(t);
    }
    return tasks;
}

// "id start-finish" for each distinct id, in task order.
QString spans(const QList<Calc::Task> &tasks, const QHash<QString, Calc::Span> &result)
{
    QStringList out;
    for (const Calc::Task &t : tasks) {
        const QString text =
            u"%1 %2-%3"_s.arg(t.id).arg(result.value(t.id).start).arg(result.value(t.id).finish);
        if (!out.contains(text))
            out.append(text);
    }
    return out.join(u", ");
}
} // namespace

class ScheduleTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void forwardPass_data()
    {
        QTest::addColumn<QStringList>("tasks");
        QTest::addColumn<QString>("want");
        QTest::newRow("chain with lag")
            << QStringList{u"A/5///"_s, u"B/4/A//"_s, u"C/3/B/2/"_s} << u"A 0-5, B 5-9, C 11-14"_s;
        QTest::newRow("successor listed first")
            << QStringList{u"C/3/B/2/"_s, u"B/4/A//"_s, u"A/5///"_s} << u"C 11-14, B 5-9, A 0-5"_s;
        QTest::newRow("fixed start holds") << QStringList{u"P/4///"_s, u"X/2/P//10"_s} << u"P 0-4, X 10-12"_s;
        QTest::newRow("predecessor pushes past")
            << QStringList{u"P/12///"_s, u"X/2/P//10"_s} << u"P 0-12, X 12-14"_s;
        QTest::newRow("latest predecessor wins")
            << QStringList{u"P/3///"_s, u"Q/7///"_s, u"X/1/P+Q//"_s} << u"P 0-3, Q 0-7, X 7-8"_s;
        QTest::newRow("deleted predecessor")
            << QStringList{u"X/3/gone//"_s, u"Y/3/gone//5"_s} << u"X 0-3, Y 5-8"_s;
        QTest::newRow("cycle A first") << QStringList{u"A/3/B//"_s, u"B/3/A//"_s} << u"A 3-6, B 0-3"_s;
        QTest::newRow("cycle B first") << QStringList{u"B/3/A//"_s, u"A/3/B//"_s} << u"B 3-6, A 0-3"_s;
        QTest::newRow("milestone, negative duration")
            << QStringList{u"M/0///"_s, u"N/-4/M/1/"_s} << u"M 0-0, N 1-1"_s;
        QTest::newRow("own predecessor") << QStringList{u"A/3/A/2/"_s} << u"A 2-5"_s;
        QTest::newRow("negative lag") << QStringList{u"P/5///"_s, u"S/1/P/-2/"_s} << u"P 0-5, S 3-4"_s;
        QTest::newRow("lag never below day 0")
            << QStringList{u"P/1///"_s, u"S/1/P/-5/"_s} << u"P 0-1, S 0-1"_s;
    }
    void forwardPass()
    {
        QFETCH(QStringList, tasks);
        QFETCH(QString, want);
        const QList<Calc::Task> list = tasksOf(tasks);
        QCOMPARE(spans(list, Calc::schedule(list)), want);
    }

    void longChainLastFirst()
    {
        // Deep chains come from files too; the walk must not run out of stack.
        const int count = 100000;
        QList<Calc::Task> tasks;
        for (int k = count - 1; k >= 0; --k)
            tasks.append(
                {QString::number(k), 1, k ? QStringList{QString::number(k - 1)} : QStringList{}, 0, {}});
        const QHash<QString, Calc::Span> result = Calc::schedule(tasks);
        QCOMPARE(result.size(), count);
        QCOMPARE(result.value(QString::number(count - 1)), (Calc::Span{count - 1, count}));
    }

    void dates_data()
    {
        QTest::addColumn<QString>("projectStart");
        QTest::addColumn<QString>("fixedStart"); // of task T
        QTest::addColumn<QDate>("a");            // start of A, which has no fixed start
        QTest::addColumn<QDate>("t");
        QTest::newRow("project start")
            << u"2026-03-02T08:00"_s << u"2026-02-27"_s << QDate(2026, 3, 2) << QDate(2026, 2, 27);
        QTest::newRow("earliest task start")
            << u""_s << u"2026-04-01"_s << QDate(2026, 4, 1) << QDate(2026, 4, 1);
        QTest::newRow("unreadable project start")
            << u"TBD"_s << u"2026-04-01"_s << QDate(2026, 4, 1) << QDate(2026, 4, 1);
        QTest::newRow("today") << u""_s << u"soon"_s << QDate(2026, 5, 10) << QDate(2026, 5, 10);
    }
    void dates()
    {
        QFETCH(QString, projectStart);
        QFETCH(QString, fixedStart);
        QFETCH(QDate, a);
        QFETCH(QDate, t);
        DateFmt::setToday(QDate(2026, 5, 10));
        DB db;
        db.setCompanyID(u"C"_s);
        const Rec project = db.add(u"project"_s, {}, {}, {{u"start"_s, projectStart}});
        const Rec ra = db.add(u"task"_s, project.id, {}, {{u"duration"_s, u"5"_s}});
        const Rec rb = db.add(u"task"_s, project.id, {},
                              {{u"duration"_s, u"2"_s}, {u"preds"_s, u","_s + ra.id + u","_s}});
        const Rec rt = db.add(u"task"_s, project.id, {}, {{u"duration"_s, u"1"_s}, {u"start"_s, fixedStart}});
        const QHash<QString, DateSpan> d = scheduleDates(db, project.id);
        DateFmt::setToday(QDate());
        QCOMPARE(d.value(ra.id), (DateSpan{a, a.addDays(5)}));
        QCOMPARE(d.value(rb.id), (DateSpan{a.addDays(5), a.addDays(7)}));
        QCOMPARE(d.value(rt.id), (DateSpan{t, t.addDays(1)}));
    }

    void bids_data()
    {
        QTest::addColumn<QList<Calc::Bid>>("bids");
        QTest::addColumn<QString>("ranking");
        QTest::addColumn<qint64>("spread");
        const Calc::Bid a{u"A"_s, 100000, 5000}, b{u"B"_s, 102000, 0}, c{u"C"_s, 99000, 10000};
        QTest::newRow("plugs decide") << QList{a, b, c} << u"BAC"_s << qint64(7000);
        QTest::newRow("ties keep input order")
            << QList{c, Calc::Bid{u"D"_s, 109000, 0}, a} << u"ACD"_s << qint64(4000);
        QTest::newRow("one bid") << QList{c} << u"C"_s << qint64(0);
    }
    void bids()
    {
        QFETCH(QList<Calc::Bid>, bids);
        QFETCH(QString, ranking);
        QFETCH(qint64, spread);
        const Calc::LeveledBids l = Calc::levelBids(bids);
        QString order;
        for (const Calc::Bid &bid : l.ranked)
            order += bid.bidder;
        QCOMPARE(order, ranking);
        QCOMPARE(l.spread, spread);
        QCOMPARE(l.low.has_value(), !bids.isEmpty());
        if (l.low)
            QCOMPARE(*l.low, l.ranked.first());
    }

    void compliance_data()
    {
        QTest::addColumn<QDate>("expires");
        QTest::addColumn<QString>("status");
        QTest::addColumn<qint64>("days");
        QTest::newRow("absent") << QDate() << u"missing"_s << qint64(0);
        QTest::newRow("yesterday") << QDate(2026, 2, 28) << u"expired"_s << qint64(-1);
        QTest::newRow("today") << QDate(2026, 3, 1) << u"expiring"_s << qint64(0);
        QTest::newRow("last warned day") << QDate(2026, 3, 31) << u"expiring"_s << qint64(30);
        QTest::newRow("beyond warning") << QDate(2026, 4, 1) << u"ok"_s << qint64(31);
    }
    void compliance()
    {
        QFETCH(QDate, expires);
        QFETCH(QString, status);
        QFETCH(qint64, days);
        const auto c = Calc::complianceStatus(expires.isValid() ? std::optional(expires) : std::nullopt,
                                              QDate(2026, 3, 1), 30);
        QCOMPARE(c.status, status);
        QCOMPARE(c.days, days);
    }

    void hours_data()
    {
        QTest::addColumn<QString>("in");
        QTest::addColumn<QString>("out");
        QTest::addColumn<qint64>("breakMin");
        QTest::addColumn<double>("hours");
        QTest::newRow("day shift") << u"07:00"_s << u"15:30"_s << qint64(30) << 8.0;
        QTest::newRow("overnight with break") << u"22:00"_s << u"06:00"_s << qint64(30) << 7.5;
        QTest::newRow("equal times") << u"08:00"_s << u"08:00"_s << qint64(0) << 0.0;
        QTest::newRow("hour only and blanks") << u"7"_s << u" 15 :\t30"_s << qint64(0) << 8.5;
        QTest::newRow("unreadable is zero") << u"x:30"_s << u"1:2:3"_s << qint64(0) << 0.53;
        QTest::newRow("empty pieces dropped") << u":30"_s << u"31"_s << qint64(0) << 1.0; // ":30" is 30 hours
        // A shift not clocked in or out has no hours, rather than one wrapped past midnight.
        QTest::newRow("open shift") << u"07:00"_s << u""_s << qint64(30) << 0.0;
        QTest::newRow("out only blanks") << u"07:00"_s << u" \t"_s << qint64(0) << 0.0;
        QTest::newRow("in blank") << u""_s << u"15:30"_s << qint64(0) << 0.0;
        QTest::newRow("in only blanks") << u"\t "_s << u"15:30"_s << qint64(0) << 0.0;
        QTest::newRow("midnight is a time") << u"00:00"_s << u"08:00"_s << qint64(0) << 8.0;
    }
    void hours()
    {
        QFETCH(QString, in);
        QFETCH(QString, out);
        QFETCH(qint64, breakMin);
        QFETCH(double, hours);
        QCOMPARE(Calc::shiftHours(in, out, breakMin), hours);
    }

    void waiverStates()
    {
        QVERIFY(Calc::statutoryWarning(u" ca\t"_s).startsWith(u"CA requires a statutory lien-waiver form."));
        QVERIFY(Calc::statutoryWarning(u"wy"_s).startsWith(u"WY "));
        QVERIFY(Calc::statutoryWarning(u"NY"_s).isEmpty());
        QVERIFY(Calc::statutoryWarning(u""_s).isEmpty());
    }

    void installedQuantity()
    {
        DB db;
        db.setCompanyID(u"C"_s);
        const Rec item = db.add(u"unit_item"_s, u"P"_s, {}, {});
        for (const QString &qty : {u"2.5"_s, u""_s, u"abc"_s, u"1"_s})
            db.add(u"qty_log"_s, u"P"_s, {}, {{u"item"_s, item.id}, {u"qty"_s, qty}});
        db.add(u"qty_log"_s, u"P"_s, {}, {{u"item"_s, u"other"_s}, {u"qty"_s, u"10"_s}});
        db.add(u"qty_log"_s, u"Q"_s, {}, {{u"item"_s, item.id}, {u"qty"_s, u"10"_s}});
        QCOMPARE(installed(db, item), 3.5);
    }
};

TRESTLE_TEST(ScheduleTests);
#include "scheduletests.moc"
