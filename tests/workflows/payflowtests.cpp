// New applications, the fill to 100 %, waivers and added lines.
#include "shop.h"
#include "testmain.h"
#include "workflows/changeorders.h"
#include "workflows/payappflow.h"

#include "calc/datefmt.h"

using namespace Qt::StringLiterals;
using TestShop::Shop;

class PayFlowTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void newApp_data()
    {
        QTest::addColumn<QString>("retainage");
        QTest::addColumn<QStringList>("earlier"); // "number retWork retMat" in list order
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("retWork");
        QTest::addColumn<QString>("retMat");
        QTest::newRow("first") << u"10"_s << QStringList{} << u"1"_s << u"10"_s << u"10"_s;
        QTest::newRow("first, no retainage") << u""_s << QStringList{} << u"1"_s << u""_s << u""_s;
        QTest::newRow("released stays released")
            << u"10"_s << QStringList{u"1 10 5"_s, u"2 0 0"_s} << u"3"_s << u"0"_s << u"0"_s;
        QTest::newRow("last by number, not list order")
            << u"10"_s << QStringList{u"4 7.5 2"_s, u"2 10 10"_s} << u"5"_s << u"7.5"_s << u"2"_s;
    }
    void newApp()
    {
        QFETCH(QString, retainage);
        QFETCH(QStringList, earlier);
        QFETCH(QString, number);
        QFETCH(QString, retWork);
        QFETCH(QString, retMat);
        Shop s;
        Rec project = s.project;
        project.f.insert(u"retainage"_s, retainage);
        s.db.save(project);
        for (const QString &e : earlier) {
            const QStringList p = e.split(u' ');
            s.db.add(u"pay_app"_s, project.id, {},
                     {{u"number"_s, p.at(0)},
                      {u"retWork"_s, p.at(1)},
                      {u"retMat"_s, p.at(2)},
                      {u"status"_s, u"paid"_s}});
        }
        const Rec app = newPayApp(s.db, s.reload(project));
        QCOMPARE(s.reload(app), app);
        QCOMPARE(app.project, project.id);
        QCOMPARE(app.f.value(u"number"), number);
        QCOMPARE(app.f.value(u"retWork"), retWork);
        QCOMPARE(app.f.value(u"retMat"), retMat);
        QCOMPARE(app.f.value(u"status"), u"draft"_s);
        QCOMPARE(app.f.value(u"periodTo"), u"2026-11-15"_s);
    }

    void fillToHundred()
    {
        Shop s;
        const QList<Rec> sov{s.sov(100000, 1), s.sov(50000, 2), s.sov(1000, 3)};
        const Rec first = s.payApp(1);
        setPayLine(s.db, first, sov.at(0).id, 60000, std::nullopt);
        setPayLine(s.db, first, sov.at(2).id, 1500, std::nullopt);
        const Rec second = s.payApp(2);
        setPayLine(s.db, second, sov.at(0).id, std::nullopt, 10000);
        billBalanceOfThisPeriod(s.db, second, payAppData(s.db, second));
        const Calc::PayApp after = payAppData(s.db, second).calc;
        QList<qint64> thisPeriod;
        for (const Calc::PayRow &row : after.rows) {
            thisPeriod.append(row.line.thisPeriod);
            QCOMPARE(row.pct, 100.0);
        }
        QCOMPARE(thisPeriod, (QList<qint64>{30000, 50000, -500})); // the overbilled line comes back
        QCOMPARE(after.rows.first().line.stored, 10000);
        QCOMPARE(after.totals.balance, 0);
    }

    void waiver_data()
    {
        QTest::addColumn<qint64>("billed");
        QTest::addColumn<QString>("kind");
        QTest::newRow("part billed") << qint64(400000) << u"conditional_progress"_s;
        QTest::newRow("whole contract billed") << qint64(1000000) << u"unconditional_final"_s;
    }
    void waiver()
    {
        QFETCH(qint64, billed);
        QFETCH(QString, kind);
        Shop s;
        const Rec line = s.sov(1000000, 1);
        const Rec app = s.payApp(1);
        setPayLine(s.db, app, line.id, billed, std::nullopt);
        const Calc::G702 g = payAppData(s.db, app).calc.g702;
        // The "Unconditional (after paid)" button.
        const Rec w = makeWaiver(s.db, app, g.l8, finalAfterPaid(g));
        QCOMPARE(s.reload(w), w);
        const Fields want{{u"kind"_s, kind},
                          {u"payApp"_s, app.id},
                          {u"amount"_s, QString::number(billed * 9 / 10)},
                          {u"claimant"_s, u"Acme"_s},
                          {u"customer"_s, u"Owner LLC"_s},
                          {u"through"_s, u"2026-10-31"_s},
                          {u"state"_s, u"NV"_s},
                          {u"status"_s, u"draft"_s}};
        QCOMPARE(w.f, want);
        QCOMPARE(w.project, s.project.id);
    }

    // Items count every line; the sort keeps change-order lines last.
    void addLine()
    {
        Shop s;
        QCOMPARE(addSOVLine(s.db, s.project.id).f.value(u"item"), u"1"_s);
        QCOMPARE(addSOVLine(s.db, s.project.id).f.value(u"item"), u"2"_s);
        setCOStatus(s.db, s.co(1, u"owner"_s), u"approved"_s);
        const Rec third = addSOVLine(s.db, s.project.id);
        QCOMPARE(third.f.value(u"item"), u"4"_s);
        QCOMPARE(third.f.value(u"scheduled"), u"0"_s);
        const QList<Rec> all = s.db.list(u"sov_line"_s, {.project = s.project.id});
        QCOMPARE(all.at(2).id, third.id);
        QVERIFY(!all.at(3).f.value(u"co").isEmpty());
    }
};

TRESTLE_TEST(PayFlowTests);
#include "payflowtests.moc"
