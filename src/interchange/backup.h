#pragma once
#include "csv.h"

#include <QtCore/QString>

#include <functional>

class DB;

// Copies of the whole data folder as one zip, and the company's records as CSV.
namespace Backup {
// Told how far a long job is (bytes); returning false cancels it.
using Progress = std::function<bool(qint64 done, qint64 total)>;

// What a backup or restore came to; title and message are for an alert.
struct Result
{
    bool ok = false;
    QString title;
    QString message;
};

// Zips the store's data folder (a consistent copy of the database, stored
// files, logos) as the zip's one top-level folder; the store may go on being
// written meanwhile. Never holds a whole file in memory. On failure or cancel
// no file is left at `zipPath`.
Result backup(DB &db, const QString &zipPath, const Progress &progress = {});

// Replaces `dataFolder` with the folder of the same name inside the zip; the
// old folder stays beside it as "<name> (before restore <seconds>)". Nothing
// is changed unless the zip holds "<name>/trestle.sqlite". Entries that would
// land outside the folder refuse the archive; links and devices are skipped.
// The caller quits right after a successful restore.
Result restore(const QString &zipPath, const QString &dataFolder, const Progress &progress = {});

// Writes one CSV per record kind of the current company into
// "<company> export <today>" under `parentDir`.
ExportResult exportCSV(const DB &db, const QString &parentDir);
} // namespace Backup
