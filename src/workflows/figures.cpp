#include "figures.h"

#include "calc/budget.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

ProjectFigures ProjectFigures::of(const DB &db, const Rec &project)
{
    ProjectFigures out;
    out.contract = ::contract(db, project);
    const RecFilter inProject{.project = project.id};

    // Line 4 is cumulative, so only the latest application counts, draft or not.
    const QList<Rec> apps = db.list(u"pay_app"_s, inProject);
    const Rec *latest = nullptr;
    for (const Rec &app : apps)
        if (!latest || app.i(u"number") > latest->i(u"number"))
            latest = &app;
    if (latest) {
        const Calc::G702 g = payAppData(db, *latest).calc.g702;
        out.billed = g.l4;
        out.retainage = g.l5;
    }

    // Tax is not revenue; draft invoices count.
    for (const Rec &inv : db.list(u"invoice"_s, inProject))
        if (inv.f.value(u"status") != u"Void")
            out.billed = Money::add(out.billed, invoiceTotals(db, inv).subtotal);

    for (const Rec &pay : db.list(u"payment"_s, inProject))
        if (pay.f.value(u"direction") == u"Received")
            out.paid = Money::add(out.paid, pay.i(u"amount"));

    const Calc::JobCost cost = ::jobCost(db, project.id);
    out.cost = cost.total.actual;
    out.budget = cost.total.budget;
    return out;
}

ProjectFigures FiguresCache::of(const DB &db, const Rec &project)
{
    // The lists behind the figures are the current company's.
    if (db.companyID() != m_company) {
        m_entries.clear();
        m_company = db.companyID();
    }
    const quint64 revision = db.projectRevision(project.id);
    auto it = m_entries.find(project.id);
    if (it == m_entries.end())
        it = m_entries.insert(project.id, {});
    else if (it->revision == revision)
        return it->figures;
    it->revision = revision;
    it->figures = ProjectFigures::of(db, project);
    return it->figures;
}
