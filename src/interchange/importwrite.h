#pragma once
#include "importplan.h"

#include <QtCore/QHash>

class DB;

// Writing a planned import as one step, and taking it back as one.
namespace Import {

// What an import wrote, enough to take it back. Invariant: `stamps` holds
// each written record's `updated` as the import left it.
struct Undo
{
    QString company;
    QList<Rec> before; // the records the import replaced or removed, as they were
    QStringList added; // ids the import made
    QHash<QString, double> stamps;
    bool isEmpty() const { return before.isEmpty() && added.isEmpty(); }
};

struct Outcome
{
    bool ok = false;
    QString error;    // why nothing was written
    QString snapshot; // the snapshot taken first; empty for a store in memory
    int written = 0;  // records written
    Undo undo;
};

// Writes the plan in one transaction, after a snapshot of the data folder.
// With any bad row nothing is written unless `skipBadRows`; then the good
// rows are. A plan made for another company than the current one is refused.
Outcome write(DB &db, const Plan &plan, bool skipBadRows);
// Whether the import can still be taken back: nothing it wrote has changed
// since, and nothing new hangs from what it made. `why` names what changed.
bool canUndo(const DB &db, const Undo &undo, QString *why = nullptr);
// Takes the import back in one transaction; false (with `why`) when it cannot.
bool undo(DB &db, const Undo &undo, QString *why = nullptr);

} // namespace Import
