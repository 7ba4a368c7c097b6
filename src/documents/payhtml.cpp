#include "payhtml.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "pdfout.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace PrintReports {

QString payHTML(const DB &db, const Rec &payApp, const PayAppData &data)
{
    const std::optional<Rec> project = db.get(payApp.project);
    const QString owner = project ? db.label(project->f.value(u"client"_s)) : QString();
    QString out = PDFOut::header(db, u"Application for Payment #"_s + payApp.f.value(u"number"_s), project);
    out += u"<p>Period to: "_s + PDFOut::esc(DateFmt::show(payApp.f.value(u"periodTo"_s))) +
           u" &nbsp; · &nbsp; Owner: "_s + PDFOut::esc(owner) + u"</p><h3>G702 — Summary</h3>"_s;

    const Calc::G702 &g = data.calc.g702;
    // The percentages print as they were typed on the application.
    const QString retWork = payApp.f.value(u"retWork"_s);
    const QString retMat = payApp.f.value(u"retMat"_s);
    const QList<std::pair<QString, qint64>> summary = {
        {u"1. Original contract sum"_s, g.l1},
        {u"2. Net change by change orders"_s, g.l2},
        {u"3. Contract sum to date"_s, g.l3},
        {u"4. Total completed & stored to date"_s, g.l4},
        {u"5a. Retainage — "_s + retWork + u"% of completed work"_s, g.l5a},
        {u"5b. Retainage — "_s + retMat + u"% of stored material"_s, g.l5b},
        {u"5. Total retainage"_s, g.l5},
        {u"6. Total earned less retainage"_s, g.l6},
        {u"7. Less previous certificates for payment"_s, g.l7},
        {u"8. CURRENT PAYMENT DUE"_s, g.l8},
        {u"9. Balance to finish, including retainage"_s, g.l9},
    };
    QList<QStringList> g702;
    for (const auto &[text, cents] : summary)
        g702.append({text, Money::fmt(cents)});
    out += PDFOut::table({u"Line"_s, u"Amount"_s}, g702, {1});

    out += u"<h3>G703 — Continuation sheet</h3>"_s;
    QList<QStringList> rows;
    for (qsizetype k = 0; k < data.calc.rows.size(); ++k) {
        const Calc::PayRow &r = data.calc.rows.at(k);
        const Rec sov = data.sov.value(k);
        rows.append({sov.f.value(u"item"_s), sov.f.value(u"description"_s), Money::fmt(r.line.scheduled),
                     Money::fmt(r.line.previous), Money::fmt(r.line.thisPeriod), Money::fmt(r.line.stored),
                     Money::fmt(r.completed), PDFOut::percent(r.pct), Money::fmt(r.balance),
                     Money::fmt(Money::add(r.retWork, r.retMat))});
    }
    const Calc::PayTotals &t = data.calc.totals;
    rows.append({QString(), u"TOTAL"_s, Money::fmt(t.scheduled), Money::fmt(t.previous),
                 Money::fmt(t.thisPeriod), Money::fmt(t.stored), Money::fmt(t.completed), QString(),
                 Money::fmt(t.balance), Money::fmt(Money::add(t.retWork, t.retMat))});
    out += PDFOut::table({u"Item"_s, u"Description"_s, u"Scheduled"_s, u"Previous"_s, u"This period"_s,
                          u"Stored"_s, u"Completed"_s, u"%"_s, u"Balance"_s, u"Retain."_s},
                         rows, {2, 3, 4, 5, 6, 7, 8, 9}, 6.5);

    out +=
        u"<p><br>Contractor: ____________________ &nbsp; Date: ________ &nbsp;&nbsp;&nbsp; Architect / Owner "
        u"certification: ____________________ &nbsp; Date: ________</p>"_s;
    out += u"<p style='font-size:8pt;color:#666'>AIA-style form produced by Fenwright Trestle. Not an "
           u"official AIA "
           u"document; AIA, G702 and G703 are trademarks of The American Institute of Architects.</p>"_s;
    return out;
}

QString payHTML(const DB &db, const Rec &payApp)
{
    return payHTML(db, payApp, payAppData(db, payApp));
}

} // namespace PrintReports
