#pragma once
#include <QtCore/QString>

#include <optional>

class DB;

// Reading back a file of unsaved changes (DB::saveUnsavedTo), so that work a
// window could not write is not stranded in it.
namespace Recovery {
struct Result
{
    qsizetype applied = 0; // records written
    qsizetype skipped = 0; // records and removals passed over: the store holds a newer version
    qsizetype removed = 0; // records removed, with what hangs from them
    qsizetype gone = 0;    // removals of records that were gone already
};

// Checks the whole file, then writes its records and removals into `db` in
// one transaction through the store's own write path. A record the store
// holds with a later `updated` stays as it is; so does a record removed in the
// file that was changed after the file was saved. Nothing, with one line in
// `error`, when the file cannot be read, is not such a file or is damaged, or
// names a company the store does not hold; the store is then untouched.
std::optional<Result> apply(DB &db, const QString &file, QString *error);
// One line for the user: "3 records written, 1 removed, 1 skipped (newer here)".
QString summary(const Result &result);
} // namespace Recovery
