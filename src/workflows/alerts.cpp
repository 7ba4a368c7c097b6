#include "alerts.h"

#include "calc/money.h"
#include "calc/rules.h"
#include "calc/totals.h"
#include "store/db.h"

#include <QtCore/QTimeZone>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kServiceAhead = 14 * 86400;
constexpr qint64 kBidsAhead = 7 * 86400;

std::optional<QDate> dateOf(const Rec &r, QStringView key)
{
    return DateFmt::parseIso(QStringView(r.f.value(key)).left(10));
}

// The date is before `now` plus `ahead` seconds, past dates included.
bool within(const std::optional<QDate> &date, const QDateTime &now, qint64 ahead)
{
    return date && date->startOfDay(now.timeZone()) < now.addSecs(ahead);
}

bool before(const std::optional<QDate> &date, const QDate &today)
{
    return date && *date < today;
}

} // namespace

namespace Alerts {

QList<HubAlert> all(const DB &db, const std::optional<QString> &project, const QDateTime &now)
{
    const QDate today = now.date();
    const RecFilter scope{.project = project};
    QList<HubAlert> out;
    auto raise = [&out](const Rec &r, const QString &symbol, const QString &text, AlertColor color,
                        const QString &module) {
        out.append({newID(), symbol, text, color, module, r.id,
                    r.project.isEmpty() ? std::nullopt : std::optional<QString>(r.project)});
    };

    // Expired and expiring certificates in one pass, in record order.
    for (const Rec &r : db.list(u"compliance"_s)) {
        const std::optional<QDate> expires = dateOf(r, u"expires");
        if (!expires)
            continue;
        const Calc::Compliance s = Calc::complianceStatus(expires, today, 30);
        const QString head = db.label(r.f.value(u"contact")) + u": "_s + r.f.value(u"docType");
        if (s.status == u"expired")
            raise(r, u"shield.slash.fill"_s, head + u" EXPIRED "_s + QString::number(-s.days) + u"d ago"_s,
                  AlertColor::red, u"compliance"_s);
        else if (s.status == u"expiring")
            raise(r, u"shield.lefthalf.filled"_s, head + u" expires in "_s + QString::number(s.days) + u"d"_s,
                  AlertColor::orange, u"compliance"_s);
    }

    for (const Rec &r : db.list(u"rfi"_s, scope))
        if (r.f.value(u"status") == u"Open" && before(dateOf(r, u"due"), today))
            raise(r, u"questionmark.bubble.fill"_s,
                  u"RFI #"_s + r.f.value(u"number") + u" overdue: "_s + r.f.value(u"subject"),
                  AlertColor::orange, u"rfis"_s);

    for (const Rec &r : db.list(u"co"_s, scope))
        if (r.f.value(u"status") == u"pending")
            raise(r, u"arrow.triangle.branch"_s,
                  u"CO #"_s + r.f.value(u"number") + u" pending: "_s + r.f.value(u"title") + u" ("_s +
                      Money::fmt(coTotals(db, r).total) + u")"_s,
                  AlertColor::yellow, u"cos"_s);

    for (const Rec &r : db.list(u"equipment"_s))
        if (within(dateOf(r, u"service"), now, kServiceAhead))
            raise(r, u"wrench.adjustable.fill"_s,
                  r.f.value(u"name") + u" service due "_s + DateFmt::show(r.f.value(u"service")),
                  AlertColor::orange, u"equipment"_s);

    for (const Rec &r : db.list(u"submittal"_s, scope)) {
        const QString status = r.f.value(u"status");
        if ((status == u"Pending" || status == u"Submitted") && before(dateOf(r, u"due"), today))
            raise(r, u"tray.full.fill"_s,
                  u"Submittal #"_s + r.f.value(u"number") + u" late: "_s + r.f.value(u"title"),
                  AlertColor::orange, u"submittals"_s);
    }

    for (const Rec &r : db.list(u"bid_package"_s, scope))
        if (r.f.value(u"status") == u"Open" && within(dateOf(r, u"due"), now, kBidsAhead))
            raise(r, u"envelope.badge.fill"_s,
                  u"Bids due "_s + DateFmt::show(r.f.value(u"due")) + u": "_s + r.f.value(u"title"),
                  AlertColor::blue, u"bids"_s);
    return out;
}

} // namespace Alerts
