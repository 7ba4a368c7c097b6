#include "wipschedule.h"

#include "calc/money.h"
#include "store/db.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Wide enough for a product of two 64-bit amounts: the earned revenue is
// worked out exactly, never through a double.
__extension__ typedef __int128 Wide;

// num / den to the nearest whole number, halves away from zero; den > 0.
Wide divideRounded(Wide num, Wide den)
{
    const bool negative = num < 0;
    const Wide magnitude = negative ? -num : num;
    Wide q = magnitude / den;
    if (2 * (magnitude % den) >= den)
        ++q;
    return negative ? -q : q;
}

// P in tenths of a percent: cost ÷ estimate, clamped to 0…1, and 0 when
// there is no positive estimate.
int tenths(qint64 cost, qint64 estimate)
{
    if (estimate <= 0 || cost <= 0)
        return 0;
    if (cost >= estimate)
        return 1000;
    return int(divideRounded(Wide(cost) * 1000, estimate));
}

void add(WipLine &sum, const WipLine &l)
{
    for (auto member :
         {&WipLine::contract, &WipLine::estimatedCost, &WipLine::estimatedProfit, &WipLine::costToDate,
          &WipLine::costToComplete, &WipLine::earned, &WipLine::profitToDate, &WipLine::lossProvision,
          &WipLine::billed, &WipLine::overBilled, &WipLine::underBilled, &WipLine::backlog})
        sum.*member = Money::add(sum.*member, l.*member);
}

void close(WipLine &total)
{
    total.percentTenths = tenths(total.costToDate, total.estimatedCost);
}

} // namespace

bool WipSchedule::listed(const QString &status)
{
    return status != u"Bidding"_s;
}

bool WipSchedule::completedStatus(const QString &status)
{
    return status == u"Complete"_s;
}

WipLine WipSchedule::line(const Rec &project, const ProjectFigures &f)
{
    WipLine l;
    l.project = project.id;
    l.number = project.f.value(u"number"_s);
    l.name = project.f.value(u"name"_s);
    l.completed = completedStatus(project.f.value(u"status"_s));
    l.contract = f.contract.revised;
    l.costToDate = f.cost;
    // Only what has left the office is a billing; a draft can still change.
    l.billed = f.billedOut;
    // Cost past the budget is the estimate; a completed job's cost is final.
    l.estimatedCost = l.completed ? l.costToDate : std::max(f.budget, l.costToDate);
    l.estimatedProfit = Money::sub(l.contract, l.estimatedCost);
    l.costToComplete = Money::sub(l.estimatedCost, l.costToDate);

    if (!l.completed && (l.contract <= 0 || f.budget <= 0)) {
        // Without a contract or an estimate the outcome cannot be estimated: revenue
        // matches cost (never past the contract) and no profit is recognised.
        l.mark = l.contract <= 0 ? WipLine::Mark::NoContract : WipLine::Mark::NoEstimate;
        l.estimatedProfit = 0;
        l.earned = std::max<qint64>(0, std::min(l.costToDate, l.contract));
        l.profitToDate = Money::sub(l.earned, l.costToDate);
    } else if (l.completed) {
        l.percentTenths = 1000;
        l.earned = l.contract;
    } else {
        l.percentTenths = tenths(l.costToDate, l.estimatedCost);
        if (l.costToDate <= 0 || l.estimatedCost <= 0)
            l.earned = 0;
        else if (l.costToDate >= l.estimatedCost)
            l.earned = l.contract;
        else // |C x CTD / T| < |C|, so the quotient fits again
            l.earned = qint64(divideRounded(Wide(l.contract) * l.costToDate, l.estimatedCost));
    }

    const qint64 earnedMargin = Money::sub(l.earned, l.costToDate);
    // A foreseen loss is taken whole, now: what cost has not yet shown is provided for.
    if (l.mark == WipLine::Mark::None && l.estimatedProfit < 0) {
        l.profitToDate = l.estimatedProfit;
        l.lossProvision = Money::sub(earnedMargin, l.estimatedProfit);
    } else if (l.mark == WipLine::Mark::None) {
        l.profitToDate = earnedMargin;
    }
    const qint64 ahead = Money::sub(l.billed, l.earned);
    l.overBilled = std::max<qint64>(ahead, 0);
    l.underBilled = std::max<qint64>(Money::sub(0, ahead), 0);
    l.backlog = Money::sub(l.contract, l.earned);
    return l;
}

