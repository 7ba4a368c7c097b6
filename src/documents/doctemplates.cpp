#include "doctemplates.h"

#include "calc/datefmt.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace DocTemplates {

namespace {
// The three replacements every record text goes through before it meets markup.
QString esc(QString text)
{
    return text.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
}

const QString kBlank = u"__________"_s;
} // namespace

const QList<Template> &all()
{
    static const QList<Template> templates = {
        {u"blank"_s, u"Blank document"_s, u"<p></p>"_s},
        {u"letter"_s, u"Business letter"_s,
         u"<p>{{date}}</p><p>{{owner}}<br>{{address}}</p><p><strong>Re: {{project}}</strong></p><p>Dear "
         u"{{owner}},</p><p>Write your letter here.</p><p>Sincerely,</p><p>{{user}}<br>{{company}}</p>"_s},
        {u"scope"_s, u"Scope of work"_s,
         u"<h1>Scope of Work</h1><p><strong>Project:</strong> {{project}}<br><strong>Location:</strong> "
         u"{{address}}<br><strong>Date:</strong> {{date}}</p><h2>1. Work included</h2><ul><li>Furnish all "
         u"labor, materials and equipment for…</li></ul><h2>2. Work excluded</h2><ul><li>Permits and fees "
         u"unless noted.</li></ul><h2>3. Schedule</h2><p>Start date and duration.</p><h2>4. Clean-up &amp; "
         u"safety</h2><p>Daily clean-up; comply with the site safety plan.</p>"_s},
        {u"subcontract"_s, u"Subcontract agreement"_s,
         u"<h1>Subcontract Agreement</h1><p>This agreement is made {{date}} between "
         u"<strong>{{company}}</strong> (\"Contractor\") and ____________________ (\"Subcontractor\") for "
         u"work on <strong>{{project}}</strong>, {{address}}.</p><h2>1. Scope</h2><p>Subcontractor shall "
         u"perform the work described in Exhibit A.</p><h2>2. Price</h2><p>Contractor shall pay $__________, "
         u"subject to additions and deductions by written change order.</p><h2>3. Payment &amp; "
         u"retainage</h2><p>Monthly progress payments less ___% retainage, within ___ days after Contractor "
         u"is paid by Owner. Lien waivers are required with each payment.</p><h2>4. Insurance</h2><p>"
         u"Subcontractor shall carry general liability, auto and workers' compensation insurance and "
         u"provide certificates before starting work.</p><h2>5. Change orders</h2><p>No extra work will be "
         u"paid without a signed change order.</p><p><em>Template only — have an attorney licensed in your "
         u"state review before use.</em></p><p>Contractor: ____________________ &nbsp;&nbsp; Date: "
         u"__________</p><p>Subcontractor: ____________________ &nbsp;&nbsp; Date: __________</p>"_s},
        {u"ntp"_s, u"Notice to proceed"_s,
         u"<h1>Notice to Proceed</h1><p>Date: {{date}}</p><p>To: ____________________</p><p>Project: "
         u"<strong>{{project}}</strong>, {{address}}</p><p>You are notified to begin work under your "
         u"contract on ____________. Please acknowledge receipt below.</p><p>{{user}}, {{company}}</p>"_s},
        {u"cor"_s, u"Change order request"_s,
         u"<h1>Change Order Request</h1><p><strong>Project:</strong> {{project}}<br><strong>Date:</strong> "
         u"{{date}}</p><h2>Description of change</h2><p></p><h2>Reason</h2><p></p><h2>Cost impact</h2><p>"
         u"$__________</p><h2>Schedule impact</h2><p>____ calendar days</p>"_s},
        {u"rfi"_s, u"Request for information"_s,
         u"<h1>Request for Information</h1><p><strong>Project:</strong> {{project}}<br><strong>Date:"
         u"</strong> {{date}}<br><strong>To:</strong> ____________</p><h2>Question</h2><p></p><h2>Suggested "
         u"answer</h2><p></p><p>Response needed by: __________</p>"_s},
        {u"transmittal"_s, u"Transmittal"_s,
         u"<h1>Transmittal</h1><p><strong>Project:</strong> {{project}}<br><strong>Date:</strong> "
         u"{{date}}</p><table border=1 cellpadding=4><tr><th>Copies</th><th>Description</th></tr><tr><td>1"
         u"</td><td></td></tr></table><p>Remarks:</p>"_s},
    };
    return templates;
}

std::optional<Template> find(const QString &key)
{
    for (const Template &t : all())
        if (t.key == key)
            return t;
    return std::nullopt;
}

QString fill(const DB &db, const QString &body, const std::optional<Rec> &project)
{
    const auto company = db.company();
    const auto user = db.user();
    const auto field = [&](const std::optional<Rec> &rec, const QString &key) {
        return rec ? rec->f.value(key) : QString();
    };
    QString out = body;
    out.replace(u"{{date}}"_s, esc(DateFmt::nice(DateFmt::today())));
    out.replace(u"{{company}}"_s, esc(field(company, u"name"_s)));
    out.replace(u"{{user}}"_s, esc(field(user, u"name"_s)));
    out.replace(u"{{project}}"_s, esc(project ? field(project, u"name"_s) : kBlank));
    out.replace(u"{{address}}"_s, esc(project ? field(project, u"address"_s) : kBlank));
    out.replace(u"{{owner}}"_s, esc(project ? db.label(field(project, u"client"_s)) : kBlank));
    return out;
}

} // namespace DocTemplates
