#include "importwrite.h"

#include "snapshots.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Import {

Outcome write(DB &db, const Plan &plan, bool skipBadRows)
{
    Outcome outcome;
    if (plan.company != db.companyID()) {
        outcome.error = u"The company changed since the preview; look at the files again."_s;
        return outcome;
    }
    if (plan.anyBad() && !skipBadRows) {
        outcome.error = u"Nothing was imported: "_s + QString::number(plan.errors().size()) +
                        (plan.errors().size() == 1 ? u" row is bad."_s : u" rows are bad."_s);
        return outcome;
    }
    QList<Rec> saves;
    QStringList removes;
    for (const PlanRow &row : plan.rows) {
        if (row.state == RowState::Bad)
            continue;
        saves += row.saves;
        removes += row.removes;
        outcome.undo.before += row.replaced;
    }
    if (saves.isEmpty() && removes.isEmpty()) {
        outcome.ok = true;
        return outcome;
    }
    if (!db.inMemory()) {
        const Backup::Result shot = Snapshots::make(db, &outcome.snapshot);
        if (!shot.ok) {
            outcome.error =
                u"Nothing was imported: the snapshot before it failed ("_s + shot.message + u")."_s;
            return outcome;
        }
    }
    QSet<QString> replaced;
    for (const Rec &r : std::as_const(outcome.undo.before))
        replaced.insert(r.id);
    for (const Rec &r : std::as_const(saves))
        if (!replaced.contains(r.id))
            outcome.undo.added.append(r.id);
    outcome.undo.company = db.companyID();
    db.saveAndRemove(saves, removes);
    for (const Rec &r : std::as_const(saves))
        if (const Rec *now = db.find(r.id))
            outcome.undo.stamps.insert(r.id, now->updated);
    outcome.written = int(saves.size());
    outcome.ok = true;
    return outcome;
}

bool canUndo(const DB &db, const Undo &undo, QString *why)
{
    const auto refuse = [&](const QString &text) {
        if (why)
            *why = text;
        return false;
    };
    if (undo.isEmpty())
        return refuse(u"There is no import to undo."_s);
    for (auto it = undo.stamps.cbegin(); it != undo.stamps.cend(); ++it) {
        const Rec *now = db.find(it.key());
        if (!now || now->updated != it.value())
            return refuse(u"\u201C"_s + (now ? db.label(now->id) : it.key()) +
                          u"\u201D changed after the import, so the import can no longer be undone."_s);
    }
    // What the import made must not have gained records since: removing it would take them too.
    const QSet<QString> added(undo.added.cbegin(), undo.added.cend());
    QSet<QString> projects;
    for (const QString &id : undo.added)
        if (const Rec *r = db.find(id); r && r->kind == u"project")
            projects.insert(id);
    if (projects.isEmpty())
        return true;
    QString grown;
    db.forEach([&](const Rec &x) {
        if (grown.isEmpty() && projects.contains(x.project) && !added.contains(x.id))
            grown = x.project;
    });
    if (!grown.isEmpty())
        return refuse(u"Records were added to \u201C"_s + db.label(grown) +
                      u"\u201D after the import, so the import can no longer be undone."_s);
    return true;
}

bool undo(DB &db, const Undo &undo, QString *why)
{
    if (!canUndo(db, undo, why))
        return false;
    db.saveAndRemove(undo.before, undo.added);
    return true;
}

} // namespace Import
