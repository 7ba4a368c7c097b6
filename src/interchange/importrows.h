#pragma once
// The parts the import's planners share; not for use outside the import.
#include "calc/fieldinput.h"
#include "importplan.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

namespace Import {

// The names an import matches rows by: the stored records of the current
// company, and the rows planned so far, by kind and normal() key.
class Names
{
public:
    explicit Names(const DB &db)
        : m_db(db)
    {}
    // The id of the record the first key that names one names; empty when none does.
    QString find(const QString &kind, const QStringList &keys);
    // Records that `keys` name `id` from now on.
    void add(const QString &kind, const QStringList &keys, const QString &id);
    // Marks the row's first key as taken by this import; the line that took it
    // before (in any file), or 0 when none did.
    int claim(const QString &kind, const QStringList &keys, int line);
    // Ids the files of the export in this import carry, so references between them hold.
    QSet<QString> importIds;

private:
    QHash<QString, QString> &of(const QString &kind);
    const DB &m_db;
    QHash<QString, QHash<QString, QString>> m_ids;
    QHash<QString, QHash<QString, int>> m_claimed;
};

// The keys a record of `kind` is matched by, most telling first; empty when it has no name.
QStringList keysOf(const QString &kind, const Fields &fields);
// The row's cells by the field each column fills; several columns filling
// one field (address lines) are joined; empty cells are left out.
Fields collect(const Sheet &sheet, const Table::Row &row);
// A cell read as field `fd` takes it, with references by name among `names`.
FieldInput::Typed readCell(const DB &db, Names &names, const FD &fd, const QString &text);
// A new record of `kind` in the current company with its module's defaults.
Rec freshRec(const DB &db, const QString &kind, const ModuleDef *module);
// Rows of a list (contacts, team, cost codes, equipment, projects).
void planList(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out);
// Rows of an open-jobs sheet: one per job, its schedule-of-values lines folded in.
void planOpenJobs(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out);
// Rows of a file of the CSV export: values as stored, records by id.
void planStored(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out);

} // namespace Import
