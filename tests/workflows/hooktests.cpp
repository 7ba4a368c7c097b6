// Change hooks, numbering and the editor's write path.
#include "shop.h"
#include "testmain.h"
#include "workflows/binding.h"
#include "workflows/numbering.h"

#include "calc/datefmt.h"
#include "calc/payapp.h"

#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;
using TestShop::Shop;

class HookTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void waiverFollowsPayApp()
    {
        Shop s;
        const Rec line = s.sov(100000, 1);
        const Rec first = s.payApp(1);
        setPayLine(s.db, first, line.id, 50000, std::nullopt);
        Rec second = s.payApp(2);
        second.f.insert(u"periodTo"_s, u"2026-11-30"_s);
        s.db.save(second);
        setPayLine(s.db, second, line.id, 20000, std::nullopt);
        const Rec waiver = s.db.add(u"waiver"_s, s.project.id, {}, {{u"amount"_s, u"1"_s}});
        const RecBinding payApp = recBinding(s.db, waiver.id, u"payApp"_s);

        payApp.set(first.id);
        QCOMPARE(s.field(waiver, u"amount"_s), u"45000"_s); // line 8: 50000 less 10 % retainage
        QCOMPARE(s.field(waiver, u"through"_s), u"2026-10-31"_s);
        QCOMPARE(s.field(waiver, u"state"_s), u"NV"_s);
        QCOMPARE(s.field(waiver, u"customer"_s), u"Owner LLC"_s);

        // Amount and date belong to the application; state and customer to the user.
        recBinding(s.db, waiver.id, u"customer"_s).set(u"Typed Inc"_s);
        recBinding(s.db, waiver.id, u"state"_s).set(u"AZ"_s);
        payApp.set(second.id);
        QCOMPARE(s.field(waiver, u"amount"_s), u"18000"_s);
        QCOMPARE(s.field(waiver, u"through"_s), u"2026-11-30"_s);
        QCOMPARE(s.field(waiver, u"customer"_s), u"Typed Inc"_s);
        QCOMPARE(s.field(waiver, u"state"_s), u"AZ"_s);

        // A deleted application changes nothing but the reference.
        const Fields before = s.reload(waiver).f;
        s.db.remove(first.id);
        payApp.set(first.id);
        Fields after = s.reload(waiver).f;
        after.insert(u"payApp"_s, second.id);
        QCOMPARE(after, before);
    }

    void timecardRate_data()
    {
        QTest::addColumn<QString>("cardRate");
        QTest::addColumn<QString>("workerRate");
        QTest::addColumn<QString>("want");
        QTest::newRow("zero takes the worker's") << u"0"_s << u"3500"_s << u"3500"_s;
        QTest::newRow("empty takes the worker's") << u""_s << u"3500"_s << u"3500"_s;
        QTest::newRow("letters read as zero") << u"n/a"_s << u"3500"_s << u"3500"_s;
        QTest::newRow("entered rate stays") << u"2500"_s << u"3500"_s << u"2500"_s;
        QTest::newRow("worker without rate clears zero") << u"0"_s << u""_s << u""_s;
    }
    void timecardRate()
    {
        QFETCH(QString, cardRate);
        QFETCH(QString, workerRate);
        QFETCH(QString, want);
        Shop s;
        const Rec worker = s.db.add(u"user"_s, {}, {}, {{u"name"_s, u"Bo"_s}, {u"rate"_s, workerRate}});
        const Rec card = s.db.add(u"timecard"_s, s.project.id, {}, {{u"rate"_s, cardRate}});
        recBinding(s.db, card.id, u"worker"_s).set(worker.id);
        QCOMPARE(s.field(card, u"rate"_s), want);
        QCOMPARE(s.field(card, u"worker"_s), worker.id);
    }

    void nextNumber_data()
    {
        QTest::addColumn<QStringList>("numbers");
        QTest::addColumn<int>("removed"); // index into numbers, or -1
        QTest::addColumn<qint64>("want");
        QTest::newRow("first") << QStringList{} << -1 << qint64(1);
        QTest::newRow("gap not filled")
            << QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s} << 2 << qint64(6);
        QTest::newRow("highest handed out again") << QStringList{u"1"_s, u"2"_s, u"3"_s} << 2 << qint64(3);
        QTest::newRow("letters take no part") << QStringList{u"2"_s, u"A9"_s} << -1 << qint64(3);
    }
    void nextNumber()
    {
        QFETCH(QStringList, numbers);
        QFETCH(int, removed);
        QFETCH(qint64, want);
        Shop s;
        QList<Rec> made;
        for (const QString &n : numbers)
            made.append(s.db.add(u"rfi"_s, s.project.id, {}, {{u"number"_s, n}}));
        if (removed >= 0)
            s.db.remove(made.at(removed).id);
        // Other kinds, projects and companies keep their own numbers.
        const Rec other = s.db.add(u"project"_s, {}, {}, {});
        s.db.add(u"rfi"_s, other.id, {}, {{u"number"_s, u"40"_s}});
        s.db.add(u"submittal"_s, s.project.id, {}, {{u"number"_s, u"50"_s}});
        s.db.add(u"rfi"_s, s.project.id, {}, {{u"number"_s, u"60"_s}}, u"another company"_s);
        QCOMPARE(::nextNumber(s.db, u"rfi"_s, s.project.id), want);
    }

    void equalValueDoesNotSave()
    {
        Shop s;
        const Rec rec = s.reload(s.db.add(u"rfi"_s, s.project.id, {}, {{u"subject"_s, u"Door"_s}}));
        QSignalSpy spy(&s.db, &DB::changed);
        recBinding(s.db, rec.id, u"subject"_s).set(u"Door"_s);
        recBinding(s.db, u"no such id"_s, u"subject"_s).set(u"Window"_s);
        recBinding(s.db, QString(), u"subject"_s).set(u"Window"_s);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(s.reload(rec), rec);
        QCOMPARE(recBinding(s.db, u"no such id"_s, u"subject"_s).get(), QString());

        recBinding(s.db, rec.id, u"subject"_s).set(u"Window"_s);
        QCOMPARE(spy.count(), 1);
        QVERIFY(s.reload(rec).updated > rec.updated);
    }
};

TRESTLE_TEST(HookTests);
#include "hooktests.moc"
