#include "seatcache.h"

#include "merge.h"

#include "store/db.h"
#include "store/recjson.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// A statement of the cache's, prepared once and reset after each use: a
// first open applies hundreds of thousands of rows, and preparing each
// statement anew cost more than running it.
struct Stmt
{
    sqlite3_stmt *s = nullptr;
    bool owned = false; // a second use while the cached one still runs gets its own
    Stmt(SeatCache::Statements &cache, sqlite3 *db, const char *sql, const QList<QByteArray> &params)
    {
        auto it = cache.find(sql);
        if (it != cache.end() && !sqlite3_stmt_busy(it->second)) {
            s = it->second;
        } else if (sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr) == SQLITE_OK) {
            if (it == cache.end())
                cache.emplace(sql, s);
            else
                owned = true;
        } else {
            sqlite3_finalize(s);
            s = nullptr;
            return;
        }
        for (int k = 0; k < params.size(); ++k) {
            const QByteArray &p = params.at(k);
            if (p.isNull())
                sqlite3_bind_null(s, k + 1);
            else
                sqlite3_bind_text(s, k + 1, p.constData(), int(p.size()), SQLITE_TRANSIENT);
        }
    }
    ~Stmt()
    {
        if (owned) {
            sqlite3_finalize(s);
        } else if (s) {
            sqlite3_reset(s);
            sqlite3_clear_bindings(s);
        }
    }
    Stmt(const Stmt &) = delete;
    Stmt &operator=(const Stmt &) = delete;
    bool row() { return s && sqlite3_step(s) == SQLITE_ROW; }
    QString text(int c) const
    {
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(s, c)),
                                 sqlite3_column_bytes(s, c));
    }
    QByteArray bytes(int c) const
    {
        return QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(s, c)),
                          sqlite3_column_bytes(s, c));
    }
    qint64 number(int c) const { return sqlite3_column_int64(s, c); }
    bool isNull(int c) const { return sqlite3_column_type(s, c) == SQLITE_NULL; }
};

QByteArray num(qint64 n)
{
    return QByteArray::number(n);
}

QByteArray noticesJson(const QList<OutNotice> &notices)
{
    if (notices.isEmpty())
        return QByteArray();
    QJsonArray a;
    for (const OutNotice &n : notices)
        a.append(QJsonObject{
            {u"for"_s, n.forLogin}, {u"field"_s, n.field}, {u"replaced"_s, n.replaced}, {u"kept"_s, n.kept}});
    return QJsonDocument(a).toJson(QJsonDocument::Compact);
}

QList<OutNotice> noticesFrom(const QByteArray &json)
{
    QList<OutNotice> out;
    const QJsonArray a = QJsonDocument::fromJson(json).array();
    for (const QJsonValue &v : a) {
        const QJsonObject o = v.toObject();
        out.append({o.value(u"for").toString(), o.value(u"field").toString(), o.value(u"replaced").toString(),
                    o.value(u"kept").toString()});
    }
    return out;
}
} // namespace

SeatCache::SeatCache(DB &db)
    : m_db(db)
{
    m_ok =
        m_db.m_db && db.isOpen() &&
        exec("CREATE TABLE IF NOT EXISTS srv_meta (key TEXT PRIMARY KEY, value TEXT NOT NULL)") &&
        exec("CREATE TABLE IF NOT EXISTS srv_ver (id TEXT PRIMARY KEY, version INTEGER NOT NULL)") &&
        exec("CREATE TABLE IF NOT EXISTS srv_outbox (seq INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL "
             "UNIQUE, removed INTEGER NOT NULL, gen INTEGER NOT NULL, base_version INTEGER NOT NULL, "
             "base_json TEXT, force INTEGER NOT NULL DEFAULT 0, notices TEXT)") &&
        exec("CREATE TABLE IF NOT EXISTS srv_files (company TEXT NOT NULL, name TEXT NOT NULL, server_sha "
             "TEXT, "
             "local_sha TEXT, size INTEGER, mtime INTEGER, PRIMARY KEY (company, name))");
    if (m_ok)
        db.m_seat = this;
}

SeatCache::~SeatCache()
{
    finalizeStatements();
    if (m_db.m_seat == this)
        m_db.m_seat = nullptr;
}

void SeatCache::finalizeStatements()
{
    for (const auto &[sql, stmt] : m_stmts)
        sqlite3_finalize(stmt);
    m_stmts.clear();
}

