// Breakdowns of the WIP schedule's columns for one job, and of the hub's tiles.
#include "breakdown.h"
#include "figures.h"
#include "wipschedule.h"

#include "calc/money.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Explain {

namespace {

enum class Wip {
    Contract,
    EstimatedCost,
    GrossProfit,
    CostToDate,
    CostToComplete,
    Earned,
    ProfitToDate,
    LossProvision,
    Billed,
    OverBilled,
    UnderBilled,
    Backlog
};

QString markRule(const WipLine &l)
{
    switch (l.mark) {
    case WipLine::Mark::NoEstimate:
        return u"No estimate: the revised budget is 0, so the outcome cannot be estimated; revenue equals "
               u"cost to date, never more than the contract, and no gross profit is recognised"_s;
    case WipLine::Mark::NoContract:
        return u"No contract: the contract is 0, so the outcome cannot be estimated; no revenue or profit "
               u"is recognised"_s;
    case WipLine::Mark::None: break;
    }
    return {};
}

QString wipFigure(const DB &db, Breakdown &b, Wip which)
{
    const Rec &project = *db.find(b.ref.project);
    if (!WipSchedule::listed(project.f.value(u"status")))
        return u"the project is not on the WIP schedule while it is bidding"_s;
    Calc::PartSink sink;
    if (which == Wip::Billed)
        sink = [&b](Calc::Part &&p) {
            if (p.column == ProjectFigures::BilledOutColumn)
                b.rows.append(std::move(p));
        };
    const ProjectFigures f = ProjectFigures::of(db, project, sink);
    const WipLine l = WipSchedule::line(project, f);
    const bool marked = l.mark != WipLine::Mark::None;
    b.scope = u"WIP schedule"_s;
    const auto m = Calc::ruleMoney;
    auto fig = [&b](const QString &name, const QString &what, qint64 amount, const QString &rule = {}) {
        b.rows << Calc::figurePart(name, {}, what, amount, rule);
    };
    switch (which) {
    case Wip::Contract:
        b.rule = u"the revised contract"_s;
        fig(u"contract.revised"_s, u"Revised contract"_s, l.contract);
        b.total = l.contract;
        break;
    case Wip::CostToDate:
        b.rule = u"the job's actual cost"_s;
        fig(u"jobcost.actual"_s, u"Actual cost"_s, l.costToDate);
        b.total = l.costToDate;
        break;
    case Wip::EstimatedCost:
        if (l.completed) {
            b.rule = u"a completed job's cost is final"_s;
            fig(u"jobcost.actual"_s, u"Cost to date"_s, l.estimatedCost);
        } else if (f.budget >= l.costToDate) {
            b.rule = u"the larger of the revised budget and cost to date: the budget"_s;
            fig(u"jobcost.budget"_s, u"Revised budget"_s, l.estimatedCost);
        } else {
            b.rule = u"the larger of the revised budget and cost to date: cost has passed the budget of "_s +
                     m(f.budget);
            fig(u"jobcost.actual"_s, u"Cost to date"_s, l.estimatedCost);
        }
        b.total = l.estimatedCost;
        break;
    case Wip::CostToComplete:
        b.rule = u"estimated cost − cost to date"_s;
        fig(u"wip.estimatedcost"_s, u"Estimated cost"_s, l.estimatedCost);
        fig(u"wip.costtodate"_s, u"Cost to date"_s, Money::sub(0, l.costToDate));
        b.total = l.costToComplete;
        break;
    case Wip::GrossProfit:
        if (marked) {
            b.rule = markRule(l);
            fig({}, WipSchedule::markText(l.mark), 0, u"no gross profit is recognised"_s);
        } else {
            b.rule = u"contract − estimated cost"_s;
            fig(u"wip.contract"_s, u"Contract"_s, l.contract);
            fig(u"wip.estimatedcost"_s, u"Estimated cost"_s, Money::sub(0, l.estimatedCost));
        }
        b.total = l.estimatedProfit;
        break;
    case Wip::Earned:
        if (marked) {
            b.rule = markRule(l);
            fig(u"wip.costtodate"_s, WipSchedule::markText(l.mark) + u": revenue follows cost"_s, l.earned,
                u"cost to date "_s + m(l.costToDate) + u", held within 0 and the contract "_s +
                    m(l.contract));
        } else if (l.completed) {
            b.rule = u"a completed job has earned its whole contract"_s;
            fig(u"wip.contract"_s, u"Contract"_s, l.earned);
        } else if (l.costToDate <= 0 || l.estimatedCost <= 0) {
            b.rule = u"no cost yet, so nothing is earned"_s;
            fig(u"wip.costtodate"_s, u"Cost to date"_s, l.earned);
        } else {
            b.rule = u"contract × % complete, where % complete = cost to date ÷ estimated cost"_s;
            fig(u"wip.contract"_s, u"Contract × cost to date ÷ estimated cost"_s, l.earned,
                m(l.contract) + u" × "_s + m(l.costToDate) + u" ÷ "_s + m(l.estimatedCost) + u" ("_s +
                    WipSchedule::percentText(l.percentTenths) + u"%)"_s);
        }
        b.total = l.earned;
        break;
    case Wip::ProfitToDate:
        b.rule = marked ? markRule(l)
                 : l.lossProvision != 0 || l.estimatedProfit < 0
                     ? u"a foreseen loss is taken in full: earned revenue − cost to date − loss provision"_s
                     : u"earned revenue − cost to date"_s;
        fig(u"wip.earned"_s, u"Earned revenue"_s, l.earned);
        fig(u"wip.costtodate"_s, u"Cost to date"_s, Money::sub(0, l.costToDate));
        if (l.lossProvision != 0)
            fig(u"wip.lossprovision"_s, u"Loss provision"_s, Money::sub(0, l.lossProvision));
        b.total = l.profitToDate;
        break;
    case Wip::LossProvision:
        b.rule = u"the part of a foreseen loss not yet in cost"_s;
        fig({}, u"Loss provision"_s, l.lossProvision,
            l.estimatedProfit < 0 && !marked
                ? u"(earned revenue − cost to date) − estimated gross profit "_s + m(l.estimatedProfit)
                : u"no loss foreseen"_s);
        b.total = l.lossProvision;
        break;
    case Wip::Billed:
        b.rule = u"pay applications submitted, approved or paid (line 4 of the latest) and invoices neither "
                 u"draft nor void, before tax"_s;
        b.total = l.billed;
        break;
    case Wip::OverBilled:
    case Wip::UnderBilled: {
        const bool over = which == Wip::OverBilled;
        b.rule = over ? u"billed to date − earned revenue, when above zero"_s
                      : u"earned revenue − billed to date, when above zero"_s;
        if (marked)
            b.rule += u"; "_s + markRule(l);
        const qint64 sign = over ? 1 : -1;
        fig(u"wip.billed"_s, u"Billed to date"_s, sign * l.billed);
        fig(u"wip.earned"_s, u"Earned revenue"_s, -sign * l.earned);
        const qint64 net = sign * Money::sub(l.billed, l.earned);
        if (net < 0)
            fig({}, over ? u"Under billed instead"_s : u"Over billed instead"_s, -net,
                u"shown in its own column; never below zero here"_s);
        b.total = over ? l.overBilled : l.underBilled;
        break;
    }
    case Wip::Backlog:
        b.rule = u"contract − earned revenue"_s;
        fig(u"wip.contract"_s, u"Contract"_s, l.contract);
        fig(u"wip.earned"_s, u"Earned revenue"_s, Money::sub(0, l.earned));
        b.total = l.backlog;
        break;
    }
    return {};
}

template<Wip which> QString makeWip(const DB &db, Breakdown &b)
{
    return wipFigure(db, b, which);
}

// The hub's tiles: a sum over the projects it lists, one row a project.
QString hubFigure(const DB &db, Breakdown &b, const QString &sub, qint64 (*of)(const ProjectFigures &),
                  const QString &rule)
{
    QList<Rec> projects;
    if (!b.ref.project.isEmpty()) {
        const Rec *p = db.find(b.ref.project);
        if (!p || p->kind != u"project")
            return u"no project has the id "_s + b.ref.project;
        projects << *p;
        b.scope = p->f.value(u"name");
    } else {
        projects = db.list(u"project"_s);
        projects.removeIf([](const Rec &p) { return p.f.value(u"status"_s) == u"Complete"; });
        b.scope = u"All active projects"_s;
    }
    b.rule = rule;
    for (const Rec &p : std::as_const(projects)) {
        const qint64 amount = of(ProjectFigures::of(db, p));
        Calc::Part part = Calc::recordPart(db, p, amount, {});
        part.figure = sub;
        b.rows << part;
        b.total = Money::add(b.total, amount);
    }
    return {};
}

QString hubRevised(const DB &db, Breakdown &b)
{
    return hubFigure(
        db, b, u"contract.revised"_s, [](const ProjectFigures &f) { return f.contract.revised; },
        u"revised contracts of the projects"_s);
}
QString hubPending(const DB &db, Breakdown &b)
{
    return hubFigure(
        db, b, u"contract.pending"_s, [](const ProjectFigures &f) { return f.contract.pending; },
        u"pending owner change orders of the projects"_s);
}
QString hubBilled(const DB &db, Breakdown &b)
{
    return hubFigure(
        db, b, u"project.billed"_s, [](const ProjectFigures &f) { return f.billed; },
        u"billed to date of the projects"_s);
}
QString hubRetainage(const DB &db, Breakdown &b)
{
    return hubFigure(
        db, b, u"project.retainage"_s, [](const ProjectFigures &f) { return f.retainage; },
        u"retainage held on the projects"_s);
}
QString hubCost(const DB &db, Breakdown &b)
{
    return hubFigure(
        db, b, u"jobcost.actual"_s, [](const ProjectFigures &f) { return f.cost; },
        u"actual cost of the projects"_s);
}

} // namespace

