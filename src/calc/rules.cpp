#include "rules.h"

#include "money.h"
#include "store/db.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace Calc {

namespace {
qint64 leveled(const Bid &bid)
{
    return Money::add(bid.base, bid.plugs);
}

// Spaces and tabs only: a line end in a field is content, not padding.
QStringView trimBlanks(QStringView text)
{
    qsizetype a = 0, b = text.size();
    while (a < b && (text[a] == u' ' || text[a] == u'\t'))
        ++a;
    while (b > a && (text[b - 1] == u' ' || text[b - 1] == u'\t'))
        --b;
    return text.sliced(a, b - a);
}
} // namespace

LeveledBids levelBids(const QList<Bid> &bids)
{
    LeveledBids out;
    out.ranked = bids;
    // Stable, so bids of equal leveled amount keep the order they were entered in.
    std::stable_sort(out.ranked.begin(), out.ranked.end(),
                     [](const Bid &a, const Bid &b) { return leveled(a) < leveled(b); });
    if (!out.ranked.isEmpty()) {
        out.low = out.ranked.first();
        out.spread = Money::sub(leveled(out.ranked.last()), leveled(out.ranked.first()));
    }
    return out;
}

Compliance complianceStatus(const std::optional<QDate> &expires, const QDate &now, int warnDays)
{
    if (!expires || !expires->isValid())
        return {u"missing"_s, 0};
    const qint64 days = now.daysTo(*expires);
    if (days < 0)
        return {u"expired"_s, days};
    if (days <= warnDays)
        return {u"expiring"_s, days};
    return {u"ok"_s, days};
}

qint64 minutesOf(const QString &time)
{
    // Views, not split texts: job cost reads thousands of timecards per redraw.
    qint64 parts[2] = {0, 0};
    int k = 0;
    for (QStringView piece : QStringView(time).tokenize(u':', Qt::SkipEmptyParts)) {
        if (k == 2)
            break; // a seconds part is ignored
        parts[k++] = RecText::parseInt(trimBlanks(piece)).value_or(0);
    }
    qint64 hoursPart = 0;
    if (__builtin_mul_overflow(parts[0], qint64(60), &hoursPart))
        qFatal("Trestle stopped: the time %s is beyond the 64-bit range.", qPrintable(time));
    return Money::add(hoursPart, parts[1]);
}

double shiftHours(const QString &in, const QString &out, qint64 breakMin)
{
    // A card not clocked in or out yet has worked no hours, not a shift wrapped past midnight.
    if (trimBlanks(in).isEmpty() || trimBlanks(out).isEmpty())
        return 0;
    qint64 span = Money::sub(minutesOf(out), minutesOf(in));
    if (span < 0)
        span = Money::add(span, 1440); // past midnight, once; equal times are no shift at all
    const qint64 worked = std::max<qint64>(Money::sub(span, breakMin), 0);
    return std::round(double(worked) / 60 * 100) / 100;
}

const QSet<QString> &statutoryWaiverStates()
{
    static const QSet<QString> states = {u"AZ"_s, u"CA"_s, u"FL"_s, u"GA"_s, u"MI"_s, u"MS"_s,
                                         u"MO"_s, u"NV"_s, u"TX"_s, u"UT"_s, u"WY"_s};
    return states;
}

QString statutoryWarning(const QString &state)
{
    const QString code = trimBlanks(state).toString().toUpper();
    if (!statutoryWaiverStates().contains(code))
        return QString();
    return code +
           u" requires a statutory lien-waiver form. Use the official state wording; this generic form "
           u"may not be valid there."_s;
}

} // namespace Calc

double installed(const DB &db, const Rec &unitItem, const Calc::PartSink &sink)
{
    double qty = 0;
    for (const Rec &log : db.list(u"qty_log"_s, {.project = unitItem.project}))
        if (log.f[u"item"] == unitItem.id) {
            qty += log.d(u"qty");
            if (sink) {
                Calc::Part p = Calc::recordPart(db, log, 0, u"quantity logged"_s);
                p.qty = log.d(u"qty");
                sink(std::move(p));
            }
        }
    return qty;
}