bool SeatCache::exec(const char *sql, const QList<QByteArray> &params) const
{
    if (!m_db.m_db)
        return false;
    Stmt st(m_stmts, m_db.m_db, sql, params);
    if (!st.s)
        return false;
    const int rc = sqlite3_step(st.s);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) {
        m_db.m_lastCode = sqlite3_extended_errcode(m_db.m_db);
        return false;
    }
    return true;
}

QString SeatCache::meta(const QString &key) const
{
    Stmt st(m_stmts, m_db.m_db, "SELECT value FROM srv_meta WHERE key = ?", {key.toUtf8()});
    return st.row() ? st.text(0) : QString();
}

bool SeatCache::setMeta(const QString &key, const QString &value)
{
    return exec("INSERT OR REPLACE INTO srv_meta (key, value) VALUES (?, ?)", {key.toUtf8(), value.toUtf8()});
}

qint64 SeatCache::position() const
{
    return meta(u"position"_s).toLongLong();
}

bool SeatCache::noteChange(const QString &id, bool removed)
{
    // The first local change of a record keeps the server's version as its
    // base: until then the file holds exactly what the server sent.
    return exec(
        "INSERT INTO srv_outbox (id, removed, gen, base_version, base_json) VALUES (?1, ?2, 1, "
        "COALESCE((SELECT version FROM srv_ver WHERE id = ?1), 0), (SELECT json FROM recs WHERE id = ?1)) "
        "ON CONFLICT(id) DO UPDATE SET removed = excluded.removed, gen = gen + 1",
        {id.toUtf8(), removed ? "1" : "0"});
}

QList<OutItem> SeatCache::pending(int limit) const
{
    QList<OutItem> out;
    Stmt st(m_stmts, m_db.m_db,
            "SELECT seq, id, removed, gen, base_version, force, notices FROM srv_outbox ORDER BY seq LIMIT ?",
            {num(limit)});
    while (st.row()) {
        OutItem item;
        item.seq = st.number(0);
        item.id = st.text(1);
        item.removed = st.number(2) != 0;
        item.gen = st.number(3);
        item.baseVersion = st.number(4);
        item.force = st.number(5) != 0;
        item.notices = noticesFrom(st.bytes(6));
        if (!item.removed) {
            const Rec *r = m_db.find(item.id);
            if (r)
                item.rec = *r;
            else
                item.removed = true;
        }
        out.append(item);
    }
    return out;
}

qsizetype SeatCache::waiting() const
{
    Stmt st(m_stmts, m_db.m_db, "SELECT count(*) FROM srv_outbox", {});
    return st.row() ? qsizetype(st.number(0)) : 0;
}

std::optional<SeatCache::Outbox> SeatCache::outbox(const QString &id) const
{
    Stmt st(m_stmts, m_db.m_db,
            "SELECT removed, gen, base_version, base_json, notices FROM srv_outbox WHERE id = ?",
            {id.toUtf8()});
    if (!st.row())
        return std::nullopt;
    Outbox o;
    o.removed = st.number(0) != 0;
    o.gen = st.number(1);
    o.baseVersion = st.number(2);
    if (!st.isNull(3))
        o.base = RecJSON::decode(st.bytes(3));
    o.notices = noticesFrom(st.bytes(4));
    return o;
}

qint64 SeatCache::knownVersion(const QString &id) const
{
    Stmt st(m_stmts, m_db.m_db, "SELECT version FROM srv_ver WHERE id = ?", {id.toUtf8()});
    return st.row() ? st.number(0) : -1;
}

bool SeatCache::setVersion(const QString &id, qint64 version)
{
    return exec("INSERT OR REPLACE INTO srv_ver (id, version) VALUES (?, ?)", {id.toUtf8(), num(version)});
}

bool SeatCache::putLocal(const Rec &rec)
{
    const QByteArray json = RecJSON::encode(rec);
    if (!exec("INSERT OR REPLACE INTO recs (id, company, kind, project, parent, json) VALUES (?,?,?,?,?,?)",
              {rec.id.toUtf8(), rec.company.toUtf8(), rec.kind.toUtf8(), rec.project.toUtf8(),
               rec.parent.toUtf8(), json}))
        return false;
    m_drops.removeAll(rec.id);
    m_puts.append(rec);
    return true;
}

bool SeatCache::removeLocal(const QString &id)
{
    if (!exec("DELETE FROM recs WHERE id = ?", {id.toUtf8()}))
        return false;
    m_drops.append(id);
    return true;
}

