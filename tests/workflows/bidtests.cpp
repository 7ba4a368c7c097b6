// Leveling and awarding the bids of a package.
#include "shop.h"
#include "testmain.h"
#include "workflows/bids.h"

#include "calc/datefmt.h"

using namespace Qt::StringLiterals;
using TestShop::Shop;

class BidTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(TestShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void awardMovesAndIssues()
    {
        Shop s;
        s.db.add(u"po"_s, s.project.id, {}, {{u"number"_s, u"4"_s}});
        const Rec package = s.db.add(u"bid_package"_s, s.project.id, {},
                                     {{u"title"_s, u"Drywall"_s}, {u"status"_s, u"Open"_s}});
        const Rec a =
            s.db.add(u"bid"_s, s.project.id, package.id,
                     {{u"bidder"_s, u"sub A"_s}, {u"base"_s, u"100000"_s}, {u"plugs"_s, u"5000"_s}});
        const Rec b = s.db.add(u"bid"_s, s.project.id, package.id,
                               {{u"bidder"_s, u"sub B"_s}, {u"base"_s, u"102000"_s}});

        const BidLeveling level = levelPackage(s.db, package);
        QCOMPARE(level.ranked.size(), 2);
        QCOMPARE(level.ranked.at(0).bid.id, b.id);
        QCOMPARE(level.ranked.at(1).leveled, 105000);
        QCOMPARE(level.spread, 3000);

        award(s.db, a);
        QCOMPARE(s.field(a, u"status"_s), u"awarded"_s);
        QCOMPARE(s.field(package, u"status"_s), u"Awarded"_s);
        award(s.db, b);
        QCOMPARE(s.field(a, u"status"_s), QString());
        QCOMPARE(s.field(b, u"status"_s), u"awarded"_s);

        const QList<Rec> pos = s.db.list(u"po"_s, {.project = s.project.id});
        QCOMPARE(pos.size(), 3); // earlier orders are never voided
        const Rec &first = pos.at(1);
        QCOMPARE(first.f.value(u"number"), u"5"_s);
        QCOMPARE(first.f.value(u"vendor"), u"sub A"_s);
        QCOMPARE(first.f.value(u"status"), u"Issued"_s);
        QCOMPARE(first.f.value(u"date"), u"2026-11-15"_s);
        QCOMPARE(first.f.value(u"notes"), u"Awarded from bid package: Drywall"_s);
        QCOMPARE(pos.at(2).f.value(u"number"), u"6"_s);
        const QList<Rec> line = s.db.list(u"po_line"_s, {.parent = first.id});
        QCOMPARE(line.size(), 1);
        QCOMPARE(line.first().f, (Fields{{u"description"_s, u"Drywall — per bid"_s},
                                         {u"qty"_s, u"1"_s},
                                         {u"unitCost"_s, u"105000"_s}}));
    }

    void awardWithoutBid()
    {
        Shop s;
        const Rec package = s.db.add(u"bid_package"_s, s.project.id, {}, {{u"title"_s, u"Roof"_s}});
        const Rec gone = s.db.add(u"bid"_s, s.project.id, package.id, {{u"base"_s, u"1"_s}});
        s.db.remove(gone.id);
        award(s.db, std::nullopt);
        award(s.db, gone);
        QCOMPARE(s.db.count(u"po"_s, {.project = s.project.id}), 0);
        QCOMPARE(s.field(package, u"status"_s), QString());
        QCOMPARE(levelPackage(s.db, package).ranked.size(), 0);
    }
};

TRESTLE_TEST(BidTests);
#include "bidtests.moc"
