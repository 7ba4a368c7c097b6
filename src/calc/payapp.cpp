#include "payapp.h"

#include "money.h"
#include "store/db.h"
#include "totals.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Calc {

PayApp payApp(const QList<PayLine> &lines, double retWorkPct, double retMatPct, qint64 original,
              qint64 approved, qint64 previousL6)
{
    PayApp app;
    PayTotals &t = app.totals;
    app.rows.reserve(lines.size());
    for (const PayLine &line : lines) {
        PayRow row;
        row.line = line;
        const qint64 work = Money::add(line.previous, line.thisPeriod);
        row.completed = Money::add(work, line.stored);
        row.pct = line.scheduled == 0
                      ? 0.0
                      : std::round(double(row.completed) / double(line.scheduled) * 100 * 10) / 10;
        row.balance = Money::sub(line.scheduled, row.completed);
        // Retainage is rounded per row; the totals add the rounded rows.
        row.retWork = Money::fromDouble(retWorkPct * double(work) / 100);
        row.retMat = Money::fromDouble(retMatPct * double(line.stored) / 100);

        t.scheduled = Money::add(t.scheduled, line.scheduled);
        t.previous = Money::add(t.previous, line.previous);
        t.thisPeriod = Money::add(t.thisPeriod, line.thisPeriod);
        t.stored = Money::add(t.stored, line.stored);
        t.completed = Money::add(t.completed, row.completed);
        t.balance = Money::add(t.balance, row.balance);
        t.retWork = Money::add(t.retWork, row.retWork);
        t.retMat = Money::add(t.retMat, row.retMat);
        app.rows.append(row);
    }

    G702 &g = app.g702;
    g.l1 = original;
    g.l2 = approved;
    g.l3 = Money::add(g.l1, g.l2);
    g.l4 = t.completed;
    g.l5a = t.retWork;
    g.l5b = t.retMat;
    g.l5 = Money::add(g.l5a, g.l5b);
    g.l6 = Money::sub(g.l4, g.l5);
    g.l7 = previousL6;
    g.l8 = Money::sub(g.l6, g.l7);
    g.l9 = Money::sub(g.l3, g.l6);
    return app;
}

} // namespace Calc

namespace {

// The recursion's guard: deeper than this, line 7 is taken as 0.
constexpr int kMaxDepth = 200;

// What every application of one project shares. Listed once per outside call
// and reused down the chain: the store does not change during a computation,
// so each level sees exactly what listing again would give.
struct ProjectData
{
    Rec project;
    bool hasProject = false;
    QList<Rec> apps;
    QList<Rec> sov;
    Calc::ContractSummary contract;
    QHash<QString, QList<Rec>> linesByApp; // pay lines by application id, filled on demand
    // Line 6 of applications already worked out, so a chain is walked once however
    // many of its applications are asked for. Line 6 rests only on an application's
    // own lines and the work billed before it, never on line 7, so a figure worked
    // out at any depth is the same at every other.
    QHash<QString, qint64> l6Done;