bool SeatCache::dropOutbox(const QString &id)
{
    return exec("DELETE FROM srv_outbox WHERE id = ?", {id.toUtf8()});
}

bool SeatCache::rebase(const QString &id, qint64 version, const Rec &base, const QList<OutNotice> &notices,
                       bool bumpGen)
{
    return exec(
        bumpGen
            ? "UPDATE srv_outbox SET base_version = ?, base_json = ?, notices = ?, force = 0, gen = gen + 1 "
              "WHERE id = ?"
            : "UPDATE srv_outbox SET base_version = ?, base_json = ?, notices = ?, force = 0 WHERE id = ?",
        {num(version), RecJSON::encode(base), noticesJson(notices), id.toUtf8()});
}

bool SeatCache::takeRow(const ServerRow &row, const std::optional<Rec> &sentBase)
{
    const QString &id = row.rec.id;
    if (row.version <= knownVersion(id) && !sentBase)
        return true; // seen already (this seat's own change coming back, or a repeat)
    const std::optional<Outbox> mine = outbox(id);
    const Rec *local = m_db.find(id);
    bool ok = setVersion(id, row.version);
    if (!mine) {
        if (row.deleted)
            return ok && (!local || removeLocal(id));
        return ok && putLocal(row.rec);
    }
    auto notice = [&](SeatNotice::Kind kind) {
        SeatNotice n;
        n.kind = kind;
        n.recId = id;
        n.by = row.changedBy;
        n.at = row.changedAt;
        if (local)
            n.copy = *local;
        m_notices.append(n);
    };
    if (row.deleted) {
        // Removed on another seat: a change made here is not brought back in silence.
        if (!mine->removed)
            notice(SeatNotice::RemovedElsewhere);
        return ok && dropOutbox(id) && (!local || removeLocal(id));
    }
    if (mine->removed || !local) {
        // Changed on another seat after this one removed it: it stays, and the person here is told.
        notice(SeatNotice::KeptAfterRemove);
        return ok && dropOutbox(id) && putLocal(row.rec);
    }
    const std::optional<Rec> base = sentBase ? sentBase : mine->base;
    const Merge::Result merged = Merge::threeWay(base, *local, row.rec);
    QList<OutNotice> notices = mine->notices;
    for (const Merge::Clash &c : merged.clashes)
        notices.append({row.changedBy, c.key, c.replaced, c.kept});
    ok = ok && rebase(id, row.version, row.rec, notices, false);
    if (merged.rec == *local)
        return ok;
    return ok && putLocal(merged.rec);
}

