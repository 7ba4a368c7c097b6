#pragma once
#include "parts.h"

#include <QtCore/QDate>
#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QString>

#include <optional>

class DB;
struct Rec;

namespace Calc {

// One bidder's price for a bid package.
struct Bid
{
    QString bidder;
    qint64 base = 0;
    qint64 plugs = 0; // what the bid lacks for the package's scope
    bool operator==(const Bid &) const = default;
};

// Bids ranked for comparison, with the spread from lowest to highest and the low bid.
struct LeveledBids
{
    QList<Bid> ranked; // ascending by base + plugs, ties in input order
    qint64 spread = 0;
    std::optional<Bid> low;
};

// Where an insurance or licence document stands against its expiry.
struct Compliance
{
    QString status; // "missing", "expired", "expiring" or "ok"
    qint64 days = 0;
};

// Ranks bids by base + plugs, keeping the entry order of equal amounts.
LeveledBids levelBids(const QList<Bid> &bids);
// Whole calendar days from `now`'s day to `expires`, judged against `warnDays`.
Compliance complianceStatus(const std::optional<QDate> &expires, const QDate &now, int warnDays);
// Hours worked between two HH:MM texts, past midnight wrapping once, less the break; two decimals.
// A blank `in` or `out` (spaces and tabs only) is a shift not yet worked: 0 hours.
double shiftHours(const QString &in, const QString &out, qint64 breakMin);
// Minutes of an "HH:MM" text as the timecard reads it.
qint64 minutesOf(const QString &time);
// States whose law prescribes the wording of a lien waiver.
const QSet<QString> &statutoryWaiverStates();
// The warning for a waiver's state, or the empty text when its state has no statutory form.
QString statutoryWarning(const QString &state);

} // namespace Calc

// Quantity installed to date of a unit-price item, from the project's quantity logs.
// Each log goes to `sink` with its quantity.
double installed(const DB &db, const Rec &unitItem, const Calc::PartSink &sink = {});
