// The legal text of a lien waiver. The wording is fixed; only the figures vary.
#include "pdfout.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/rules.h"
#include "catalog/modules.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace PDFOut {

QString waiverHTML(const DB &db, const Rec &waiver)
{
    const QString kind = waiver.f.value(u"kind"_s);
    // "unconditional_progress" does not begin with "conditional": an unknown
    // kind reads as unconditional and progress.
    const bool conditional = kind.startsWith(u"conditional"_s);
    const bool final = kind.endsWith(u"final"_s);
    const Rec project = db.get(waiver.project).value_or(Rec());

    QString heading;
    for (const auto &[key, label] : Modules::waiverKinds())
        if (key == kind) {
            heading = label;
            break;
        }

    QString text = u"Upon "_s;
    text += conditional ? u"receipt by the undersigned of a payment"_s
                        : u"the undersigned having received payment"_s;
    text += u" in the sum of "_s + Money::fmt(waiver.i(u"amount")) + u" from "_s +
            waiver.f.value(u"customer"_s) + u", "_s;
    text += u"the undersigned waives and releases any mechanic's lien, stop payment notice, and payment bond "
            u"rights "
            u"it has on the job of "_s +
            project.f.value(u"name"_s);
    const QString address = project.f.value(u"address"_s);
    if (!address.isEmpty())
        text += u", located at "_s + address;
    if (!final)
        text += u", to the extent of labor, services, equipment and material furnished through "_s +
                DateFmt::show(waiver.f.value(u"through"_s)) + u" only."_s;
    else
        text += u", for all labor, services, equipment and material furnished to the job."_s;
    if (conditional) {
        text +=
            u" This document becomes effective only when the payment has been properly endorsed and paid by "
            u"the bank on which it is drawn."_s;
    } else {
        text += u" The undersigned has been paid in full"_s;
        text += final ? u" for all work."_s : u" for the work covered through the date above."_s;
        text +=
            u" NOTICE: This document waives rights unconditionally and states that you have been paid. It is "
            u"enforceable against you if you sign it, even if you have not been paid."_s;
    }
    if (!final)
        text +=
            u" This release does not cover retainage, pending change orders, extras, or disputed claims."_s;

    QString out = u"<h2>"_s + esc(heading) + u"</h2><p>"_s + esc(text) + u"</p>"_s;
    out += u"<p><br>Claimant: "_s + esc(waiver.f.value(u"claimant"_s)) +
           u"<br><br>Signature: ____________________ &nbsp; Title: __________ &nbsp; Date: __________</p>"_s;
    // Only a state of the fixed list gets here, so its code needs no escaping.
    const QString state = waiver.f.value(u"state"_s).toUpper();
    if (Calc::statutoryWaiverStates().contains(state))
        out += u"<p style='color:#b00'><b>Note:</b> "_s + state +
               u" requires a statutory lien-waiver form.</p>"_s;
    return out;
}

} // namespace PDFOut
