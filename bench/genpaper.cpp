// The paperwork of a job: change orders, purchase orders, RFIs, submittals,
// the punch list, small invoices and lien waivers.
#include "gencompany.h"

using namespace Qt::StringLiterals;
using namespace BenchText;

namespace BenchData {

namespace {
// The status a document has reached `age` days after it was written.
QString byAge(qint64 age, const QString &fresh, const QString &middle, const QString &old)
{
    return age < 10 ? fresh : age < 40 ? middle : old;
}
} // namespace

void Generator::changeOrders(const Job &job)
{
    const int count = job.type == Residential  ? m_dice.in(2, 8)
                      : job.type == Commercial ? m_dice.in(5, 20)
                                               : m_dice.in(4, 15);
    for (int k = 1; k <= count; ++k) {
        const QDate day = dayIn(job, 0.1, 1.0);
        if (!day.isValid())
            continue;
        const bool sub = m_dice.chance(0.3);
        const int roll = m_dice.in(0, 99);
        const QString status = day.daysTo(m_today) < 30 && roll < 60 ? u"pending"_s
                               : roll < 75                           ? u"approved"_s
                               : roll < 90                           ? u"rejected"_s
                               : roll < 95                           ? u"void"_s
                                                                     : u"pending"_s;
        const Scope &main = anyScope(job);
        Fields f{{u"number"_s, QString::number(k)},
                 {u"title"_s, u"Change to "_s + QString::fromUtf16(main.div->items[0].name).toLower()},
                 {u"kind"_s, sub ? u"sub"_s : u"owner"_s},
                 {u"status"_s, status},
                 {u"date"_s, iso(day)},
                 {u"markup"_s, u"10"_s},
                 {u"days"_s, QString::number(m_dice.chance(0.3) ? m_dice.in(1, 10) : 0)},
                 {u"reason"_s, fill(m_dice.pick(changeReasons()), m_dice.pick(locations()))}};
        if (sub)
            f.insert(u"sub"_s, m_dice.pick(m_subs));
        const QString co = m_batch.add(u"co"_s, job.id, {}, std::move(f));
        const int lines = m_dice.in(1, 4);
        for (int l = 0; l < lines; ++l) {
            const Scope &s = l == 0 ? main : anyScope(job);
            const qint64 amount = m_dice.chance(0.12) ? -m_dice.cents(20000, 800000)
                                                      : m_dice.cents(50000, sub ? 1200000 : 2500000);
            m_batch.add(u"co_line"_s, job.id, co,
                        {{u"description"_s, QString::fromUtf16(s.div->items[size_t(m_dice.in(0, 2))].name)},
                         {u"costCode"_s, s.codeID},
                         {u"amount"_s, QString::number(amount)},
                         {u"sort"_s, QString::number((l + 1) * 10)}});
        }
    }
}

void Generator::purchaseOrders(const Job &job)
{
    const int count = job.type == Residential  ? m_dice.in(3, 8)
                      : job.type == Commercial ? m_dice.in(10, 25)
                                               : m_dice.in(8, 20);
    for (int k = 1; k <= count; ++k) {
        const QDate day = dayIn(job, 0.0, 0.9);
        if (!day.isValid())
            continue;
        const Scope &s = anyScope(job);
        const QString status = m_dice.chance(0.03)
                                   ? u"Void"_s
                                   : byAge(day.daysTo(m_today), u"Draft"_s, u"Issued"_s, u"Closed"_s);
        Fields f{{u"number"_s, QString::number(k)},
                 {u"vendor"_s, m_dice.chance(0.7) ? m_dice.pick(m_vendors) : m_dice.pick(m_subs)},
                 {u"status"_s, status},
                 {u"date"_s, iso(day)},
                 {u"costCode"_s, s.codeID},
                 {u"deliver"_s, iso(day.addDays(m_dice.in(7, 30)))}};
        if (m_dice.chance(0.3))
            f.insert(u"notes"_s,
                     u"Deliver to "_s + m_dice.pick(locations()) + u". Call the super 30 minutes ahead."_s);
        const QString po = m_batch.add(u"po"_s, job.id, {}, std::move(f));
        const int lines = m_dice.in(1, 6);
        for (int l = 0; l < lines; ++l) {
            const Item &item = s.div->items[size_t(m_dice.in(0, 2))];
            m_batch.add(u"po_line"_s, job.id, po,
                        {{u"description"_s, QString::fromUtf16(item.name)},
                         {u"costCode"_s, s.codeID},
                         {u"qty"_s, qtyText(m_dice.real(item.qtyLo, qMax(item.qtyLo, item.qtyHi / 4)))},
                         {u"unit"_s, QString::fromUtf16(item.unit)},
                         {u"unitCost"_s, QString::number(m_dice.cents(item.costLo, item.costHi) * 7 / 10)},
                         {u"sort"_s, QString::number((l + 1) * 10)}});
        }
    }
}

void Generator::rfis(const Job &job)
{
    const int count = job.type == Residential  ? m_dice.in(2, 10)
                      : job.type == Commercial ? m_dice.in(15, 50)
                                               : m_dice.in(10, 35);
    for (int k = 1; k <= count; ++k) {
        const QDate day = dayIn(job, 0.0, 0.9);
        if (!day.isValid())
            continue;
        const QString place = m_dice.pick(locations());
        const QString status = byAge(day.daysTo(m_today), u"Open"_s, u"Answered"_s, u"Closed"_s);
        QString question = fill(m_dice.pick(rfiQuestions()), place);
        if (m_dice.chance(0.4))
            question += u" A prompt answer is needed to hold the schedule."_s;
        Fields f{{u"number"_s, QString::number(k)},
                 {u"subject"_s, QString::fromUtf16(anyScope(job).div->items[0].name) + u" at "_s + place},
                 {u"to"_s, job.architect},
                 {u"due"_s, iso(day.addDays(7))},
                 {u"status"_s, status},
                 {u"question"_s, question},
                 {u"costImpact"_s, m_dice.chance(0.2) ? u"true"_s : u"false"_s},
                 {u"schedImpact"_s, m_dice.chance(0.15) ? u"true"_s : u"false"_s}};
        if (status != u"Open")
            f.insert(u"answer"_s, m_dice.pick(rfiAnswers()));
        m_batch.add(u"rfi"_s, job.id, {}, std::move(f));
    }
}

void Generator::submittals(const Job &job)
{
    const int count = job.type == Residential  ? m_dice.in(3, 10)
                      : job.type == Commercial ? m_dice.in(20, 60)
                                               : m_dice.in(10, 30);
    for (int k = 1; k <= count; ++k) {
        const QDate day = dayIn(job, 0.0, 0.6);
        if (!day.isValid())
            continue;
        const Scope &s = anyScope(job);
        const QString kind = m_dice.chance(0.5) ? u"Product data — "_s : u"Shop drawings — "_s;
        const QString status = m_dice.chance(0.1)
                                   ? u"Revise & resubmit"_s
                                   : byAge(day.daysTo(m_today), u"Pending"_s, u"Submitted"_s,
                                           m_dice.chance(0.7) ? u"Approved"_s : u"Approved as noted"_s);
        Fields f{{u"number"_s, QString::number(k)},
                 {u"title"_s, kind + QString::fromUtf16(s.div->items[size_t(m_dice.in(0, 2))].name)},
                 {u"spec"_s, QString::fromUtf16(s.div->specSection)},
                 {u"sub"_s, m_dice.pick(m_subs)},
                 {u"due"_s, iso(day.addDays(14))},
                 {u"status"_s, status}};
        if (m_dice.chance(0.25))
            f.insert(u"notes"_s, u"Resubmit with the color chart and the warranty letter."_s);
        m_batch.add(u"submittal"_s, job.id, {}, std::move(f));
    }
}

void Generator::punchList(const Job &job)
{
    // A job gets a punch list only once it is nearly done.
    if (job.at(m_today) < 0.85)
        return;
    const int count = job.type == Residential  ? m_dice.in(10, 40)
                      : job.type == Commercial ? m_dice.in(30, 120)
                                               : m_dice.in(10, 40);
    const bool finished = job.end < m_today;
    for (int k = 0; k < count; ++k) {
        const QDate day = dayIn(job, 0.85, 1.0);
        if (!day.isValid())
            continue;
        const int roll = m_dice.in(0, 9);
        Fields f{{u"title"_s, m_dice.pick(punchItems())},
                 {u"location"_s, m_dice.pick(locations())},
                 {u"assignee"_s, m_dice.pick(m_subs)},
                 {u"due"_s, iso(day.addDays(m_dice.in(5, 15)))},
                 {u"status"_s, finished || roll < 4 ? u"Closed"_s
                               : roll < 6           ? u"Ready for review"_s
                                                    : u"Open"_s}};
        if (m_dice.chance(0.2))
            f.insert(u"notes"_s, u"Noted on the owner's walk."_s);
        m_batch.add(u"punch"_s, job.id, {}, std::move(f));
    }
}

void Generator::invoices(const Job &job)
{
    const int count = m_dice.in(1, 8);
    for (int k = 1; k <= count; ++k) {
        const QDate day = dayIn(job, 0.1, 1.0);
        if (!day.isValid())
            continue;
        const qint64 age = day.daysTo(m_today);
        const QString status = age > 45 ? u"Paid"_s : age > 3 ? u"Sent"_s : u"Draft"_s;
        const QString inv =
            m_batch.add(u"invoice"_s, job.id, {},
                        {{u"number"_s, QString::number(k)},
                         {u"date"_s, iso(day)},
                         {u"due"_s, iso(day.addDays(30))},
                         {u"client"_s, job.client},
                         {u"status"_s, status},
                         {u"tax"_s, u"0"_s},
                         {u"ret"_s, u"0"_s},
                         {u"notes"_s, u"Time and material work per signed field tickets."_s}});
        const int lines = m_dice.in(2, 6);
        qint64 total = 0;
        for (int l = 0; l < lines; ++l) {
            const QString what = m_dice.pick(extraWork());
            const bool hourly = what.startsWith(u"Labor") || what.startsWith(u"Equipment");
            const double qty = hourly ? m_dice.in(4, 80) : 1;
            const qint64 price = hourly ? m_dice.cents(6500, 14500) : m_dice.cents(5000, 250000);
            total += qint64(qty) * price;
            m_batch.add(u"inv_line"_s, job.id, inv,
                        {{u"description"_s, what},
                         {u"qty"_s, qtyText(qty)},
                         {u"unitPrice"_s, QString::number(price)},
                         {u"sort"_s, QString::number((l + 1) * 10)}});
        }
        if (status == u"Paid")
            m_batch.add(u"payment"_s, job.id, {},
                        {{u"date"_s, iso(day.addDays(m_dice.in(10, 40)))},
                         {u"direction"_s, u"Received"_s},
                         {u"party"_s, job.client},
                         {u"invoice"_s, inv},
                         {u"amount"_s, QString::number(total)},
                         {u"method"_s, u"Check"_s},
                         {u"ref"_s, QString::number(m_dice.in(1000, 99999))}});
    }
}

void Generator::waivers(const Job &job, const QString &payApp, const QDate &periodTo, qint64 amount,
                        const QString &status)
{
    const bool paid = status == u"paid";
    const bool final = periodTo >= job.end;
    auto waiver = [&](const QString &kind, const QString &claimant, const QString &customer,
                      const QString &state, const QString &signer) {
        m_batch.add(u"waiver"_s, job.id, {},
                    {{u"kind"_s, kind},
                     {u"payApp"_s, payApp},
                     {u"amount"_s, QString::number(amount)},
                     {u"claimant"_s, claimant},
                     {u"customer"_s, customer},
                     {u"through"_s, iso(periodTo)},
                     {u"state"_s, m_state},
                     {u"status"_s, state},
                     {u"signedBy"_s, signer}});
    };
    const QString customer = m_contactCompany.value(job.client);
    const QString stage = final ? u"final"_s : u"progress"_s;
    waiver(u"conditional_"_s + stage, m_companyName, customer, paid ? u"signed"_s : u"sent"_s, m_ownerName);
    if (paid)
        waiver(u"unconditional_"_s + stage, m_companyName, customer, u"signed"_s, m_ownerName);
    // The subs' own waivers for what they are paid out of this draw.
    const int subs = paid ? m_dice.in(0, 2) : 0;
    for (int k = 0; k < subs; ++k) {
        const QString sub = m_dice.pick(m_subs);
        waiver(u"unconditional_progress"_s, m_contactCompany.value(sub), m_companyName, u"received"_s,
               m_contactName.value(sub));
    }
}

} // namespace BenchData
