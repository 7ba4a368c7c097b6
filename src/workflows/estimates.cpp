#include "estimates.h"

#include "calc/money.h"
#include "calc/totals.h"
#include "store/db.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// A record not yet saved, for writing many in one transaction.
Rec fresh(const QString &kind, const QString &company, const QString &project, const QString &parent,
          const Fields &fields)
{
    Rec rec;
    rec.id = newID();
    rec.kind = kind;
    rec.company = company;
    rec.project = project;
    rec.parent = parent;
    rec.created = nowSeconds();
    rec.updated = rec.created;
    rec.f = fields;
    return rec;
}

struct Bucket
{
    QString code;
    qint64 amount = 0;
};

} // namespace

QString qtyText(double value)
{
    QString text = QString::number(value, 'f', QLocale::FloatingPointShortest);
    if (std::isfinite(value) && !text.contains(u'.'))
        text += u".0"_s;
    return text;
}

void useEstimateAsBudget(DB &db, const Rec &estimate)
{
    if (estimate.project.isEmpty())
        return;
    std::optional<Rec> project = db.get(estimate.project);
    if (!project)
        return;
    const RecFilter inProject{.project = project->id};
    for (const Rec &line : db.list(u"budget_line"_s, inProject))
        db.remove(line.id);
    for (const Rec &line : db.list(u"sov_line"_s, inProject))
        if (line.f.value(u"co").isEmpty())
            db.remove(line.id);

    // Cost by code, in the order each code first occurs.
    QList<Bucket> buckets;
    for (const Rec &line : db.list(u"est_line"_s, {.parent = estimate.id})) {
        const qint64 amount = Calc::lineAmount({line.d(u"qty"), line.i(u"unitCost")});
        const QString code = line.f.value(u"costCode");
        auto it =
            std::find_if(buckets.begin(), buckets.end(), [&](const Bucket &b) { return b.code == code; });
        if (it == buckets.end())
            buckets.append({code, amount});
        else
            it->amount = Money::add(it->amount, amount);
    }

    const Calc::EstimateTotals totals = estimateTotals(db, estimate);
    const QString company = db.companyID();
    QList<Rec> made;
    qint64 allocated = 0;
    for (qsizetype i = 0; i < buckets.size(); ++i) {
        const Bucket &b = buckets.at(i);
        const QString label = db.label(b.code);
        made.append(fresh(u"budget_line"_s, company, project->id, QString(),
                          {{u"costCode"_s, b.code},
                           {u"original"_s, QString::number(b.amount)},
                           {u"description"_s, label}}));
        // The last share takes what is left, so the schedule adds up to the total exactly.
        qint64 share = 0;
        if (i == buckets.size() - 1)
            share = Money::sub(totals.total, allocated);
        else if (totals.subtotal != 0)
            share = Money::fromDouble(double(b.amount) / double(totals.subtotal) * double(totals.total));
        allocated = Money::add(allocated, share);
        const QString n = QString::number(i + 1);
        made.append(fresh(u"sov_line"_s, company, project->id, QString(),
                          {{u"item"_s, n},
                           {u"description"_s, b.code.isEmpty() ? u"General"_s : label},
                           {u"scheduled"_s, QString::number(share)},
                           {u"sort"_s, n}}));
    }
    if (!made.isEmpty())
        db.saveAll(made);

    project = db.get(project->id);
    if (!project)
        return;
    project->f.insert(u"contract"_s, QString::number(totals.total));
    db.save(*project);
}

void addAssembly(DB &db, const Rec &assembly, const Rec &estimate, double qty)
{
    qsizetype n = db.count(u"est_line"_s, {.parent = estimate.id});
    const QString name = assembly.f.value(u"name");
    QList<Rec> made;
    for (const Rec &line : db.list(u"asm_line"_s, {.parent = assembly.id})) {
        ++n;
        const double lineQty = std::round(line.d(u"qtyPer") * qty * 100) / 100;
        made.append(fresh(u"est_line"_s, estimate.company, estimate.project, estimate.id,
                          {{u"description"_s, name + u": "_s + line.f.value(u"description")},
                           {u"costCode"_s, line.f.value(u"costCode")},
                           {u"unit"_s, line.f.value(u"unit")},
                           {u"qty"_s, qtyText(lineQty)},
                           {u"unitCost"_s, line.f.value(u"unitCost")},
                           {u"sort"_s, QString::number(n)}}));
    }
    if (!made.isEmpty())
        db.saveAll(made);
}
