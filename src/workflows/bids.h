#pragma once
#include "store/rec.h"

#include <QtCore/QList>

#include <optional>

class DB;

// One bid of a package as the leveling panel ranks it.
struct RankedBid
{
    Rec bid;
    qint64 leveled = 0; // base + plugs
};

// A package's bids ranked low to high by base + plugs (ties in list order),
// with the spread between the lowest and the highest.
struct BidLeveling
{
    QList<RankedBid> ranked;
    qint64 spread = 0;
};

// Levels the bids of `package`.
BidLeveling levelPackage(const DB &db, const Rec &package);

// Awards the bid: takes any earlier award of its package away, marks the bid
// and the package, and issues a purchase order for the leveled amount.
void award(DB &db, const std::optional<Rec> &bid);

namespace BidText {
// Caption of the leveling panel.
inline constexpr char16_t kCaption[] = u"Bid leveling (base + plugs for exclusions)";
// Label before the spread.
inline constexpr char16_t kSpread[] = u"Spread between low and high: ";
} // namespace BidText
