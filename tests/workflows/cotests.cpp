// Change-order status and its schedule-of-values line.
#include "shop.h"
#include "testmain.h"
#include "workflows/binding.h"
#include "workflows/changeorders.h"

#include "calc/datefmt.h"
#include "calc/totals.h"

#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;
using TestShop::Shop;

class COTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void status_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<int>("lines");
        QTest::addColumn<bool>("decided");
        QTest::newRow("approved owner") << u"owner"_s << QStringList{u"approved"_s} << 1 << true;
        QTest::newRow("approved sub") << u"sub"_s << QStringList{u"approved"_s} << 0 << true;
        QTest::newRow("empty kind is not owner") << u""_s << QStringList{u"approved"_s} << 0 << true;
        QTest::newRow("back to pending")
            << u"owner"_s << QStringList{u"approved"_s, u"pending"_s} << 0 << false;
        QTest::newRow("approve again")
            << u"owner"_s << QStringList{u"approved"_s, u"pending"_s, u"approved"_s} << 1 << true;
        QTest::newRow("void clears decided")
            << u"owner"_s << QStringList{u"approved"_s, u"void"_s} << 0 << false;
        QTest::newRow("rejected sets decided")
            << u"owner"_s << QStringList{u"approved"_s, u"rejected"_s} << 0 << true;
    }
    void status()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, steps);
        QFETCH(int, lines);
        QFETCH(bool, decided);
        Shop s;
        const Rec co = s.co(3, kind);
        for (const QString &step : steps)
            setCOStatus(s.db, s.reload(co), step);
        const Rec now = s.reload(co);
        QCOMPARE(now.f.value(u"status"), steps.last());
        QCOMPARE(now.f.value(u"decided"), decided ? u"2026-11-15"_s : QString());
        QCOMPARE(now.f.value(u"decidedBy"), u"Ann"_s);
        QCOMPARE(s.coLines(co.id).size(), lines);
    }

    void line_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<qint64>("amount");
        QTest::addColumn<QString>("scheduled");
        QTest::addColumn<QString>("sort");
        QTest::newRow("with markup") << u"7"_s << qint64(12500) << u"13750"_s << u"1007"_s;
        QTest::newRow("credit") << u"8"_s << qint64(-1005) << u"-1106"_s << u"1008"_s; // -100.5 rounds away
        QTest::newRow("letters number") << u"7a"_s << qint64(100) << u"110"_s << u"1000"_s;
    }
    void line()
    {
        QFETCH(QString, number);
        QFETCH(qint64, amount);
        QFETCH(QString, scheduled);
        QFETCH(QString, sort);
        Shop s;
        Rec co = s.co(0, u"owner"_s, amount);
        co.f.insert(u"number"_s, number);
        s.db.save(co);
        setCOStatus(s.db, co, u"approved"_s);
        const QList<Rec> made = s.coLines(co.id);
        QCOMPARE(made.size(), 1);
        const Rec &l = made.first();
        QCOMPARE(l.f.value(u"item"), u"CO-"_s + number);
        QCOMPARE(l.f.value(u"description"), u"Change Order #"_s + number + u": Extra footing"_s);
        QCOMPARE(l.f.value(u"scheduled"), scheduled);
        QCOMPARE(l.f.value(u"sort"), sort);
        QCOMPARE(l.parent, QString());
        QCOMPARE(l.company, s.db.companyID());
    }

    // Every approval rebuilds the line, so billing on the old id stops counting.
    void reapprovalMakesNewLine()
    {
        Shop s;
        const Rec co = s.co(1, u"owner"_s);
        setCOStatus(s.db, co, u"approved"_s);
        const QString first = s.coLines(co.id).first().id;
        setCOStatus(s.db, s.reload(co), u"pending"_s);
        setCOStatus(s.db, s.reload(co), u"approved"_s);
        QCOMPARE(s.coLines(co.id).size(), 1);
        QVERIFY(s.coLines(co.id).first().id != first);

        recBinding(s.db, co.id, u"title"_s).set(u"Deeper footing"_s);
        const QList<Rec> after = s.coLines(co.id);
        QCOMPARE(after.size(), 1);
        QCOMPARE(after.first().f.value(u"description"), u"Change Order #1: Deeper footing"_s);
    }

    void bindingGoesThroughStatus()
    {
        Shop s;
        const Rec co = s.co(4, u"owner"_s);
        const RecBinding status = recBinding(s.db, co.id, u"status"_s);
        status.set(u"approved"_s);
        QCOMPARE(s.coLines(co.id).size(), 1);
        QCOMPARE(s.field(co, u"decidedBy"_s), u"Ann"_s);

        // The kind changes the plain way, then the approval is applied again.
        recBinding(s.db, co.id, u"kind"_s).set(u"sub"_s);
        QCOMPARE(s.field(co, u"status"_s), u"approved"_s);
        QCOMPARE(s.coLines(co.id).size(), 0);
        recBinding(s.db, co.id, u"kind"_s).set(u"owner"_s);
        QCOMPARE(s.coLines(co.id).size(), 1);

        status.set(u"void"_s);
        QCOMPARE(s.coLines(co.id).size(), 0);
        QCOMPARE(s.field(co, u"decided"_s), QString());
    }

    // Any sequence of edits leaves at most one line per change order, and one
    // exactly while it is an approved owner change order.
    void atMostOneLine()
    {
        QRandomGenerator rng(4242);
        Shop s;
        const QList<Rec> cos{s.co(1, u"owner"_s), s.co(2, u"sub"_s), s.co(3, u"owner"_s, -5000)};
        const QStringList statuses{u"pending"_s, u"approved"_s, u"rejected"_s, u"void"_s};
        const QStringList kinds{u"owner"_s, u"sub"_s};
        for (int step = 0; step < 400; ++step) {
            const Rec &co = cos.at(rng.bounded(qsizetype(3)));
            switch (rng.bounded(4)) {
            case 0: setCOStatus(s.db, s.reload(co), statuses.at(rng.bounded(4))); break;
            case 1: recBinding(s.db, co.id, u"status"_s).set(statuses.at(rng.bounded(4))); break;
            case 2: recBinding(s.db, co.id, u"kind"_s).set(kinds.at(rng.bounded(2))); break;
            default: recBinding(s.db, co.id, u"markup"_s).set(QString::number(rng.bounded(20))); break;
            }
            for (const Rec &c : cos) {
                const Rec now = s.reload(c);
                const bool wanted = now.f.value(u"status") == u"approved" && now.f.value(u"kind") == u"owner";
                const QList<Rec> made = s.coLines(c.id);
                QCOMPARE(made.size(), wanted ? 1 : 0);
                if (wanted) // the line follows the edited markup
                    QCOMPARE(made.first().i(u"scheduled"), coTotals(s.db, now).total);
            }
        }
        QCOMPARE(s.db.count(u"sov_line"_s, {.project = s.project.id}),
                 std::count_if(cos.begin(), cos.end(), [&](const Rec &c) {
                     const Rec now = s.reload(c);
                     return now.f.value(u"status") == u"approved" && now.f.value(u"kind") == u"owner";
                 }));
    }
};

TRESTLE_TEST(COTests);
#include "cotests.moc"
