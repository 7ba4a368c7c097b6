// Breakdowns of one document's figures: change orders, estimates, invoices,
// purchase orders and unit-price items.
#include "breakdown.h"
#include "breakdownkit.h"

#include "calc/fmt.h"
#include "calc/money.h"
#include "calc/rules.h"
#include "calc/totals.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Explain {

namespace {

const Rec &subject(const DB &db, const Breakdown &b)
{
    return *db.find(b.ref.subject); // checked by explain() before the producer runs
}

// The number of a document in the scope line: "Change order CO-3".
QString scopeOf(const QString &what, const Rec &rec)
{
    const QString number = rec.f.value(u"number");
    return number.isEmpty() ? what : what + u' ' + number;
}

Calc::PartSink append(Breakdown &b)
{
    return [&b](Calc::Part &&p) { b.rows.append(std::move(p)); };
}

// A row of the document itself, worked out by a rule on its own figures.
Calc::Part own(const DB &db, const Rec &rec, const QString &what, qint64 amount, const QString &rule)
{
    Calc::Part p = Calc::recordPart(db, rec, amount, rule);
    p.description = what;
    return p;
}

QString coSubtotal(const DB &db, Breakdown &b)
{
    const Rec &co = subject(db, b);
    b.scope = scopeOf(u"Change order"_s, co);
    b.rule = u"the amounts of the change order's lines"_s;
    b.total = coTotals(db, co, append(b)).subtotal;
    return {};
}

QString coMarkup(const DB &db, Breakdown &b)
{
    const Rec &co = subject(db, b);
    const Calc::COTotals t = coTotals(db, co);
    b.scope = scopeOf(u"Change order"_s, co);
    b.rule = u"markup percent × subtotal, rounded to the cent"_s;
    b.rows << own(db, co, u"Markup"_s, t.markup,
                  Calc::rulePercent(co.d(u"markup")) + u" × "_s + Calc::ruleMoney(t.subtotal));
    b.total = t.markup;
    return {};
}

QString coTotal(const DB &db, Breakdown &b)
{
    const Rec &co = subject(db, b);
    const Calc::COTotals t = coTotals(db, co);
    b.scope = scopeOf(u"Change order"_s, co);
    b.rule = u"subtotal + markup"_s;
    b.rows << Calc::figurePart(u"co.subtotal"_s, co.id, u"Subtotal"_s, t.subtotal)
           << Calc::figurePart(u"co.markup"_s, co.id, u"Markup"_s, t.markup);
    b.total = t.total;
    return {};
}

QString estimateFigure(const DB &db, Breakdown &b, int which)
{
    const Rec &est = subject(db, b);
    b.scope = scopeOf(u"Estimate"_s, est);
    if (which == 0) {
        b.rule = u"quantity × unit cost of each line, rounded per line"_s;
        b.total = estimateTotals(db, est, append(b)).subtotal;
        return {};
    }
    const Calc::EstimateTotals t = estimateTotals(db, est);
    if (which == 1) {
        b.rule = u"markup percent × subtotal"_s;
        b.rows << own(db, est, u"Markup"_s, t.markup,
                      Calc::rulePercent(est.d(u"markup")) + u" × "_s + Calc::ruleMoney(t.subtotal));
        b.total = t.markup;
    } else if (which == 2) {
        b.rule = u"tax percent × (subtotal + markup)"_s;
        b.rows << own(db, est, u"Tax"_s, t.tax,
                      Calc::rulePercent(est.d(u"tax")) + u" × "_s +
                          Calc::ruleMoney(Money::add(t.subtotal, t.markup)));
        b.total = t.tax;
    } else {
        b.rule = u"subtotal + markup + tax"_s;
        b.rows << Calc::figurePart(u"estimate.subtotal"_s, est.id, u"Subtotal"_s, t.subtotal)
               << Calc::figurePart(u"estimate.markup"_s, est.id, u"Markup"_s, t.markup)
               << Calc::figurePart(u"estimate.tax"_s, est.id, u"Tax"_s, t.tax);
        b.total = t.total;
    }
    return {};
}

QString estimateSubtotal(const DB &db, Breakdown &b)
{
    return estimateFigure(db, b, 0);
}
QString estimateMarkup(const DB &db, Breakdown &b)
{
    return estimateFigure(db, b, 1);
}
QString estimateTax(const DB &db, Breakdown &b)
{
    return estimateFigure(db, b, 2);
}
QString estimateTotal(const DB &db, Breakdown &b)
{
    return estimateFigure(db, b, 3);
}

QString invoiceFigure(const DB &db, Breakdown &b, int which)
{
    const Rec &inv = subject(db, b);
    b.scope = scopeOf(u"Invoice"_s, inv);
    if (which == 0) {
        b.rule = u"quantity × unit price of each line, rounded per line"_s;
        b.total = invoiceTotals(db, inv, append(b)).subtotal;
        return {};
    }
    const Calc::InvoiceTotals t = invoiceTotals(db, inv);
    const QString on = u" × "_s + Calc::ruleMoney(t.subtotal);
    if (which == 1) {
        b.rule = u"tax percent × subtotal"_s;
        b.rows << own(db, inv, u"Tax"_s, t.tax, Calc::rulePercent(inv.d(u"tax")) + on);
        b.total = t.tax;
    } else if (which == 2) {
        b.rule = u"retainage percent × subtotal (tax is not held)"_s;
        b.rows << own(db, inv, u"Retainage"_s, t.retainage, Calc::rulePercent(inv.d(u"ret")) + on);
        b.total = t.retainage;
    } else {
        b.rule = u"subtotal + tax − retainage"_s;
        b.rows << Calc::figurePart(u"invoice.subtotal"_s, inv.id, u"Subtotal"_s, t.subtotal)
               << Calc::figurePart(u"invoice.tax"_s, inv.id, u"Tax"_s, t.tax)
               << Calc::figurePart(u"invoice.retainage"_s, inv.id, u"Retainage"_s,
                                   Money::sub(0, t.retainage));
        b.total = t.due;
    }
    return {};
}

QString invoiceSubtotal(const DB &db, Breakdown &b)
{
    return invoiceFigure(db, b, 0);
}
QString invoiceTax(const DB &db, Breakdown &b)
{
    return invoiceFigure(db, b, 1);
}
QString invoiceRetainage(const DB &db, Breakdown &b)
{
    return invoiceFigure(db, b, 2);
}
QString invoiceDue(const DB &db, Breakdown &b)
{
    return invoiceFigure(db, b, 3);
}

QString poTotalFigure(const DB &db, Breakdown &b)
{
    const Rec &po = subject(db, b);
    b.scope = scopeOf(u"Purchase order"_s, po);
    b.rule = u"quantity × unit cost of each line, rounded per line"_s;
    b.total = poTotal(db, po, append(b));
    return {};
}

QString unitInstalled(const DB &db, Breakdown &b)
{
    const Rec &item = subject(db, b);
    b.scope = u"Bid item "_s + item.f.value(u"item") + u' ' + item.f.value(u"description");
    b.rule = u"quantities logged against the item"_s;
    b.quantity = true;
    b.unit = item.f.value(u"unit"_s);
    b.qtyTotal = installed(db, item, append(b));
    sortByDate(b.rows);
    return {};
}

QString unitEarned(const DB &db, Breakdown &b)
{
    const Rec &item = subject(db, b);
    const double done = installed(db, item);
    b.scope = u"Bid item "_s + item.f.value(u"item") + u' ' + item.f.value(u"description");
    b.rule = u"quantity installed × unit price, rounded to the cent"_s;
    Calc::Part p = Calc::figurePart(u"unit.installed"_s, item.id, u"Installed to date"_s,
                                    Money::fromDouble(done * double(item.i(u"unitPrice"))),
                                    Fmt::qty(done) + u' ' + item.f.value(u"unit") + u" × "_s +
                                        Calc::ruleMoney(item.i(u"unitPrice")));
    b.rows << p;
    b.total = p.amount;
    return {};
}

} // namespace

