#include "breakdownhtml.h"

#include "pdfout.h"
#include "printreports.h"

#include "store/db.h"

using namespace Qt::StringLiterals;

namespace PrintReports {

QString breakdownTitle(const Breakdown &b)
{
    return b.scope.isEmpty() ? b.title : b.title + u" — "_s + b.scope;
}

QString breakdownHTML(const DB &db, const Breakdown &b)
{
    const std::optional<Rec> project = b.ref.project.isEmpty() ? std::nullopt : db.get(b.ref.project);
    QString out = PDFOut::header(db, breakdownTitle(b), project) + dateLine();
    out += u"<p style='font-size:10pt'><b>Rule:</b> "_s + PDFOut::esc(b.rule) + u"</p>"_s;
    QList<QStringList> cells;
    cells.reserve(b.rows.size() + 1);
    for (const Calc::Part &row : b.rows)
        cells.append({row.date, row.number, row.description, row.rule, Explain::amountText(b, row)});
    cells.append({QString(), QString(), u"Total"_s, QString(), Explain::totalText(b)});
    const QString amount =
        b.quantity ? (b.unit.isEmpty() ? u"Quantity"_s : u"Quantity ("_s + b.unit + u')') : u"Amount"_s;
    out +=
        PDFOut::table({u"Date"_s, u"Number"_s, u"Description"_s, u"Rule applied"_s, amount}, cells, {4}, 9.0);
    return out;
}

} // namespace PrintReports
