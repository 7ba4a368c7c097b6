#include "storecopy.h"

#include <QtCore/QFile>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

QString sqliteCause(int code)
{
    switch (code & 0xff) {
    case SQLITE_FULL: return u"the disk is full"_s;
    case SQLITE_READONLY:
    case SQLITE_PERM: return u"the folder is read-only"_s;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return u"the file is locked"_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return u"the database is damaged"_s;
    case SQLITE_CANTOPEN: return u"the file cannot be opened"_s;
    case SQLITE_IOERR: return u"an I/O error"_s;
    default: return QString::fromUtf8(sqlite3_errstr(code));
    }
}

bool liveOnly(const QString &relative)
{
    if (relative.contains(u'/'))
        return false;
    return relative.startsWith(u"trestle.sqlite"_s) || relative.endsWith(u".lock"_s);
}

StoreCopy::StoreCopy(const QString &databasePath)
    : m_path(databasePath)
{
    if (!QFile::exists(databasePath)) {
        m_error = u"the file is missing"_s;
        return;
    }
    // Read-only: taking a copy must never change the store it copies.
    int rc =
        sqlite3_open_v2(QFile::encodeName(databasePath).constData(), &m_db, SQLITE_OPEN_READONLY, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_busy_timeout(m_db, 5000);
        rc = sqlite3_exec(m_db, "BEGIN", nullptr, nullptr, nullptr);
    }
    // The first read starts the transaction that holds the moment.
    if (rc == SQLITE_OK)
        rc = sqlite3_exec(m_db, "SELECT count(*) FROM sqlite_schema", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
        m_error = sqliteCause(m_db ? sqlite3_extended_errcode(m_db) : rc);
}

StoreCopy::~StoreCopy()
{
    if (m_db) {
        sqlite3_exec(m_db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(m_db);
    }
}

QString StoreCopy::check()
{
    if (!m_error.isEmpty())
        return m_error;
    sqlite3_stmt *stmt = nullptr;
    int rc = sqlite3_prepare_v2(m_db, "PRAGMA quick_check", -1, &stmt, nullptr);
    QString verdict;
    while (rc == SQLITE_OK && (rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0));
        const QString report = text ? QString::fromUtf8(text) : QString();
        if (report != u"ok" && verdict.isEmpty()) {
            // The first finding is enough to say what is wrong.
            QString first;
            for (const QString &line : report.split(u'\n', Qt::SkipEmptyParts))
                if (!line.startsWith(u"***"_s)) {
                    first = line;
                    break;
                }
            verdict = u"the database is damaged ("_s + first.left(120) + u")"_s;
        }
        rc = SQLITE_OK;
    }
    if (rc != SQLITE_DONE && verdict.isEmpty())
        verdict = sqliteCause(sqlite3_extended_errcode(m_db));
    sqlite3_finalize(stmt);
    return verdict;
}

qint64 StoreCopy::records()
{
    if (!m_error.isEmpty())
        return -1;
    sqlite3_stmt *stmt = nullptr;
    qint64 n = -1;
    if (sqlite3_prepare_v2(m_db, "SELECT count(*) FROM recs", -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW)
        n = sqlite3_column_int64(stmt, 0);
    sqlite3_finalize(stmt);
    return n;
}

QString StoreCopy::copyTo(const QString &target)
{
    if (!m_error.isEmpty())
        return m_error;
    // The backup would copy over whatever database is there.
    if (QFile::exists(target))
        return u"the copy's place is taken"_s;
    const QByteArray file = QFile::encodeName(target);
    sqlite3 *out = nullptr;
    int rc = sqlite3_open_v2(file.constData(), &out, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    QString why;
    if (rc == SQLITE_OK) {
        sqlite3_backup *backup = sqlite3_backup_init(out, "main", m_db, "main");
        if (!backup) {
            why = sqliteCause(sqlite3_extended_errcode(out));
        } else {
            // All pages in one step, inside the read that pins the moment, so
            // writes elsewhere never make the copy start over.
            rc = sqlite3_backup_step(backup, -1);
            const int finish = sqlite3_backup_finish(backup);
            if (rc != SQLITE_DONE)
                why = sqliteCause(rc);
            else if (finish != SQLITE_OK)
                why = sqliteCause(finish);
        }
        // A copy is a file on its own: no log beside it, whole on disk.
        if (why.isEmpty()) {
            rc = sqlite3_exec(out, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
            if (rc != SQLITE_OK)
                why = sqliteCause(sqlite3_extended_errcode(out));
        }
    } else {
        why = sqliteCause(out ? sqlite3_extended_errcode(out) : rc);
    }
    if (sqlite3_close(out) != SQLITE_OK && why.isEmpty())
        why = u"the copy could not be closed"_s;
    if (!why.isEmpty()) {
        QFile::remove(target);
        QFile::remove(target + u"-journal"_s);
    }
    return why;
}
