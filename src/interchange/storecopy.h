#pragma once
#include <QtCore/QString>

struct sqlite3;

// A consistent copy of a live database file, taken through a connection of its
// own so that the store's connection (in this or another process) may keep
// writing. Opening pins one moment: everything read or copied afterwards is
// the database as it stood then, whatever is written meanwhile.
// One object is used by one thread at a time; it may be handed to another.
class StoreCopy
{
public:
    // Opens `databasePath` read-only and starts the read that pins the moment.
    explicit StoreCopy(const QString &databasePath);
    ~StoreCopy();
    StoreCopy(const StoreCopy &) = delete;
    StoreCopy &operator=(const StoreCopy &) = delete;

    // Why the database could not be opened or read; empty when it could.
    QString error() const { return m_error; }
    // Runs SQLite's quick check; empty when the database passes, otherwise why not.
    QString check();
    // How many rows the record table holds; -1 when it cannot be read.
    qint64 records();
    // Writes the pinned database into the new file `target` through SQLite's
    // online backup, as a plain database (no write-ahead log) synced to disk.
    // Empty on success; on failure no file is left at `target`.
    QString copyTo(const QString &target);

private:
    QString m_path;
    QString m_error;
    sqlite3 *m_db = nullptr;
};

// Whether a path of the data folder (relative to it) is left out of any copy
// of the folder: the live database with its log, which only go through a
// StoreCopy, and a lock, which says who holds the folder now.
bool liveOnly(const QString &relative);

// The words for an SQLite result code that a user can act on.
QString sqliteCause(int code);
