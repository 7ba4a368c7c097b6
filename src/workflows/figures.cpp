#include "figures.h"

#include "calc/budget.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace {

// Sends a part for `rec` that is also a figure of its own.
void send(const Calc::PartSink &sink, const DB &db, const Rec &rec, qint64 amount, int column,
          const QString &figure, const QString &rule)
{
    if (!sink)
        return;
    Calc::Part p = Calc::recordPart(db, rec, amount, rule);
    p.column = column;
    p.figure = figure;
    p.subject = rec.id;
    sink(std::move(p));
}

bool leftOffice(const Rec &app)
{
    const QString status = app.f.value(u"status");
    return status == u"submitted" || status == u"approved" || status == u"paid";
}

} // namespace

ProjectFigures ProjectFigures::of(const DB &db, const Rec &project, const Calc::PartSink &sink)
{
    ProjectFigures out;
    out.contract = ::contract(db, project);
    const RecFilter inProject{.project = project.id};

    // Line 4 is cumulative, so only the latest application counts, draft or not.
    const QList<Rec> apps = db.list(u"pay_app"_s, inProject);
    const Rec *latest = nullptr;
    const Rec *latestOut = nullptr;
    for (const Rec &app : apps) {
        if (!latest || app.i(u"number") > latest->i(u"number"))
            latest = &app;
        if (leftOffice(app) && (!latestOut || app.i(u"number") > latestOut->i(u"number")))
            latestOut = &app;
    }
    Calc::G702 g;
    if (latest) {
        g = payAppData(db, *latest).calc.g702;
        out.billed = g.l4;
        out.retainage = g.l5;
        const QString rule = u"line 4 of the latest application, which is cumulative"_s;
        send(sink, db, *latest, g.l4, BilledColumn, u"payapp.completed"_s, rule);
        send(sink, db, *latest, g.l5, RetainageColumn, u"payapp.retainage"_s,
             u"line 5 of the latest application"_s);
    }
    if (latestOut) {
        const qint64 l4 = latestOut == latest ? g.l4 : payAppData(db, *latestOut).calc.g702.l4;
        out.billedOut = l4;
        send(sink, db, *latestOut, l4, BilledOutColumn, u"payapp.completed"_s,
             u"line 4 of the latest application sent to the owner (drafts are not billings)"_s);
    }

    // Tax is not revenue; draft invoices count, except in what has left the office.
    for (const Rec &inv : db.list(u"invoice"_s, inProject)) {
        const QString status = inv.f.value(u"status");
        if (status == u"Void")
            continue;
        const qint64 subtotal = invoiceTotals(db, inv).subtotal;
        out.billed = Money::add(out.billed, subtotal);
        send(sink, db, inv, subtotal, BilledColumn, u"invoice.subtotal"_s, u"invoice subtotal, before tax"_s);
        if (status != u"Draft") {
            out.billedOut = Money::add(out.billedOut, subtotal);
            send(sink, db, inv, subtotal, BilledOutColumn, u"invoice.subtotal"_s,
                 u"invoice subtotal, before tax"_s);
        }
    }

    for (const Rec &pay : db.list(u"payment"_s, inProject))
        if (pay.f.value(u"direction") == u"Received") {
            out.paid = Money::add(out.paid, pay.i(u"amount"));
            if (sink) {
                Calc::Part p = Calc::recordPart(db, pay, pay.i(u"amount"), u"payment received"_s);
                p.column = PaidColumn;
                sink(std::move(p));
            }
        }

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
