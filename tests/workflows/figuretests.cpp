// Project figures and the alerts of the Command Hub.
#include "shop.h"
#include "testmain.h"
#include "workflows/alerts.h"
#include "workflows/figures.h"

#include "calc/payapp.h"

using namespace Qt::StringLiterals;
using TestShop::Shop;

namespace {
const QDateTime kNow(TestShop::kToday, QTime(10, 0));

Fields fieldsOf(const QStringList &pairs)
{
    Fields f;
    for (const QString &p : pairs)
        f.insert(p.section(u'=', 0, 0), p.section(u'=', 1));
    return f;
}

QStringList texts(const QList<HubAlert> &alerts)
{
    QStringList out;
    for (const HubAlert &a : alerts)
        out.append(a.text);
    return out;
}
} // namespace

class FigureTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void figures()
    {
        Shop s;
        QCOMPARE(ProjectFigures::of(s.db, s.project).billed, 0);
        const Rec line = s.sov(1000000, 1);
        const Rec first = s.payApp(1, u"10"_s, u"paid"_s);
        setPayLine(s.db, first, line.id, 300000, std::nullopt);
        const Rec latest = s.payApp(2); // a draft counts
        setPayLine(s.db, latest, line.id, 200000, std::nullopt);
        s.db.add(u"pay_app"_s, s.project.id, {}, {{u"number"_s, u"2"_s}}); // not the first of the highest

        for (const auto &[status, price] :
             {std::pair{u"Sent"_s, 100000}, {u"Void"_s, 50000}, {u"Draft"_s, 20000}}) {
            const Rec inv =
                s.db.add(u"invoice"_s, s.project.id, {}, {{u"status"_s, status}, {u"tax"_s, u"5"_s}});
            s.db.add(u"inv_line"_s, s.project.id, inv.id,
                     {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, QString::number(price)}});
        }
        for (const auto &[direction, amount] : {std::pair{u"Received"_s, 90000},
                                                {u"Paid out"_s, 40000},
                                                {u"received"_s, 7},
                                                {u"Received"_s, 10000}})
            s.db.add(u"payment"_s, s.project.id, {},
                     {{u"direction"_s, direction}, {u"amount"_s, QString::number(amount)}});
        s.db.add(u"budget_line"_s, s.project.id, {}, {{u"original"_s, u"400000"_s}});
        s.db.add(u"expense"_s, s.project.id, {}, {{u"amount"_s, u"12345"_s}});

        const ProjectFigures f = ProjectFigures::of(s.db, s.project);
        QCOMPARE(f.contract.original, 1000000);
        QCOMPARE(f.billed, 500000 + 100000 + 20000); // cumulative line 4, invoice subtotals without tax
        QCOMPARE(f.retainage, 50000);
        QCOMPARE(f.paid, 100000);
        QCOMPARE(f.cost, 12345);
        QCOMPARE(f.budget, 400000);
    }

    // After each kind of edit, the kept figures of every project are the ones
    // worked out afresh; an edit that stays inside one project leaves the
    // other's figures standing.
    void cacheFollowsEdits_data()
    {
        QTest::addColumn<QString>("edit");
        QTest::addColumn<bool>("reachesOther");
        const QList<std::pair<const char *, bool>> rows = {
            {"expense amount", false},
            {"expense moved to the other project", true},
            {"expense removed", false},
            {"timecard hours", false},
            {"pay app line", false},
            {"change order approved", false},
            {"change order line amount", false},
            {"invoice void", false},
            {"invoice line moved to the other project's invoice", true},
            {"payment received", false},
            {"budget line", false},
            {"equipment rate", true},
            {"project contract", false},
            {"project removed", false},
            {"company switch", false},
            {"batch of edits", false},
        };
        for (const auto &[edit, reaches] : rows)
            QTest::newRow(edit) << QString::fromLatin1(edit) << reaches;
    }

    void cacheFollowsEdits()
    {
        QFETCH(QString, edit);
        QFETCH(bool, reachesOther);
        Shop s;
        const Rec other =
            s.db.add(u"project"_s, {}, {}, {{u"name"_s, u"Annex"_s}, {u"contract"_s, u"500000"_s}});
        const Rec machine =
            s.db.add(u"equipment"_s, {}, {}, {{u"name"_s, u"Loader"_s}, {u"rate"_s, u"9000"_s}});
        struct Made
        {
            Rec expense, card, payApp, sov, co, coLine, invoice, invLine, budget;
        };
        auto fill = [&](const Rec &p) {
            Made m;
            auto add = [&](const QString &kind, const QString &parent, const QStringList &fields) {
                return s.db.add(kind, p.id, parent, fieldsOf(fields));
            };
            m.expense = add(u"expense"_s, {}, {u"amount=12345"_s, u"costCode=01"_s});
            m.card = add(u"timecard"_s, {}, {u"in=07:00"_s, u"out=15:30"_s, u"break=30"_s, u"rate=4500"_s});
            add(u"equip_log"_s, {}, {u"equipment="_s + machine.id, u"hours=3"_s});
            m.sov = add(u"sov_line"_s, {}, {u"scheduled=400000"_s, u"sort=1"_s});
            m.payApp = add(u"pay_app"_s, {}, {u"number=1"_s, u"retWork=10"_s, u"retMat=10"_s});
            setPayLine(s.db, m.payApp, m.sov.id, 100000, std::nullopt);
            m.co = add(u"co"_s, {}, {u"kind=owner"_s, u"status=pending"_s, u"markup=10"_s});
            m.coLine = add(u"co_line"_s, m.co.id, {u"amount=20000"_s, u"costCode=01"_s});
            m.invoice = add(u"invoice"_s, {}, {u"status=Sent"_s});
            m.invLine = add(u"inv_line"_s, m.invoice.id, {u"qty=2"_s, u"unitPrice=15000"_s});
            add(u"payment"_s, {}, {u"direction=Received"_s, u"amount=30000"_s});
            m.budget = add(u"budget_line"_s, {}, {u"costCode=01"_s, u"original=250000"_s});
            return m;
        };
        const Made mine = fill(s.project);
        const Made theirs = fill(other);

        auto allProjects = [&] {
            QList<Rec> out;
            s.db.forEach([&](const Rec &r) {
                if (r.kind == u"project")
                    out.append(r);
            });
            return out;
        };
        // The other company exists before the figures are first kept; the switch itself saves nothing.
        QString secondCompany;
        if (edit == u"company switch") {
            const QString first = s.db.companyID();
            secondCompany = s.db.createCompany(u"Second"_s, u"Bo"_s, u"CA"_s).id;
            s.db.setCompanyID(first);
        }
        FiguresCache cache;
        QHash<QString, ProjectFigures> before;
        for (const Rec &p : allProjects())
            before.insert(p.id, cache.of(s.db, p));
        const quint64 otherBefore = s.db.projectRevision(other.id);

        auto change = [&](const Rec &r, const QString &key, const QString &value) {
            Rec copy = s.reload(r);
            copy.f.insert(key, value);
            s.db.save(copy);
        };
        if (edit == u"expense amount") {
            change(mine.expense, u"amount"_s, u"22345"_s);
        } else if (edit == u"expense moved to the other project") {
            Rec moved = s.reload(mine.expense);
            moved.project = other.id;
            s.db.save(moved);
        } else if (edit == u"expense removed") {
            s.db.remove(mine.expense.id);
        } else if (edit == u"timecard hours") {
            change(mine.card, u"out"_s, u"17:30"_s);
        } else if (edit == u"pay app line") {
            setPayLine(s.db, mine.payApp, mine.sov.id, 150000, std::nullopt);
        } else if (edit == u"change order approved") {
            change(mine.co, u"status"_s, u"approved"_s);
        } else if (edit == u"change order line amount") {
            change(mine.coLine, u"amount"_s, u"90000"_s);
        } else if (edit == u"invoice void") {
            change(mine.invoice, u"status"_s, u"Void"_s);
        } else if (edit == u"invoice line moved to the other project's invoice") {
            // The line keeps its project; only its parent moves.
            Rec moved = s.reload(mine.invLine);
            moved.parent = theirs.invoice.id;
            s.db.save(moved);
        } else if (edit == u"payment received") {
            s.db.add(u"payment"_s, s.project.id, {}, fieldsOf({u"direction=Received"_s, u"amount=5000"_s}));
        } else if (edit == u"budget line") {
            change(mine.budget, u"original"_s, u"260000"_s);
        } else if (edit == u"equipment rate") {
            change(machine, u"rate"_s, u"12000"_s);
        } else if (edit == u"project contract") {
            change(s.project, u"contract"_s, u"1200000"_s);
        } else if (edit == u"project removed") {
            s.db.remove(s.project.id);
        } else if (edit == u"company switch") {
            s.db.setCompanyID(secondCompany);
        } else if (edit == u"batch of edits") {
            Rec a = s.reload(mine.expense), b = s.reload(mine.card);
            a.f.insert(u"amount"_s, u"1"_s);
            b.f.insert(u"rate"_s, u"1"_s);
            s.db.saveAndRemove({a, b}, {mine.invoice.id});
        } else {
            QFAIL("unknown edit");
        }

        bool anyMoved = false;
        for (const Rec &p : allProjects()) {
            const ProjectFigures fresh = ProjectFigures::of(s.db, p);
            anyMoved = anyMoved || !(fresh == before.value(p.id));
            QVERIFY2(cache.of(s.db, p) == fresh, qPrintable(p.f.value(u"name"_s)));
        }
        // Every edit here moves some figure, so a stale one would have shown.
        QVERIFY(anyMoved || edit == u"project removed");
        QCOMPARE(s.db.projectRevision(other.id) != otherBefore, reachesOther);
    }

    void alert_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QStringList>("want");
        const QStringList none;
        QTest::newRow("RFI due yesterday")
            << u"rfi"_s
            << QStringList{u"status=Open"_s, u"due=2026-11-14"_s, u"number=3"_s, u"subject=Door"_s}
            << QStringList{u"RFI #3 overdue: Door"_s};
        QTest::newRow("RFI due today")
            << u"rfi"_s << QStringList{u"status=Open"_s, u"due=2026-11-15"_s} << none;
        QTest::newRow("answered RFI")
            << u"rfi"_s << QStringList{u"status=Answered"_s, u"due=2026-01-01"_s} << none;
        QTest::newRow("certificate expires today")
            << u"compliance"_s << QStringList{u"docType=Auto COI"_s, u"expires=2026-11-15"_s}
            << QStringList{u"Sparks: Auto COI expires in 0d"_s};
        QTest::newRow("certificate expired yesterday")
            << u"compliance"_s << QStringList{u"docType=W-9"_s, u"expires=2026-11-14T08:00"_s}
            << QStringList{u"Sparks: W-9 EXPIRED 1d ago"_s};
        QTest::newRow("certificate in 31 days")
            << u"compliance"_s << QStringList{u"expires=2026-12-16"_s} << none;
        QTest::newRow("certificate without date")
            << u"compliance"_s << QStringList{u"expires=soon"_s} << none;
        QTest::newRow("pending CO") << u"co"_s
                                    << QStringList{u"status=pending"_s, u"number=2"_s, u"title=Extra"_s,
                                                   u"markup=10"_s}
                                    << QStringList{u"CO #2 pending: Extra ($110.00)"_s};
        QTest::newRow("approved CO") << u"co"_s << QStringList{u"status=approved"_s} << none;
        QTest::newRow("equipment without service") << u"equipment"_s << QStringList{u"name=Loader"_s} << none;
        QTest::newRow("service a year ago")
            << u"equipment"_s << QStringList{u"name=Loader"_s, u"service=2025-11-15"_s}
            << QStringList{u"Loader service due Nov 15, 2025"_s};
        QTest::newRow("service in 13 days")
            << u"equipment"_s << QStringList{u"name=Lift"_s, u"service=2026-11-28"_s}
            << QStringList{u"Lift service due Nov 28, 2026"_s};
        QTest::newRow("service in 15 days") << u"equipment"_s << QStringList{u"service=2026-11-30"_s} << none;
        QTest::newRow("submittal late")
            << u"submittal"_s
            << QStringList{u"status=Submitted"_s, u"due=2026-11-01"_s, u"number=9"_s, u"title=Glass"_s}
            << QStringList{u"Submittal #9 late: Glass"_s};
        QTest::newRow("submittal approved")
            << u"submittal"_s << QStringList{u"status=Approved"_s, u"due=2026-11-01"_s} << none;
        QTest::newRow("bids due in 8 days")
            << u"bid_package"_s << QStringList{u"status=Open"_s, u"due=2026-11-23"_s} << none;
        QTest::newRow("bids due in 3 days")
            << u"bid_package"_s << QStringList{u"status=Open"_s, u"due=2026-11-18"_s, u"title=Framing"_s}
            << QStringList{u"Bids due Nov 18, 2026: Framing"_s};
        QTest::newRow("bids past due")
            << u"bid_package"_s << QStringList{u"status=Open"_s, u"due=2026-10-01"_s, u"title=Roof"_s}
            << QStringList{u"Bids due Oct 1, 2026: Roof"_s};
        QTest::newRow("awarded package")
            << u"bid_package"_s << QStringList{u"status=Awarded"_s, u"due=2026-10-01"_s} << none;
    }
    void alert()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, fields);
        QFETCH(QStringList, want);
        Shop s;
        Fields f = fieldsOf(fields);
        if (kind == u"compliance")
            f.insert(u"contact"_s, s.db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Sparks"_s}}).id);
        const Rec r = s.db.add(kind, s.project.id, {}, f);
        if (kind == u"co")
            s.db.add(u"co_line"_s, s.project.id, r.id, {{u"amount"_s, u"10000"_s}});
        QCOMPARE(texts(Alerts::all(s.db, s.project.id, kNow)), want);
    }

    // Families in a fixed order; company records on every project's view.
    void orderAndScope()
    {
        Shop s;
        const Rec other = s.db.add(u"project"_s, {}, {}, {});
        auto add = [&](const QString &kind, const QString &project, const QStringList &fields) {
            return s.db.add(kind, project, {}, fieldsOf(fields));
        };
        add(u"bid_package"_s, s.project.id, {u"status=Open"_s, u"due=2026-11-15"_s, u"title=B"_s});
        const Rec rfi = add(u"rfi"_s, s.project.id, {u"status=Open"_s, u"due=2026-11-01"_s, u"number=1"_s});
        add(u"rfi"_s, other.id, {u"status=Open"_s, u"due=2026-11-01"_s, u"number=2"_s});
        const Rec machine = add(u"equipment"_s, {}, {u"name=Crane"_s, u"service=2026-11-16"_s});
        add(u"compliance"_s, {}, {u"docType=A"_s, u"expires=2026-11-20"_s});
        add(u"compliance"_s, {}, {u"docType=B"_s, u"expires=2026-01-01"_s});

        const QList<HubAlert> mine = Alerts::all(s.db, s.project.id, kNow);
        QCOMPARE(texts(mine),
                 (QStringList{u": A expires in 5d"_s, u": B EXPIRED 318d ago"_s, u"RFI #1 overdue: "_s,
                              u"Crane service due Nov 16, 2026"_s, u"Bids due Nov 15, 2026: B"_s}));
        QCOMPARE(mine.at(0).color, AlertColor::orange);
        QCOMPARE(mine.at(1).color, AlertColor::red);
        QCOMPARE(mine.at(1).symbol, u"shield.slash.fill"_s);
        QCOMPARE(mine.at(2).record, rfi.id);
        QCOMPARE(mine.at(2).project, s.project.id);
        QCOMPARE(mine.at(2).module, u"rfis"_s);
        QCOMPARE(mine.at(3).record, machine.id);
        QCOMPARE(mine.at(3).project, std::nullopt);
        QCOMPARE(mine.at(4).color, AlertColor::blue);
        QVERIFY(mine.at(0).id != Alerts::all(s.db, s.project.id, kNow).at(0).id);

        const QStringList company = texts(Alerts::all(s.db, std::nullopt, kNow));
        QCOMPARE(company.size(), 6);
        QCOMPARE(company.at(3), u"RFI #2 overdue: "_s);
    }
};

TRESTLE_TEST(FigureTests);
#include "figuretests.moc"
