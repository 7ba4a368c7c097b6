#include "payappflow.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace {
// The record as stored: the store stamps `updated` again when it saves.
Rec stored(const DB &db, const Rec &made)
{
    return db.get(made.id).value_or(made);
}
} // namespace

Rec newPayApp(DB &db, const Rec &project)
{
    QList<Rec> apps = db.list(u"pay_app"_s, {.project = project.id});
    std::stable_sort(apps.begin(), apps.end(),
                     [](const Rec &a, const Rec &b) { return a.i(u"number") < b.i(u"number"); });
    const Rec *last = apps.isEmpty() ? nullptr : &apps.last();
    // Copied as text, so a retainage released to 0 stays released.
    const Fields &from = last ? last->f : project.f;
    const QString work = last ? from.value(u"retWork") : from.value(u"retainage");
    const QString mat = last ? from.value(u"retMat") : from.value(u"retainage");
    const qint64 number = last ? Money::add(last->i(u"number"), 1) : 1;
    return stored(db, db.add(u"pay_app"_s, project.id, QString(),
                             {{u"number"_s, QString::number(number)},
                              {u"status"_s, u"draft"_s},
                              {u"periodTo"_s, DateFmt::iso(DateFmt::today())},
                              {u"retWork"_s, work},
                              {u"retMat"_s, mat}}));
}

void billBalanceOfThisPeriod(DB &db, const Rec &payApp, const PayAppData &data)
{
    const qsizetype n = std::min(data.calc.rows.size(), data.sov.size());
    for (qsizetype i = 0; i < n; ++i) {
        const Calc::PayLine &line = data.calc.rows.at(i).line;
        const qint64 rest = Money::sub(Money::sub(line.scheduled, line.previous), line.stored);
        setPayLine(db, payApp, data.sov.at(i).id, rest, std::nullopt);
    }
}

Rec makeWaiver(DB &db, const Rec &payApp, qint64 amount, bool final)
{
    const Rec *project = db.find(payApp.project);
    const std::optional<Rec> company = db.company();
    return stored(db, db.add(u"waiver"_s, payApp.project, QString(),
                             {{u"kind"_s, final ? u"unconditional_final"_s : u"conditional_progress"_s},
                              {u"payApp"_s, payApp.id},
                              {u"amount"_s, QString::number(amount)},
                              {u"claimant"_s, company ? company->f.value(u"name") : QString()},
                              {u"customer"_s, project ? db.label(project->f.value(u"client")) : QString()},
                              {u"through"_s, payApp.f.value(u"periodTo")},
                              {u"state"_s, project ? project->f.value(u"state") : QString()},
                              {u"status"_s, u"draft"_s}}));
}

bool finalAfterPaid(const Calc::G702 &g702)
{
    return g702.l9 == g702.l5;
}

bool isLocked(const Rec &payApp)
{
    const QString status = payApp.f.value(u"status");
    return status == u"approved" || status == u"paid";
}

QString lockNotice(const Rec &payApp)
{
    return u"This application is "_s + payApp.f.value(u"status") +
           u" and locked. Set it back to Draft to change amounts."_s;
}

Rec addSOVLine(DB &db, const QString &projectId)
{
    // Change-order lines count in the item, though their sort keeps them last.
    const QString next = QString::number(db.count(u"sov_line"_s, {.project = projectId}) + 1);
    return stored(
        db,
        db.add(
            u"sov_line"_s, projectId, QString(),
            {{u"item"_s, next}, {u"description"_s, QString()}, {u"scheduled"_s, u"0"_s}, {u"sort"_s, next}}));
}