bool SeatCache::commitToMemory(bool ok)
{
    ok = ok && exec("COMMIT");
    if (!ok) {
        if (!sqlite3_get_autocommit(m_db.m_db))
            sqlite3_exec(m_db.m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        m_puts.clear();
        m_drops.clear();
        return false;
    }
    if (m_puts.isEmpty() && m_drops.isEmpty())
        return true;
    for (const Rec &rec : std::as_const(m_puts)) {
        if (const Rec *old = m_db.find(rec.id))
            m_db.stamp(*old);
        m_db.put(rec);
        m_db.stamp(rec);
    }
    for (const QString &id : std::as_const(m_drops)) {
        auto it = m_db.m_recs.find(id);
        if (it == m_db.m_recs.end())
            continue;
        m_db.stamp(it->second.rec);
        const QString file = it->second.rec.f.value(u"file");
        if (!file.isEmpty())
            QFile::remove(m_db.storedPath(file, it->second.rec.company));
        m_db.m_index.remove(&it->second);
        m_db.m_recs.erase(it);
    }
    m_puts.clear();
    m_drops.clear();
    ++m_db.m_revision;
    Q_EMIT m_db.changed();
    return true;
}

bool SeatCache::applyRemote(const QList<ServerRow> &rows, qint64 newPos)
{
    if (!exec("BEGIN"))
        return false;
    const qsizetype notices = m_notices.size();
    bool ok = true;
    for (const ServerRow &row : rows)
        if (!(ok = takeRow(row, std::nullopt)))
            break;
    ok = ok && (newPos <= position() || setMeta(u"position"_s, QString::number(newPos)));
    if (!commitToMemory(ok)) {
        m_notices.resize(notices);
        return false;
    }
    return true;
}

bool SeatCache::takeResults(const QList<SendResult> &results)
{
    if (!exec("BEGIN"))
        return false;
    const qsizetype notices = m_notices.size();
    bool ok = true;
    for (const SendResult &r : results) {
        const OutItem &item = r.item;
        const std::optional<Outbox> now = outbox(item.id);
        switch (r.status) {
        case SendResult::Accepted: {
            ok = setVersion(item.id, r.row.version);
            if (now && now->gen == item.gen) {
                ok = ok && dropOutbox(item.id);
            } else if (now) {
                // Changed again while on its way: the next send goes over what the server now has.
                ok = ok &&
                     rebase(item.id, r.row.version, item.rec, now->notices.mid(item.notices.size()), false);
            }
            if (ok && !item.removed && r.row.rec.f != item.rec.f) {
                // The server gave the record another number, or kept fields this seat's role cannot change.
                ok = takeRow(r.row, item.rec);
                if (r.row.rec.f.value(u"number") != item.rec.f.value(u"number")) {
                    SeatNotice n;
                    n.kind = SeatNotice::Renumbered;
                    n.recId = item.id;
                    n.field = u"number"_s;
                    n.mine = item.rec.f.value(u"number");
                    n.theirs = r.row.rec.f.value(u"number");
                    m_notices.append(n);
                }
            }
            break;
        }
        case SendResult::Conflict: ok = takeRow(r.row, std::nullopt); break;
        case SendResult::Refused: {
            SeatNotice n;
            n.kind = SeatNotice::Refused;
            n.recId = item.id;
            n.message = r.message;
            if (const Rec *local = m_db.find(item.id))
                n.copy = *local;
            m_notices.append(n);
            ok = dropOutbox(item.id);
            if (ok && r.row.version > 0 && !r.row.deleted)
                ok = setVersion(item.id, r.row.version) && putLocal(r.row.rec);
            else if (ok && m_db.find(item.id))
                ok = removeLocal(item.id);
            break;
        }
        }
        if (!ok)
            break;
    }
    if (!commitToMemory(ok)) {
        m_notices.resize(notices);
        return false;
    }
    return true;
}

bool SeatCache::reset()
{
    if (waiting() > 0 || !exec("BEGIN"))
        return false;
    const bool ok = exec("DELETE FROM recs") && exec("DELETE FROM srv_ver") &&
                    exec("UPDATE srv_files SET server_sha = NULL") &&
                    exec("DELETE FROM srv_meta WHERE key IN ('position', 'notice_id')");
    m_db.forEach([&](const Rec &r) { m_drops.append(r.id); });
    if (!commitToMemory(ok))
        return false;
    return true;
}

void SeatCache::touch()
{
    ++m_db.m_revision;
    Q_EMIT m_db.changed();
}

bool SeatCache::forcePut(const QString &id)
{
    return exec("UPDATE srv_outbox SET force = 1 WHERE id = ?", {id.toUtf8()});
}

QList<SeatNotice> SeatCache::takeNotices()
{
    return std::exchange(m_notices, {});
}

QHash<QString, SeatCache::FileState> SeatCache::files() const
{
    QHash<QString, FileState> out;
    Stmt st(m_stmts, m_db.m_db, "SELECT company, name, server_sha, local_sha, size, mtime FROM srv_files",
            {});
    while (st.row()) {
        FileState f;
        f.serverSha = st.text(2);
        f.localSha = st.text(3);
        f.size = st.isNull(4) ? -1 : st.number(4);
        f.mtime = st.isNull(5) ? -1 : st.number(5);
        out.insert(st.text(0) + u'/' + st.text(1), f);
    }
    return out;
}

bool SeatCache::setServerFile(const QString &company, const QString &name, const QString &sha)
{
    return exec(
        "INSERT INTO srv_files (company, name, server_sha) VALUES (?1, ?2, ?3) ON CONFLICT(company, name) "
        "DO UPDATE SET server_sha = excluded.server_sha",
        {company.toUtf8(), name.toUtf8(), sha.toUtf8()});
}

bool SeatCache::setLocalFile(const QString &company, const QString &name, const QString &sha, qint64 size,
                             qint64 mtime)
{
    return exec(
        "INSERT INTO srv_files (company, name, local_sha, size, mtime) VALUES (?1, ?2, ?3, ?4, ?5) "
        "ON CONFLICT(company, name) DO UPDATE SET local_sha = excluded.local_sha, size = excluded.size, "
        "mtime = excluded.mtime",
        {company.toUtf8(), name.toUtf8(), sha.toUtf8(), num(size), num(mtime)});
}
