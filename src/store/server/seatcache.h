#pragma once
#include "syncitems.h"

#include <QtCore/QHash>

#include <functional>
#include <unordered_map>

#include <optional>

class DB;
struct sqlite3;
struct sqlite3_stmt;

// Something the person at this seat should know about what became of their work.
struct SeatNotice
{
    enum Kind {
        Replaced,         // another seat's later save replaced a value of theirs
        RemovedElsewhere, // they changed a record another seat had removed
        KeptAfterRemove,  // they removed a record another seat had changed since
        Renumbered,       // the number they gave was taken; the server gave the next
        Refused,          // the server refused the change
        RoleChanged,      // the server now gives the login another role (mine: before, theirs: now)
    };
    Kind kind = Replaced;
    QString recId;
    QString field;
    QString mine;   // this seat's value (the one that was replaced, for Replaced)
    QString theirs; // the value that stands
    QString by;     // the login that made the other change
    QDateTime at;   // when, by the server's clock
    Rec copy;       // this seat's record, to put back (RemovedElsewhere)
    QString message;
};

// The part of a seat's database file that mirrors a company server: the
// server version of each record, the outbox of changes not yet accepted, and
// the position of the last change seen. Lives in the store's own file, so a
// change and its outbox entry are written in one transaction and a crash
// while offline loses nothing.
class SeatCache
{
public:
    explicit SeatCache(DB &db);
    ~SeatCache();
    SeatCache(const SeatCache &) = delete;
    SeatCache &operator=(const SeatCache &) = delete;

    // Prepared statements by their SQL text, kept for the life of the cache.
    using Statements = std::unordered_map<const char *, sqlite3_stmt *>;

    // Lets go of the prepared statements, so the store's file can close cleanly.
    void finalizeStatements();

    // Whether the tables could be made (the file is writable and healthy).
    bool ok() const { return m_ok; }

    // --- kept values ---
    QString meta(const QString &key) const;
    bool setMeta(const QString &key, const QString &value);
    qint64 position() const;

    // --- the outbox ---
    // Called by the store inside the transaction of every local write.
    bool noteChange(const QString &id, bool removed);
    // The oldest waiting changes, at most `limit`.
    QList<OutItem> pending(int limit) const;
    qsizetype waiting() const;
    // Forgets every record and file the server gave, to read them all again
    // (when the role, and so what may be read, changed). Only with nothing waiting.
    bool reset();
    // Sends the waiting change of `id` even over a newer server version (a
    // record put back after another seat removed it).
    bool forcePut(const QString &id);

    // --- stored files ---
    // What this seat knows of one stored file: the server's contents, and
    // the contents, size and time of the file on this disk when last looked at.
    struct FileState
    {
        QString serverSha;
        QString localSha;
        qint64 size = -1;
        qint64 mtime = -1;
    };
    QHash<QString, FileState> files() const; // by "company/name"
    bool setServerFile(const QString &company, const QString &name, const QString &sha);
    bool setLocalFile(const QString &company, const QString &name, const QString &sha, qint64 size,
                      qint64 mtime);
    // Tells the screens that something they show (a stored file) changed.
    void touch();
    // Called by the store when a stored file is asked for and is not on this disk.
    std::function<void(const QString &company, const QString &name)> wantFile;

    // --- answers from the server ---
    // Applies changes read from the server in position order and moves the
    // position to `newPos`, in one transaction, then into memory with one
    // changed(). Changes this seat also made are merged field by field.
    // False when the file could not be written (nothing applied then).
    bool applyRemote(const QList<ServerRow> &rows, qint64 newPos);
    // Takes the server's answers to sent changes.
    bool takeResults(const QList<SendResult> &results);
    // Notices that arose here, for the person at the seat; taken once.
    QList<SeatNotice> takeNotices();

private:
    struct Outbox
    {
        bool removed = false;
        qint64 gen = 0;
        qint64 baseVersion = 0;
        std::optional<Rec> base;
        QList<OutNotice> notices;
    };
    std::optional<Outbox> outbox(const QString &id) const;
    qint64 knownVersion(const QString &id) const;
    bool exec(const char *sql, const QList<QByteArray> &params = {}) const;
    // One incoming row inside the open transaction; memory changes are collected.
    bool takeRow(const ServerRow &row, const std::optional<Rec> &sentBase);
    bool putLocal(const Rec &rec);
    bool removeLocal(const QString &id);
    bool setVersion(const QString &id, qint64 version);
    bool rebase(const QString &id, qint64 version, const Rec &base, const QList<OutNotice> &notices,
                bool bumpGen);
    bool dropOutbox(const QString &id);
    bool commitToMemory(bool ok);

    DB &m_db;
    mutable Statements m_stmts;
    bool m_ok = false;
    // Memory changes of the open transaction: a record to put, or an id to drop.
    QList<Rec> m_puts;
    QStringList m_drops;
    QList<SeatNotice> m_notices;
};
