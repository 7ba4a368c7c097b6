#include "iif.h"
#include "testmain.h"

#include "calc/datefmt.h"
#include "calc/payapp.h"
#include "interchange/qb.h"
#include "store/db.h"
#include "workflows/payappflow.h"

#include <QtCore/QRandomGenerator>

#include <cmath>

using namespace Qt::StringLiterals;

class QBTests : public QObject
{
    Q_OBJECT

    DB *db = nullptr;
    Rec client, project;

    Rec invoice(const QString &tax, const QString &ret, const QList<std::pair<double, qint64>> &lines,
                const QString &status = u"Sent"_s)
    {
        const Rec inv = db->add(u"invoice"_s, project.id, {},
                                {{u"number"_s, u"7"_s},
                                 {u"date"_s, u"2026-11-05"_s},
                                 {u"client"_s, client.id},
                                 {u"status"_s, status},
                                 {u"tax"_s, tax},
                                 {u"ret"_s, ret}});
        for (const auto &[qty, unit] : lines)
            db->add(u"inv_line"_s, project.id, inv.id,
                    {{u"qty"_s, QString::number(qty, 'g', 17)}, {u"unitPrice"_s, QString::number(unit)}});
        return inv;
    }

private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(QDate(2026, 11, 15));
        db = new DB;
        db->createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        client =
            db->add(u"contact"_s, {}, {}, {{u"name"_s, u"Owner\tLLC"_s}, {u"type"_s, u"Client / Owner"_s}});
        project = db->add(u"project"_s, {}, {},
                          {{u"name"_s, u"Tower"_s},
                           {u"number"_s, u"12"_s},
                           {u"client"_s, client.id},
                           {u"retainage"_s, u"10"_s}});
    }
    void cleanup() { delete db; }

    void dates_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("iif");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("plain") << u"2026-03-07"_s << u"03/07/2026"_s;
        QTest::newRow("with time") << u"2026-03-07T10:15:00"_s << u"03/07/2026"_s;
        QTest::newRow("no such day") << u"2026-02-30"_s << QString();
        QTest::newRow("typed") << u"next week"_s << QString();
    }
    void dates()
    {
        QFETCH(QString, stored);
        QFETCH(QString, iif);
        QCOMPARE(QB::d(stored), iif);
    }

    // Which split lines an invoice gets, and that it balances.
    void invoiceSplits_data()
    {
        QTest::addColumn<QString>("tax");
        QTest::addColumn<QString>("ret");
        QTest::addColumn<QStringList>("accounts");
        const QString ar = u"Accounts Receivable"_s, inc = u"Construction Income"_s,
                      tax = u"Sales Tax Payable"_s, ret = u"Retainage Receivable"_s;
        QTest::newRow("plain") << u"0"_s << u"0"_s << QStringList{ar, inc};
        QTest::newRow("tax") << u"8.25"_s << u"0"_s << QStringList{ar, inc, tax};
        QTest::newRow("retainage") << u"0"_s << u"10"_s << QStringList{ar, inc, ret};
        QTest::newRow("both") << u"8.25"_s << u"5"_s << QStringList{ar, inc, tax, ret};
    }
    void invoiceSplits()
    {
        QFETCH(QString, tax);
        QFETCH(QString, ret);
        QFETCH(QStringList, accounts);
        invoice(tax, ret, {{3, 33333}, {1.5, 1999}});
        invoice(tax, ret, {{1, 100}}, u"Draft"_s); // never exported
        const QString text = QB::invoicesIIF(*db);
        QVERIFY(
            text.startsWith(u"!TRNS\tTRNSID\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\n"
                            u"!SPL\tSPLID\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\n!ENDTRNS\n"_s));
        QVERIFY(!text.contains(u'\r'));
        QVERIFY(text.endsWith(u"ENDTRNS\n"_s));
        const QList<IIF::Txn> txns = IIF::read(text);
        QCOMPARE(txns.size(), 1);
        QStringList got;
        for (const QStringList &l : txns.first().lines) {
            QCOMPARE(l.size(), 9);
            QCOMPARE(l.at(2), u"INVOICE"_s);
            QCOMPARE(l.at(3), u"11/05/2026"_s);
            QCOMPARE(l.at(5), u"Owner LLC"_s); // the tab became a blank
            got.append(l.at(4));
        }
        QCOMPARE(got, accounts);
        QCOMPARE(txns.first().sum, 0);
    }

    // The first application holds its whole retainage; a final one that
    // releases it credits Retainage Receivable and books less income than due.
    void payAppRetainage()
    {
        const Rec sov =
            db->add(u"sov_line"_s, project.id, {}, {{u"scheduled"_s, u"1000000"_s}, {u"sort"_s, u"1"_s}});
        Rec a1 = newPayApp(*db, project);
        setPayLine(*db, a1, sov.id, 400000, std::nullopt);
        a1 = *db->get(a1.id);
        a1.f.insert(u"status"_s, u"paid"_s);
        db->save(a1);
        Rec a2 = newPayApp(*db, project);
        a2.f.insert(u"retWork"_s, u"0"_s);
        a2.f.insert(u"retMat"_s, u"0"_s);
        a2.f.insert(u"status"_s, u"submitted"_s);
        db->save(a2);
        billBalanceOfThisPeriod(*db, a2, payAppData(*db, a2));
        Rec draft = newPayApp(*db, project); // drafts stay out
        Q_UNUSED(draft);

        const QList<IIF::Txn> txns = IIF::read(QB::invoicesIIF(*db));
        QCOMPARE(txns.size(), 2);
        const IIF::Txn &first = txns.at(0), &final = txns.at(1);
        QCOMPARE(first.lines.at(0).at(7), u"PA12-1"_s);
        QCOMPARE(first.lines.at(0).at(8), u"Tower pay app 1"_s);
        QCOMPARE(first.lines.at(2).at(6), u"400.00"_s);   // retainage held on $4,000
        QCOMPARE(first.lines.at(1).at(6), u"-4000.00"_s); // income gross of retainage
        QCOMPARE(final.lines.size(), 3);
        QCOMPARE(final.lines.at(2).at(4), u"Retainage Receivable"_s);
        QCOMPARE(final.lines.at(2).at(6), u"-400.00"_s);
        QCOMPARE(final.lines.at(0).at(6), u"6400.00"_s); // 6,000 this period + 400 released
        QCOMPARE(final.lines.at(1).at(6), u"-6000.00"_s);
        for (const IIF::Txn &t : txns)
            QCOMPARE(t.sum, 0);
    }

    void bills_data()
    {
        QTest::addColumn<QString>("vendor");
        QTest::addColumn<bool>("coded");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QStringList>("expected"); // vendor, account, TRNS amount, SPL amount
        QTest::newRow("tab in vendor")
            << u"Dust\tCo, Inc."_s << true << u"12345"_s
            << QStringList{u"Dust Co, Inc."_s, u"Job Expenses:03-000 Concrete"_s, u"-123.45"_s, u"123.45"_s};
        QTest::newRow("uncoded") << u"Ace"_s << false << u"5"_s
                                 << QStringList{u"Ace"_s, u"Job Expenses:Uncoded"_s, u"-0.05"_s, u"0.05"_s};
        QTest::newRow("credit") << u"Ace\nSupply"_s << false << u"-2500"_s
                                << QStringList{u"Ace Supply"_s, u"Job Expenses:Uncoded"_s, u"25.00"_s,
                                               u"-25.00"_s};
    }
    void bills()
    {
        QFETCH(QString, vendor);
        QFETCH(bool, coded);
        QFETCH(QString, amount);
        QFETCH(QStringList, expected);
        const Rec v = db->add(u"contact"_s, {}, {}, {{u"name"_s, vendor}});
        db->add(u"expense"_s, project.id, {},
                {{u"vendor"_s, v.id},
                 {u"costCode"_s, coded ? db->code(u"03-000"_s) : QString()},
                 {u"amount"_s, amount},
                 {u"date"_s, u"2026-10-01"_s},
                 {u"memo"_s, u"line one\nline two"_s}});
        const QList<IIF::Txn> txns = IIF::read(QB::billsIIF(*db));
        QCOMPARE(txns.size(), 1);
        const QStringList &trns = txns.first().lines.at(0), &spl = txns.first().lines.at(1);
        QCOMPARE(trns.at(2), u"BILL"_s);
        QCOMPARE(trns.at(5), expected.at(0));
        QCOMPARE(trns.at(4), u"Accounts Payable"_s);
        QCOMPARE(spl.at(4), expected.at(1));
        QCOMPARE(trns.at(6), expected.at(2));
        QCOMPARE(spl.at(6), expected.at(3));
        QCOMPARE(spl.at(8), u"line one line two"_s);
    }

    // Random invoices: each balances and its total matches a recomputation
    // that shares no code with the engine.
    void exactCents()
    {
        QRandomGenerator rng(20261115);
        QList<qint64> expected;
        for (int n = 0; n < 200; ++n) {
            const double tax = rng.bounded(1000) / 100.0, ret = rng.bounded(4) * 2.5;
            QList<std::pair<double, qint64>> lines;
            qint64 sub = 0;
            for (int k = rng.bounded(1, 6); k > 0; --k) {
                const double qty = rng.bounded(1, 100000) / 1000.0;
                const qint64 unit = rng.bounded(1, 5000000) - (rng.bounded(10) == 0 ? 2500000 : 0);
                lines.append({qty, unit});
                sub += std::llround(qty * double(unit));
            }
            invoice(QString::number(tax), QString::number(ret), lines);
            expected.append(sub + std::llround(double(sub) * tax / 100) -
                            std::llround(double(sub) * ret / 100));
        }
        const QList<IIF::Txn> txns = IIF::read(QB::invoicesIIF(*db));
        QCOMPARE(txns.size(), expected.size());
        for (qsizetype k = 0; k < txns.size(); ++k) {
            QCOMPARE(txns.at(k).sum, 0);
            QCOMPARE(IIF::cents(txns.at(k).lines.first().at(6)), expected.at(k));
        }
    }

    void exportAll()
    {
        db->add(u"contact"_s, {}, {}, {{u"name"_s, u"Sub, Inc."_s}, {u"type"_s, u"Subcontractor"_s}});
        db->add(u"contact"_s, {}, {}, {{u"name"_s, u"Architect"_s}, {u"type"_s, u"Architect"_s}});
        db->add(u"payment"_s, project.id, {},
                {{u"date"_s, u"2026-11-02"_s},
                 {u"direction"_s, u"Received"_s},
                 {u"party"_s, client.id},
                 {u"amount"_s, u"150007"_s},
                 {u"method"_s, u"Check"_s}});
        db->add(u"budget_line"_s, project.id, {},
                {{u"costCode"_s, db->code(u"03-000"_s)}, {u"original"_s, u"99"_s}});
        QTemporaryDir dir;
        const ExportResult r = QB::exportAll(*db, dir.path(), project.id);
        QVERIFY(r.ok);
        QCOMPARE(QFileInfo(r.folder).fileName(), u"QuickBooks export 2026-11-15"_s);
        auto read = [&](const QString &name) {
            QFile f(QDir(r.folder).filePath(name));
            return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : u"missing"_s;
        };
        QCOMPARE(read(u"vendors.csv"_s),
                 u"Name,Company,Email,Phone,Address,Type\r\n\"Sub, Inc.\",,,,,Subcontractor\r\n"_s);
        QCOMPARE(read(u"customers.csv"_s),
                 u"Name,Company,Email,Phone,Address,Type\r\nOwner\tLLC,,,,,Client / Owner\r\n"_s);
        QCOMPARE(read(u"payments.csv"_s), u"Date,Direction,From/To,Amount,Method,Ref,Project\r\n"
                                          u"11/02/2026,Received,Owner\tLLC,1500.07,Check,,Tower\r\n"_s);
        QCOMPARE(read(u"job-cost.csv"_s),
                 u"Project,Cost code,Budget,Committed,Actual\r\nTower,03-000 Concrete,0.99,0.00,0.00\r\n"_s);
        QVERIFY(read(u"bills.iif"_s).endsWith(u"!ENDTRNS\n"_s));

        // A folder that cannot be made is a failure with a message, not a crash.
        QFile blocker(dir.filePath(u"file"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        const ExportResult bad = QB::exportAll(*db, blocker.fileName());
        QVERIFY(!bad.ok);
        QVERIFY(!bad.error.isEmpty());
    }
};

TRESTLE_TEST(QBTests);
#include "qbtests.moc"