    const QList<Rec> &linesOf(const DB &db, const QString &appId)
    {
        auto it = linesByApp.find(appId);
        if (it == linesByApp.end())
            it = linesByApp.insert(appId, db.list(u"pay_line"_s, {.parent = appId}));
        return *it;
    }
};

PayAppData compute(const DB &db, ProjectData &pd, const Rec &pa, int depth)
{
    const qint64 number = pa.i(u"number");

    // Earlier means a strictly lower number; among equal numbers the first listed is the previous one.
    QList<const Rec *> earlier;
    const Rec *previous = nullptr;
    for (const Rec &app : std::as_const(pd.apps)) {
        const qint64 n = app.i(u"number");
        if (n >= number)
            continue;
        earlier.append(&app);
        if (!previous || n > previous->i(u"number"))
            previous = &app;
    }
    qint64 previousL6 = 0;
    if (previous && depth < kMaxDepth) {
        const auto done = pd.l6Done.constFind(previous->id);
        previousL6 = done != pd.l6Done.cend() ? *done : compute(db, pd, *previous, depth + 1).calc.g702.l6;
    }

    QHash<QString, const Rec *> current;
    const QList<Rec> ownLines = pd.linesOf(db, pa.id); // a copy: the cache may grow below
    for (const Rec &line : ownLines) {
        const QString sov = line.f[u"sov"];
        if (!current.contains(sov))
            current.insert(sov, &line);
    }

    // Only work billed earlier carries forward; earlier stored materials do not.
    QHash<QString, qint64> billedBefore;
    for (const Rec *app : std::as_const(earlier))
        for (const Rec &line : pd.linesOf(db, app->id)) {
            qint64 &sum = billedBefore[line.f[u"sov"]];
            sum = Money::add(sum, line.i(u"thisPeriod"));
        }

    QList<Calc::PayLine> lines;
    lines.reserve(pd.sov.size());
    for (const Rec &sov : std::as_const(pd.sov)) {
        Calc::PayLine line;
        line.scheduled = sov.i(u"scheduled");
        line.previous = billedBefore.value(sov.id);
        if (const Rec *own = current.value(sov.id)) {
            line.thisPeriod = own->i(u"thisPeriod");
            line.stored = own->i(u"stored");
        }
        lines.append(line);
    }

    // The application's own percentages: zero on the last one releases all retainage.
    PayAppData data;
    data.calc = Calc::payApp(lines, pa.d(u"retWork"), pa.d(u"retMat"), pd.project.i(u"contract"),
                             pd.contract.approved, previousL6);
    data.sov = pd.sov;
    if (previous && depth < kMaxDepth)
        data.previous = previous->id;
    pd.l6Done.insert(pa.id, data.calc.g702.l6);
    return data;
}

ProjectData projectData(const DB &db, const QString &projectId)
{
    ProjectData pd;
    if (std::optional<Rec> project = db.get(projectId)) {
        pd.project = *project;
        pd.hasProject = true;
    } else {
        pd.project.kind = u"project"_s; // a missing project reads as all zeros
    }
    pd.apps = db.list(u"pay_app"_s, {.project = projectId});
    pd.sov = db.list(u"sov_line"_s, {.project = projectId});
    if (pd.hasProject)
        pd.contract = contract(db, pd.project);
    return pd;
}

} // namespace

PayAppData payAppData(const DB &db, const Rec &payApp, int depth)
{
    ProjectData pd = projectData(db, payApp.project);
    return compute(db, pd, payApp, depth);
}

QHash<QString, PayAppData> payAppDataOfProject(const DB &db, const QString &projectId)
{
    ProjectData pd = projectData(db, projectId);
    QHash<QString, PayAppData> out;
    for (const Rec &app : std::as_const(pd.apps)) {
        out.insert(app.id, compute(db, pd, app, 0));
    }
    return out;
}

void setPayLine(DB &db, const Rec &payApp, const QString &sovId, std::optional<qint64> thisPeriod,
                std::optional<qint64> stored)
{
    std::optional<Rec> line;
    for (const Rec &r : db.list(u"pay_line"_s, {.parent = payApp.id}))
        if (r.f[u"sov"] == sovId) {
            line = r;
            break;
        }
    if (!line) {
        line.emplace();
        line->id = newID();
        line->kind = u"pay_line"_s;
        line->company = payApp.company;
        line->project = payApp.project;
        line->parent = payApp.id;
        line->created = nowSeconds();
        line->updated = line->created;
        line->f.insert(u"sov"_s, sovId);
    }
    if (thisPeriod)
        line->f.insert(u"thisPeriod"_s, QString::number(*thisPeriod));
    if (stored)
        line->f.insert(u"stored"_s, QString::number(*stored));
    db.save(*line);
}