WipSchedule WipSchedule::from(const QList<std::pair<Rec, ProjectFigures>> &projects)
{
    WipSchedule s;
    s.inProgress.title = u"Contracts in progress"_s;
    s.completed.title = u"Completed contracts"_s;
    for (const auto &[project, figures] : projects) {
        if (!listed(project.f.value(u"status"_s)))
            continue;
        const WipLine l = line(project, figures);
        WipSection &section = l.completed ? s.completed : s.inProgress;
        section.lines.append(l);
        add(section.total, l);
        add(s.total, l);
    }
    close(s.inProgress.total);
    close(s.completed.total);
    close(s.total);
    return s;
}

WipSchedule WipSchedule::of(const DB &db)
{
    QList<std::pair<Rec, ProjectFigures>> projects;
    for (const Rec &p : db.list(u"project"_s))
        if (listed(p.f.value(u"status"_s)))
            projects.append({p, ProjectFigures::of(db, p)});
    return from(projects);
}

QString WipSchedule::methodNote()
{
    return u"Cost-to-cost method: % complete = cost to date ÷ estimated cost; earned revenue = contract × "
           u"% complete; over/under billing = billed to date − earned revenue, per job; a foreseen loss is "
           u"taken in full. Billed to date counts pay applications submitted, approved or paid and "
           u"invoices neither draft nor void."_s;
}

QString WipSchedule::markText(WipLine::Mark mark)
{
    switch (mark) {
    case WipLine::Mark::NoEstimate: return u"No estimate"_s;
    case WipLine::Mark::NoContract: return u"No contract"_s;
    case WipLine::Mark::None: break;
    }
    return {};
}

QStringList WipSchedule::markNotes() const
{
    bool estimate = false, contract = false;
    for (const WipLine &l : inProgress.lines) {
        estimate = estimate || l.mark == WipLine::Mark::NoEstimate;
        contract = contract || l.mark == WipLine::Mark::NoContract;
    }
    QStringList notes;
    if (estimate)
        notes << u"No estimate: the job has no estimated cost (revised budget 0), so its outcome cannot be "
                 u"estimated; revenue equal to cost to date is recognised, never past the contract, with no "
                 u"gross profit."_s;
    if (contract)
        notes
            << u"No contract: the job has no contract amount, so its outcome cannot be estimated; no revenue "
               u"or profit is recognised and what is billed shows as over billing."_s;
    return notes;
}

QString WipSchedule::plainMoney(qint64 cents)
{
    const quint64 magnitude = cents < 0 ? 0 - quint64(cents) : quint64(cents);
    return (cents < 0 ? u"-"_s : QString()) + QString::number(magnitude / 100) + u'.' +
           QString::number(magnitude % 100).rightJustified(2, u'0');
}

QString WipSchedule::percentText(int tenths)
{
    return QString::number(tenths / 10) + u'.' + QString::number(tenths % 10);
}

QList<QStringList> WipSchedule::csvRows() const
{
    QList<QStringList> rows{{u"Number"_s, u"Project"_s, u"Section"_s, u"Contract"_s, u"Estimated cost"_s,
                             u"Estimated gross profit"_s, u"Cost to date"_s, u"Cost to complete"_s,
                             u"% complete"_s, u"Earned revenue"_s, u"Gross profit to date"_s,
                             u"Loss provision"_s, u"Billed to date"_s, u"Over billings"_s,
                             u"Under billings"_s, u"Backlog"_s}};
    for (const WipSection *section : {&inProgress, &completed})
        for (const WipLine &l : section->lines)
            rows.append({l.number, l.name, l.completed ? u"Completed"_s : u"In progress"_s,
                         plainMoney(l.contract), plainMoney(l.estimatedCost), plainMoney(l.estimatedProfit),
                         plainMoney(l.costToDate), plainMoney(l.costToComplete), percentText(l.percentTenths),
                         plainMoney(l.earned), plainMoney(l.profitToDate), plainMoney(l.lossProvision),
                         plainMoney(l.billed), plainMoney(l.overBilled), plainMoney(l.underBilled),
                         plainMoney(l.backlog)});
    return rows;
}
