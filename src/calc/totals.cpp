#include "totals.h"

#include "fmt.h"
#include "money.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Calc {

qint64 lineAmount(const Line &line)
{
    return Money::fromDouble(line.qty * double(line.unit));
}

namespace {
// Lines are rounded one by one and only then added, so three lines of 0.333
// at ten dollars make $9.99, never $10.00.
qint64 subtotalOf(const QList<Line> &lines)
{
    qint64 sum = 0;
    for (const Line &line : lines)
        sum = Money::add(sum, lineAmount(line));
    return sum;
}
} // namespace

EstimateTotals estimateTotals(const QList<Line> &lines, double markupPct, double taxPct)
{
    EstimateTotals t;
    t.subtotal = subtotalOf(lines);
    t.markup = Money::fromDouble(double(t.subtotal) * markupPct / 100);
    // Tax is charged on the marked-up price, with the markup already rounded.
    t.tax = Money::fromDouble(double(Money::add(t.subtotal, t.markup)) * taxPct / 100);
    t.total = Money::add(Money::add(t.subtotal, t.markup), t.tax);
    return t;
}

InvoiceTotals invoiceTotals(const QList<Line> &lines, double taxPct, double retPct)
{
    InvoiceTotals t;
    t.subtotal = subtotalOf(lines);
    t.tax = Money::fromDouble(double(t.subtotal) * taxPct / 100);
    // Retainage is held on the work billed, not on the tax.
    t.retainage = Money::fromDouble(double(t.subtotal) * retPct / 100);
    t.due = Money::sub(Money::add(t.subtotal, t.tax), t.retainage);
    return t;
}

ContractSummary contractSummary(qint64 original, const QList<ContractCO> &cos)
{
    ContractSummary s;
    s.original = original;
    for (const ContractCO &co : cos) {
        if (co.status == u"approved") {
            s.approved = Money::add(s.approved, co.total);
            s.daysAdded = Money::add(s.daysAdded, co.days);
        } else if (co.status == u"pending") {
            s.pending = Money::add(s.pending, co.total);
        }
    }
    s.revised = Money::add(s.original, s.approved);
    s.projected = Money::add(s.revised, s.pending);
    return s;
}

} // namespace Calc

namespace {
QList<Calc::Line> linesOf(const DB &db, const QString &kind, const QString &parent, QStringView unitKey,
                          const Calc::PartSink &sink)
{
    QList<Calc::Line> lines;
    for (const Rec &r : db.list(kind, {.parent = parent})) {
        lines.append({r.d(u"qty"), r.i(unitKey)});
        if (sink)
            sink(Calc::recordPart(db, r, Calc::lineAmount(lines.last()),
                                  Fmt::qty(r.d(u"qty")) + u" × "_s + Calc::ruleMoney(r.i(unitKey)) +
                                      u", rounded per line"_s));
    }
    return lines;
}
} // namespace

Calc::EstimateTotals estimateTotals(const DB &db, const Rec &estimate, const Calc::PartSink &sink)
{
    return Calc::estimateTotals(linesOf(db, u"est_line"_s, estimate.id, u"unitCost", sink),
                                estimate.d(u"markup"), estimate.d(u"tax"));
}

Calc::InvoiceTotals invoiceTotals(const DB &db, const Rec &invoice, const Calc::PartSink &sink)
{
    return Calc::invoiceTotals(linesOf(db, u"inv_line"_s, invoice.id, u"unitPrice", sink), invoice.d(u"tax"),
                               invoice.d(u"ret"));
}

Calc::COTotals coTotals(const DB &db, const Rec &co, const Calc::PartSink &sink)
{
    Calc::COTotals t;
    for (const Rec &line : db.list(u"co_line"_s, {.parent = co.id})) {
        t.subtotal = Money::add(t.subtotal, line.i(u"amount"));
        if (sink)
            sink(Calc::recordPart(db, line, line.i(u"amount"), u"line amount"_s));
    }
    // Percent first: the product is formed in this order so that every caller
    // gets the same cent on a half.
    t.markup = Money::fromDouble(co.d(u"markup") * double(t.subtotal) / 100);
    t.total = Money::add(t.subtotal, t.markup);
    return t;
}

qint64 poTotal(const DB &db, const Rec &po, const Calc::PartSink &sink)
{
    qint64 total = 0;
    for (const Calc::Line &line : linesOf(db, u"po_line"_s, po.id, u"unitCost", sink))
        total = Money::add(total, Calc::lineAmount(line));
    return total;
}

Calc::ContractSummary contract(const DB &db, const Rec &project, const Calc::PartSink &sink)
{
    QList<Calc::ContractCO> cos;
    for (const Rec &co : db.list(u"co"_s, {.project = project.id})) {
        // Sub change orders are costs between us and a sub; only the owner's change the contract.
        if (co.f[u"kind"] != u"owner")
            continue;
        const Calc::COTotals t = coTotals(db, co);
        cos.append({co.f[u"status"], t.total, co.i(u"days")});
        const QString status = co.f[u"status"];
        if (sink && (status == u"approved" || status == u"pending")) {
            Calc::Part p = Calc::recordPart(db, co, t.total,
                                            u"owner change order, "_s + status + u", lines " +
                                                Calc::ruleMoney(t.subtotal) + u" + markup "_s +
                                                Calc::ruleMoney(t.markup));
            p.column = status == u"approved" ? Calc::ContractApproved : Calc::ContractPending;
            p.figure = u"co.total"_s;
            p.subject = co.id;
            sink(std::move(p));
        }
    }
    return Calc::contractSummary(project.i(u"contract"), cos);
}