QList<Figure> documentFigures()
{
    return {
        {u"co.subtotal"_s, u"Change order subtotal"_s, u"co"_s, false, &coSubtotal},
        {u"co.markup"_s, u"Change order markup"_s, u"co"_s, false, &coMarkup},
        {u"co.total"_s, u"Change order total"_s, u"co"_s, false, &coTotal},
        {u"estimate.subtotal"_s, u"Estimate subtotal"_s, u"estimate"_s, false, &estimateSubtotal},
        {u"estimate.markup"_s, u"Estimate markup"_s, u"estimate"_s, false, &estimateMarkup},
        {u"estimate.tax"_s, u"Estimate tax"_s, u"estimate"_s, false, &estimateTax},
        {u"estimate.total"_s, u"Estimate total"_s, u"estimate"_s, false, &estimateTotal},
        {u"invoice.subtotal"_s, u"Invoice subtotal"_s, u"invoice"_s, false, &invoiceSubtotal},
        {u"invoice.tax"_s, u"Invoice tax"_s, u"invoice"_s, false, &invoiceTax},
        {u"invoice.retainage"_s, u"Invoice retainage"_s, u"invoice"_s, false, &invoiceRetainage},
        {u"invoice.due"_s, u"Invoice amount due"_s, u"invoice"_s, false, &invoiceDue},
        {u"po.total"_s, u"Purchase order total"_s, u"po"_s, false, &poTotalFigure},
        {u"unit.installed"_s, u"Quantity installed"_s, u"unit_item"_s, false, &unitInstalled},
        {u"unit.earned"_s, u"Earned to date"_s, u"unit_item"_s, false, &unitEarned},
    };
}

} // namespace Explain
