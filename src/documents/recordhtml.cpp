// The document of one record, and its title.
#include "pdfout.h"

#include "calc/fmt.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "store/db.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>

using namespace Qt::StringLiterals;

namespace {

// A two-column table of labelled amounts, the amounts right-aligned.
QString amounts(const QList<std::pair<QString, qint64>> &rows)
{
    QList<QStringList> cells;
    for (const auto &[label, cents] : rows)
        cells.append({label, Money::fmt(cents)});
    return PDFOut::table({QString(), u"Amount"_s}, cells, {1});
}

// What follows the lines for the modules that have more to say than their fields.
QString moduleExtra(const DB &db, const ModuleDef &def, const Rec &rec)
{
    if (def.id == u"cos") {
        const Calc::COTotals t = coTotals(db, rec);
        return amounts({{u"Subtotal"_s, t.subtotal}, {u"Markup"_s, t.markup}, {u"Total"_s, t.total}}) +
               u"<p><br>Approved by owner: ____________________ &nbsp; Date: __________</p>"_s;
    }
    if (def.id == u"invoices") {
        const Calc::InvoiceTotals t = invoiceTotals(db, rec);
        // Retainage is withheld from the amount, so it prints as a deduction.
        return amounts({{u"Subtotal"_s, t.subtotal},
                        {u"Tax"_s, t.tax},
                        {u"Retainage withheld"_s, Money::sub(0, t.retainage)},
                        {u"Amount due"_s, t.due}});
    }
    if (def.id == u"pos")
        return u"<p><b>PO total: "_s + Money::fmt(poTotal(db, rec)) + u"</b></p>"_s;
    if (def.id == u"waivers")
        return PDFOut::waiverHTML(db, rec);
    return QString();
}

QString photos(const DB &db, const Rec &rec)
{
    const QList<Rec> list = db.list(u"photo"_s, {.parent = rec.id});
    if (list.isEmpty())
        return QString();
    QString out = u"<h3>Photos</h3>"_s;
    for (const Rec &photo : list) {
        // The address is built by the store, not typed, so it is the one value not escaped; a quote
        // in a file name is encoded so that it cannot end the attribute.
        const QString src =
            QString::fromLatin1(QUrl::fromLocalFile(db.fileURL(photo.f.value(u"file"_s), rec.company))
                                    .toEncoded()
                                    .replace('\'', "%27"));
        out += u"<p><img src='"_s + src + u"' width=300><br><i>"_s +
               PDFOut::esc(photo.f.value(u"caption"_s)) + u"</i></p>"_s;
    }
    return out;
}

} // namespace

namespace PDFOut {

QString recordHTML(const DB &db, const ModuleDef &def, const Rec &rec)
{
    // A blind cut of one final "s", not a real singular: "Punch List" stays whole.
    static const QRegularExpression finalS(u"s$"_s);
    QString title = def.title;
    title.remove(finalS);
    const QString number = rec.f.value(u"number"_s);
    if (!number.isEmpty())
        title += u" #"_s + number;

    QString out = header(db, title, db.get(rec.project));

    QList<QStringList> fields;
    for (const FD &fd : def.fields) {
        const QString value = Fmt::value(db, rec, fd);
        if (!value.isEmpty())
            fields.append({fd.label, value});
    }
    out += table({u"Field"_s, u"Value"_s}, fields);

    if (def.lineKind) {
        const QList<Rec> lines = db.list(*def.lineKind, {.parent = rec.id});
        if (!lines.isEmpty()) {
            QStringList heads;
            for (const FD &fd : def.lineFields)
                heads.append(fd.label);
            QList<QStringList> rows;
            for (const Rec &line : lines) {
                QStringList row;
                for (const FD &fd : def.lineFields)
                    row.append(Fmt::value(db, line, fd));
                rows.append(row);
            }
            out += u"<h3>"_s + (*def.lineKind == u"bid" ? u"Bids"_s : u"Line items"_s) + u"</h3>"_s +
                   table(heads, rows);
        }
    }

    out += moduleExtra(db, def, rec);
    out += photos(db, rec);
    return out;
}

QString recordTitle(const ModuleDef &def, const Rec &rec)
{
    if (def.id == u"documents")
        return rec.f.value(u"title"_s);
    QString name;
    for (const QString &key : {u"number"_s, u"date"_s, u"title"_s}) {
        name = rec.f.value(key);
        if (!name.isEmpty())
            break;
    }
    return def.title + u' ' + name;
}

} // namespace PDFOut
