#include "changeorders.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

void setCOStatus(DB &db, Rec co, const QString &status)
{
    co.f.insert(u"status"_s, status);
    const bool decided = status == u"approved" || status == u"rejected";
    co.f.insert(u"decided"_s, decided ? DateFmt::iso(DateFmt::today()) : QString());
    const std::optional<Rec> user = db.user();
    co.f.insert(u"decidedBy"_s, user ? user->f.value(u"name") : QString());
    db.save(co);

    // Every move drops the old line, so approving again never leaves two.
    for (const Rec &line : db.list(u"sov_line"_s, {.project = co.project}))
        if (line.f.value(u"co") == co.id)
            db.remove(line.id);

    if (status != u"approved" || co.f.value(u"kind") != u"owner")
        return;
    const QString number = co.f.value(u"number");
    db.add(u"sov_line"_s, co.project, QString(),
           {{u"item"_s, u"CO-"_s + number},
            {u"description"_s, u"Change Order #"_s + number + u": "_s + co.f.value(u"title")},
            {u"scheduled"_s, QString::number(coTotals(db, co).total)},
            {u"co"_s, co.id},
            // After the lines of an ordinary schedule.
            {u"sort"_s, QString::number(Money::add(co.i(u"number"), 1000))}});
}
