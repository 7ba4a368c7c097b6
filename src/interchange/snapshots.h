#pragma once
#include "backup.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

class DB;

// Automatic copies of the data folder, kept beside it in "Trestle Snapshots",
// one folder per copy named after its moment ("yyyy-MM-dd HHmmss", local
// time) with the data folder's own layout. The database is a consistent copy
// of the live store; stored files are hard links where the disk allows (they
// are only ever replaced by rename, never rewritten, so a link keeps the old
// contents), copies otherwise. A folder gets its final name only once it is
// whole, so a name of that form means a finished snapshot.
namespace Snapshots {
// One snapshot.
struct Info
{
    QString path;
    QDateTime taken;
    qint64 records = -1; // rows of the record table
};

// "<parent of the data folder>/Trestle Snapshots".
QString folder(const QString &dataFolder);
// The snapshots whose database reads, newest first. One that is cut short or
// unreadable is left out.
QList<Info> list(const QString &dataFolder);
// When the newest snapshot folder was made (readable or not); invalid when none.
QDateTime newest(const QString &dataFolder);

// Checks the live store and copies it with its files into a new snapshot.
// On failure nothing is left behind. `madePath` receives the new folder.
Backup::Result make(DB &db, QString *madePath = nullptr);
// The same for the store file at `databasePath`, with the moment pinned when
// called; `now` names the folder. May run on another thread.
Backup::Result make(const QString &databasePath, const QDateTime &now, QString *madePath = nullptr);

// Checks the snapshot in full, then puts a copy of it in place of
// `dataFolder`; the old data moves aside as "<name> (before restore <seconds>)".
// A snapshot that is incomplete or damaged is refused and nothing changes.
// The caller quits right after a successful restore.
Backup::Result restore(const QString &snapshotFolder, const QString &dataFolder);

// Keeps the newest snapshot of each of the 14 newest days that have one, and
// the newest of each calendar month of the 12 months up to `now`; removes the
// rest, and what unfinished snapshots a stopped program left.
void prune(const QString &dataFolder, const QDateTime &now);

// The window's daily snapshot: due when the newest is more than 20 hours old
// (or there is none) and the store holds records.
bool due(const QString &dataFolder, qint64 records, const QDateTime &now);
// Pins the store's present state at once and makes the snapshot and prunes on
// a thread of its own; `done` is called on the calling thread's loop with the
// result. Writes made meanwhile never reach the snapshot.
void makeInBackground(DB &db, const std::function<void(const Backup::Result &, const QString &path)> &done);

// Gives a stored file an inode of its own before something outside the program
// may rewrite it in place, so no snapshot's link sees the change. False when
// the file stays shared.
bool unshare(const QString &path);
} // namespace Snapshots
