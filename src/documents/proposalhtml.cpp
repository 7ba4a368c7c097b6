// The client-ready proposal of an estimate.
#include "pdfout.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace PDFOut {

QString proposalHTML(const DB &db, const Rec &estimate)
{
    const std::optional<Rec> project = db.get(estimate.project);
    const Calc::EstimateTotals totals = estimateTotals(db, estimate);

    QString out = header(db, u"Proposal #"_s + estimate.f.value(u"number"_s), project);
    const QString client = project ? db.label(project->f.value(u"client"_s)) : QString();
    out += u"<p>Date: "_s + esc(DateFmt::show(estimate.f.value(u"date"_s))) + u"<br>To: "_s + esc(client) +
           u"</p><h2>"_s + esc(estimate.f.value(u"title"_s)) + u"</h2>"_s;

    // The client sees no markup line: it is spread over the line prices.
    const qint64 marked = Money::add(totals.subtotal, totals.markup);
    const double factor = totals.subtotal != 0 ? double(marked) / double(totals.subtotal) : 1.0;

    QList<QStringList> rows;
    for (const Rec &line : db.list(u"est_line"_s, {.parent = estimate.id})) {
        const qint64 cost = Calc::lineAmount({line.d(u"qty"), line.i(u"unitCost")});
        rows.append({line.f.value(u"description"_s), Fmt::qty(line.d(u"qty")), line.f.value(u"unit"_s),
                     Money::fmt(Money::fromDouble(double(cost) * factor))});
    }
    out += table({u"Description"_s, u"Qty"_s, u"Unit"_s, u"Amount"_s}, rows, {1, 3});

    // Lines are rounded one by one and may not add up to the cent; the totals win.
    out += table({QString(), QString()},
                 {{u"Subtotal"_s, Money::fmt(marked)},
                  {u"Tax"_s, Money::fmt(totals.tax)},
                  {u"Proposal total"_s, Money::fmt(totals.total)}},
                 {1});
    out += u"<h3>Terms</h3><p>"_s + esc(estimate.f.value(u"terms"_s)) +
           u"</p><p><br>Accepted by: ____________________ &nbsp; Date: __________</p>"_s;
    return out;
}

} // namespace PDFOut
