#include "printreports.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "pdfout.h"
#include "store/db.h"
#include "workflows/alerts.h"
#include "workflows/figures.h"

using namespace Qt::StringLiterals;

namespace {

// The list's columns: the module's list columns, the record number first in
// a numbered module, and the project in front when the log spans projects.
QList<FD> logColumns(const ModuleDef &def, bool allProjects)
{
    const FD numberCol{u"number"_s, u"#"_s, FT::of(FT::text)};
    QList<FD> cols;
    for (const QString &key : def.columns) {
        if (key == u"number")
            cols.append(numberCol);
        else if (const FD *fd = def.field(key))
            cols.append(*fd);
    }
    const bool hasNumber =
        std::any_of(cols.cbegin(), cols.cend(), [](const FD &c) { return c.key == u"number"; });
    qsizetype front = 0;
    if (def.numbered && !hasNumber)
        cols.insert(front++, numberCol);
    if (allProjects && def.perProject)
        cols.insert(front, FD{u"__project"_s, u"Project"_s, FT::of(FT::text)});
    return cols;
}

QString cell(const DB &db, const Rec &rec, const FD &fd)
{
    if (fd.key == u"__project") {
        const std::optional<Rec> project = db.get(rec.project);
        const QString number = project ? project->f.value(u"number"_s) : QString();
        return number.isEmpty() ? db.label(rec.project) : number;
    }
    if (fd.key == u"number")
        return rec.f.value(u"number"_s);
    return Fmt::value(db, rec, fd);
}

double billedPct(const ProjectFigures &f)
{
    return f.contract.revised != 0 ? double(f.billed) / double(f.contract.revised) * 100.0 : 0.0;
}

} // namespace

namespace PrintReports {

QString dateLine()
{
    return u"<p style='font-size:9pt;color:#444'>Printed "_s + PDFOut::esc(DateFmt::nice(DateFmt::today())) +
           u"</p>"_s;
}

QString listHTML(const DB &db, const ModuleDef &def, const QList<Rec> &rows,
                 const std::optional<QString> &project)
{
    const QList<FD> cols = logColumns(def, !project);
    QStringList heads;
    QSet<int> right;
    for (int k = 0; k < cols.size(); ++k) {
        heads.append(cols.at(k).label);
        if (cols.at(k).type.kind == FT::money || cols.at(k).type.kind == FT::number)
            right.insert(k);
    }
    QList<QStringList> cells;
    for (const Rec &rec : rows) {
        QStringList row;
        for (const FD &fd : cols)
            row.append(cell(db, rec, fd));
        cells.append(row);
    }
    const std::optional<Rec> job = project ? db.get(*project) : std::nullopt;
    return PDFOut::header(db, def.title + u" Log"_s, job) + dateLine() + PDFOut::table(heads, cells, right) +
           u"<p style='font-size:9pt'>"_s + QString::number(rows.size()) + u" record"_s +
           (rows.size() == 1 ? QString() : u"s"_s) + u"</p>"_s;
}

QString hubHTML(const DB &db, const std::optional<Rec> &project)
{
    QList<Rec> scope;
    if (project)
        scope.append(*project);
    else
        for (const Rec &p : db.list(u"project"_s))
            if (p.f.value(u"status"_s) != u"Complete")
                scope.append(p);

    QString out = PDFOut::header(db, u"Dashboard Summary"_s, project) + dateLine();
    const QString role = db.role();
    const bool noMoney = role == u"Field" || role == u"Subcontractor";
    if (noMoney) {
        QList<QStringList> rows;
        for (const Rec &p : scope)
            rows.append({p.f.value(u"number"_s), p.f.value(u"name"_s), p.f.value(u"status"_s),
                         DateFmt::show(p.f.value(u"start"_s))});
        out += PDFOut::table({u"Number"_s, u"Project"_s, u"Status"_s, u"Start"_s}, rows);
    } else {
        qint64 revised = 0, billed = 0, retainage = 0, cost = 0, pending = 0;
        QList<QStringList> rows;
        for (const Rec &p : scope) {
            const ProjectFigures f = ProjectFigures::of(db, p);
            revised = Money::add(revised, f.contract.revised);
            billed = Money::add(billed, f.billed);
            retainage = Money::add(retainage, f.retainage);
            cost = Money::add(cost, f.cost);
            pending = Money::add(pending, f.contract.pending);
            rows.append({p.f.value(u"number"_s), p.f.value(u"name"_s), p.f.value(u"status"_s),
                         Money::fmt(f.contract.revised), Money::fmt(f.billed), PDFOut::percent(billedPct(f)),
                         Money::fmt(f.cost)});
        }
        const QString name = project ? project->f.value(u"name"_s) : QString();
        out += u"<h3>Key figures — "_s + PDFOut::esc(name.isEmpty() ? u"all active projects"_s : name) +
               u"</h3>"_s;
        out += PDFOut::table({QString(), u"Amount"_s},
                             {{u"Revised contracts"_s, Money::fmt(revised)},
                              {u"Billed to date"_s, Money::fmt(billed)},
                              {u"Retainage held"_s, Money::fmt(retainage)},
                              {u"Cost to date"_s, Money::fmt(cost)},
                              {u"Pending CO exposure"_s, Money::fmt(pending)}},
                             {1});
        out += u"<h3>Projects</h3>"_s + PDFOut::table({u"Number"_s, u"Project"_s, u"Status"_s, u"Revised"_s,
                                                       u"Billed"_s, u"% billed"_s, u"Cost"_s},
                                                      rows, {3, 4, 5, 6});
    }

    // Alerts of money modules (a pending change order names its amount)
    // stay off a printout that must show no money.
    QList<QStringList> alerts;
    for (const HubAlert &a : Alerts::all(db, project ? std::optional<QString>(project->id) : std::nullopt)) {
        const ModuleDef *m = Modules::get(a.module);
        if (noMoney && m && m->money)
            continue;
        alerts.append({a.text});
    }
    out += u"<h3>Alerts</h3>"_s;
    out += alerts.isEmpty() ? u"<p>No alerts.</p>"_s : PDFOut::table({u"Alert"_s}, alerts);
    return out;
}

} // namespace PrintReports