QList<Figure> wipFigures()
{
    return {
        {u"wip.contract"_s, u"Contract"_s, {}, true, &makeWip<Wip::Contract>},
        {u"wip.estimatedcost"_s, u"Estimated cost"_s, {}, true, &makeWip<Wip::EstimatedCost>},
        {u"wip.grossprofit"_s, u"Estimated gross profit"_s, {}, true, &makeWip<Wip::GrossProfit>},
        {u"wip.costtodate"_s, u"Cost to date"_s, {}, true, &makeWip<Wip::CostToDate>},
        {u"wip.costtocomplete"_s, u"Cost to complete"_s, {}, true, &makeWip<Wip::CostToComplete>},
        {u"wip.earned"_s, u"Earned revenue"_s, {}, true, &makeWip<Wip::Earned>},
        {u"wip.profittodate"_s, u"Gross profit to date"_s, {}, true, &makeWip<Wip::ProfitToDate>},
        {u"wip.lossprovision"_s, u"Loss provision"_s, {}, true, &makeWip<Wip::LossProvision>},
        {u"wip.billed"_s, u"Billed to date"_s, {}, true, &makeWip<Wip::Billed>},
        {u"wip.overbilled"_s, u"Over billings"_s, {}, true, &makeWip<Wip::OverBilled>},
        {u"wip.underbilled"_s, u"Under billings"_s, {}, true, &makeWip<Wip::UnderBilled>},
        {u"wip.backlog"_s, u"Backlog"_s, {}, true, &makeWip<Wip::Backlog>},
        {u"hub.revised"_s, u"Revised contracts"_s, {}, false, &hubRevised},
        {u"hub.pending"_s, u"Pending CO exposure"_s, {}, false, &hubPending},
        {u"hub.billed"_s, u"Billed to date"_s, {}, false, &hubBilled},
        {u"hub.retainage"_s, u"Retainage held"_s, {}, false, &hubRetainage},
        {u"hub.cost"_s, u"Cost to date"_s, {}, false, &hubCost},
    };
}

} // namespace Explain
