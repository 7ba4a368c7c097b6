#include "reportshtml.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "catalog/modules.h"
#include "pdfout.h"
#include "printreports.h"
#include "store/db.h"
#include "workflows/figures.h"

using namespace Qt::StringLiterals;

namespace {
// The margin against the revised cost budget, not the cost to date.
qint64 margin(const ProjectFigures &f)
{
    return Money::sub(f.contract.revised, f.budget);
}

// A field as its module shows it: a choice reads by its label ("Owner", not
// the stored "owner"), as it does on screen and in the list logs.
QString shown(const DB &db, QStringView module, const Rec &rec, QStringView key)
{
    const ModuleDef *def = Modules::get(module);
    const FD *fd = def ? def->field(key) : nullptr;
    return fd ? Fmt::value(db, rec, *fd) : rec.f.value(key.toString());
}

// Nine columns of money do not fit a Letter page at the body size: a smaller
// size keeps every amount on one line.
constexpr double kWipPt = 8;
} // namespace

namespace PrintReports {

QStringList line(const Rec &project, const ProjectFigures &f)
{
    const double pct = f.contract.revised != 0 ? double(f.billed) / double(f.contract.revised) * 100.0 : 0.0;
    return {project.f.value(u"number"_s), project.f.value(u"name"_s), Money::fmt(f.contract.revised),
            Money::fmt(f.billed),         PDFOut::percent(pct),       Money::fmt(f.retainage),
            Money::fmt(f.paid),           Money::fmt(f.cost),         Money::fmt(margin(f))};
}

QString wipHTML(const DB &db)
{
    QList<QStringList> rows;
    for (const Rec &p : db.list(u"project"_s))
        rows.append(line(p, ProjectFigures::of(db, p)));
    return PDFOut::header(db, u"Work in Progress Report"_s, std::nullopt) + dateLine() +
           PDFOut::table({u"Number"_s, u"Project"_s, u"Revised contract"_s, u"Billed"_s, u"% billed"_s,
                          u"Retainage"_s, u"Paid"_s, u"Cost to date"_s, u"Projected margin"_s},
                         rows, {2, 3, 4, 5, 6, 7, 8}, kWipPt);
}

QString projectReport(const DB &db, const Rec &project)
{
    const ProjectFigures f = ProjectFigures::of(db, project);
    QString out = PDFOut::header(db, u"Project Report"_s, project) + dateLine();
    const QList<std::pair<QString, qint64>> figures = {
        {u"Original contract"_s, f.contract.original},
        {u"Approved changes"_s, f.contract.approved},
        {u"Pending changes"_s, f.contract.pending},
        {u"Revised contract"_s, f.contract.revised},
        {u"Billed to date"_s, f.billed},
        {u"Retainage held"_s, f.retainage},
        {u"Cost to date"_s, f.cost},
        {u"Revised budget"_s, f.budget},
        {u"Projected margin"_s, margin(f)},
    };
    QList<QStringList> rows;
    for (const auto &[label, cents] : figures)
        rows.append({label, Money::fmt(cents)});
    out += PDFOut::table({QString(), u"Amount"_s}, rows, {1});

    const RecFilter inProject{.project = project.id};
    const QList<Rec> cos = db.list(u"co"_s, inProject);
    if (!cos.isEmpty()) {
        QList<QStringList> coRows;
        for (const Rec &co : cos)
            coRows.append({co.f.value(u"number"_s), co.f.value(u"title"_s), shown(db, u"cos", co, u"kind"),
                           shown(db, u"cos", co, u"status"), Money::fmt(coTotals(db, co).total)});
        out += u"<h3>Change orders</h3>"_s +
               PDFOut::table({u"#"_s, u"Title"_s, u"Type"_s, u"Status"_s, u"Total"_s}, coRows, {4});
    }

    // An RFI is open only while "Open"; a punch item until it is "Closed".
    QList<QStringList> rfis;
    for (const Rec &r : db.list(u"rfi"_s, inProject))
        if (r.f.value(u"status"_s) == u"Open")
            rfis.append(
                {r.f.value(u"number"_s), r.f.value(u"subject"_s), DateFmt::show(r.f.value(u"due"_s))});
    if (!rfis.isEmpty())
        out += u"<h3>Open RFIs</h3>"_s + PDFOut::table({u"#"_s, u"Subject"_s, u"Due"_s}, rfis);

    QList<QStringList> punch;
    for (const Rec &r : db.list(u"punch"_s, inProject))
        if (r.f.value(u"status"_s) != u"Closed")
            punch.append(
                {r.f.value(u"title"_s), r.f.value(u"location"_s), shown(db, u"punch", r, u"status")});
    if (!punch.isEmpty())
        out += u"<h3>Open punch items</h3>"_s + PDFOut::table({u"Item"_s, u"Location"_s, u"Status"_s}, punch);
    return out;
}

} // namespace PrintReports
