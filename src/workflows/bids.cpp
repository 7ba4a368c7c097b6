#include "bids.h"

#include "numbering.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/rules.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

BidLeveling levelPackage(const DB &db, const Rec &package)
{
    const QList<Rec> bids = db.list(u"bid"_s, {.parent = package.id});
    // The bid's id stands in for the bidder, so each ranked bid leads back to its record.
    QList<Calc::Bid> plain;
    QHash<QString, const Rec *> byID;
    for (const Rec &b : bids) {
        plain.append({b.id, b.i(u"base"), b.i(u"plugs")});
        byID.insert(b.id, &b);
    }
    const Calc::LeveledBids leveled = Calc::levelBids(plain);
    BidLeveling out;
    out.spread = leveled.spread;
    for (const Calc::Bid &b : leveled.ranked)
        out.ranked.append({*byID.value(b.bidder), Money::add(b.base, b.plugs)});
    return out;
}

void award(DB &db, const std::optional<Rec> &bid)
{
    if (!bid)
        return;
    std::optional<Rec> chosen = db.get(bid->id);
    if (!chosen)
        return;
    // At most one bid of a package stands awarded.
    for (Rec other : db.list(u"bid"_s, {.parent = chosen->parent}))
        if (other.f.value(u"status") == u"awarded") {
            other.f.insert(u"status"_s, QString());
            db.save(other);
        }
    chosen->f.insert(u"status"_s, u"awarded"_s);
    db.save(*chosen);

    std::optional<Rec> package = db.get(chosen->parent);
    if (!package)
        return;
    package->f.insert(u"status"_s, u"Awarded"_s);
    db.save(*package);

    const QString title = package->f.value(u"title");
    // "Issued" counts as committed cost at once.
    const Rec po = db.add(u"po"_s, package->project, QString(),
                          {{u"number"_s, QString::number(nextNumber(db, u"po"_s, package->project))},
                           {u"vendor"_s, chosen->f.value(u"bidder")},
                           {u"status"_s, u"Issued"_s},
                           {u"date"_s, DateFmt::iso(DateFmt::today())},
                           {u"notes"_s, u"Awarded from bid package: "_s + title}});
    const qint64 leveled = Money::add(chosen->i(u"base"), chosen->i(u"plugs"));
    db.add(u"po_line"_s, package->project, po.id,
           {{u"description"_s, title + u" — per bid"_s},
            {u"qty"_s, u"1"_s},
            {u"unitCost"_s, QString::number(leveled)}});
}
