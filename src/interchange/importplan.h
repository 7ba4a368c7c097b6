#pragma once
#include "importmap.h"
#include "store/rec.h"

#include <QtCore/QMap>

class DB;

// What an import would do, worked out before anything is written: each row
// read with the record editor's rules and matched against the records the
// company holds (by id, by cost-code number, by name within a list, ignoring
// case and spacing), so a second import of the same list adds nothing twice.
namespace Import {

enum class RowState { New, Updated, Unchanged, Bad };

// One row of a sheet and what it comes to. Invariant: `error` is set exactly
// when the state is Bad, and a bad row has no records.
struct PlanRow
{
    qsizetype sheet = 0;
    int line = 0;
    QString kind; // the list the row counts in (a Customer:Job row counts as a project)
    RowState state = RowState::Unchanged;
    QString title;       // what the row names, for the preview
    QString error;       // "clients.csv:14: Phone: …"
    QList<Rec> saves;    // the records as the row leaves them
    QList<Rec> replaced; // the stored records the row replaces or removes, as they were
    QStringList removes; // ids the row takes away (an open job's old schedule)
};

// New, updated, unchanged and bad rows of one kind.
struct Count
{
    int fresh = 0, updated = 0, unchanged = 0, bad = 0;
};

struct Plan
{
    QList<Sheet> sheets;
    QList<PlanRow> rows;
    QStringList notImported; // tables left out, one line each
    QString company;         // the company the plan was made for

    // Counts by kind, in the order the kinds first appear.
    QList<std::pair<QString, Count>> counts() const;
    // "contacts: 41 new, 3 updated, 0 unchanged" per kind, then the tables left out.
    QStringList summary() const;
    // One line per bad row.
    QStringList errors() const;
    bool anyBad() const;
    // The bad rows of each sheet as CSV with their header and a last
    // column saying what is wrong, to fix and bring in again; (file name, text).
    QList<std::pair<QString, QString>> badRowFiles() const;
};

// Reads every row of `sheets` against the current company of `db`. Changes nothing.
Plan plan(const DB &db, QList<Sheet> sheets);

} // namespace Import
