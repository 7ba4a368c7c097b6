#include "db.h"

#include "server/seatcache.h"
#include "server/serverlink.h"
#include "settings.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>

#include <sqlite3.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
const QString kCompanyKey = u"tl.company"_s;
const QString kUserKey = u"tl.user"_s;
} // namespace

DB::DB(const std::optional<QString> &path, QObject *parent)
    : QObject(parent)
    , m_retry(new QTimer(this))
{
    m_inMemory = !path.has_value();
    if (m_inMemory) {
        m_filesRoot = QDir(QDir::tempPath()).filePath(u"tl-test-files-"_s + newID());
    } else {
        m_filesRoot = QFileInfo(*path).absoluteDir().filePath(u"files"_s);
        m_companyID = Settings::text(kCompanyKey);
        m_userID = Settings::text(kUserKey);
        m_path = QFileInfo(*path).absoluteFilePath();
    }
    // Waiting changes are tried again a moment later, whether or not the user writes again.
    m_retry->setSingleShot(true);
    m_retry->setInterval(2000);
    connect(m_retry, &QTimer::timeout, this, [this] { retryUnsaved(); });
    if (m_inMemory) {
        sqlite3_open(":memory:", &m_db);
        sqlite3_extended_result_codes(m_db, 1);
        exec("CREATE TABLE IF NOT EXISTS recs (id TEXT PRIMARY KEY, company TEXT, kind TEXT, project TEXT, "
             "parent TEXT, json TEXT NOT NULL)");
        exec("CREATE INDEX IF NOT EXISTS recs_kind ON recs(company, kind)");
    } else if (!openFile(m_path)) {
        // The user's choice of company stays as it was for when the data comes back.
        return;
    }
    if (!load())
        return;
    repairSelection();
}

bool DB::refuse(OpenState state, const QString &problem)
{
    m_openState = state;
    m_openProblem = problem;
    m_lastCode = SQLITE_CANTOPEN;
    closeConnection();
    m_recs.clear();
    m_index.clear();
    return false;
}

bool DB::openFile(const QString &path)
{
    const QString shown = QDir::toNativeSeparators(path);
    const QFileInfo info(path);
    const bool exists = info.exists();
    if (exists && !info.isReadable())
        return refuse(OpenState::Unopenable, u"Trestle has no permission to read "_s + shown + u'.');
    // A file the user marked read-only is only read, even by a user the system would let write it.
    const auto anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    const bool markedReadOnly = exists && (!(info.permissions() & anyWrite) || !info.isWritable());
    const int flags = markedReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK) {
        const QString why =
            QFileInfo(info.absolutePath()).isDir() ? plainCause(rc) : u"its folder does not exist"_s;
        return refuse(OpenState::Unopenable, u"Trestle could not open "_s + shown + u": "_s + why + u'.');
    }
    sqlite3_extended_result_codes(m_db, 1);
    // Until the file has passed its check, closing must not fold a write-ahead log into it.
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    // Another program reading the file at the same moment is waited for.
    sqlite3_busy_timeout(m_db, 5000);
    auto unreadable = [&](int code) {
        const int primary = code & 0xff;
        if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_FORMAT)
            return refuse(OpenState::Damaged, shown + u" is damaged: it cannot be read as Trestle data."_s);
        return refuse(OpenState::Unopenable,
                      u"Trestle could not read "_s + shown + u": "_s + plainCause(code) + u'.');
    };
    if (exists && info.size() > 0) {
        sqlite3_stmt *check = nullptr;
        rc = sqlite3_prepare_v2(m_db, "PRAGMA quick_check", -1, &check, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_finalize(check);
            return unreadable(rc);
        }
        rc = sqlite3_step(check);
        const auto *first = reinterpret_cast<const char *>(sqlite3_column_text(check, 0));
        const bool ok = rc == SQLITE_ROW && first && qstrcmp(first, "ok") == 0;
        sqlite3_finalize(check);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            return unreadable(rc);
        if (!ok)
            return refuse(OpenState::Damaged, shown + u" is damaged: its own check found broken pages."_s);
    }
    if (const qint64 pages = qEnvironmentVariable("TRESTLE_MAX_PAGES").toLongLong(); pages > 0)
        setPageLimit(pages);
    exec("PRAGMA journal_mode=WAL");
    rc = exec("CREATE TABLE IF NOT EXISTS recs (id TEXT PRIMARY KEY, company TEXT, kind TEXT, project TEXT, "
              "parent TEXT, json TEXT NOT NULL)");
    if (rc != SQLITE_OK)
        return unreadable(rc);
    exec("CREATE INDEX IF NOT EXISTS recs_kind ON recs(company, kind)");
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    return true;
}

bool DB::readOnly() const
{
    return m_db && sqlite3_db_readonly(m_db, "main") == 1;
}

void DB::setPageLimit(qint64 pages)
{
    if (!m_db)
        return;
    const QByteArray sql = "PRAGMA max_page_count=" + QByteArray::number(pages > 0 ? pages : 4294967294LL);
    exec(sql.constData());
}

DB::~DB()
{
    closeConnection();
    if (m_inMemory)
        QDir(m_filesRoot).removeRecursively();
}

namespace {
DB *sharedStore = nullptr;
}

DB &DB::shared()
{
    // Never destroyed: freeing years of records would only slow down every
    // quit. The connection is closed at exit so the WAL is folded back in.
    static DB *instance = [] {
        // A folder that works on a company server opens the server's cache instead of its own records.
        const bool server = ServerLink::isConnected();
        auto *db = new DB(server ? ServerLink::cachePath() : QDir(appFolder()).filePath(u"trestle.sqlite"_s));
        sharedStore = db;
        if (server)
            ServerLink::attach(*db);
        std::atexit([] { sharedStore->closeConnection(); });
        if (openedHook())
            openedHook()(*db);
        return db;
    }();
    return *instance;
}

DB *DB::sharedIfOpened()
{
    return sharedStore;
}

std::function<void(DB &)> &DB::openedHook()
{
    static std::function<void(DB &)> hook;
    return hook;
}

QString DB::appFolder()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        qFatal("Trestle stopped: this system reports no folder for application data.");
    const QString folder = QDir(base).filePath(u"Fenwright/Trestle"_s);
    if (!QFileInfo::exists(folder)) {
        QDir().mkpath(folder);
        // The books of a company are nobody else's business.
        const auto privateDir = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        QFile::setPermissions(folder, privateDir);
        QFile::setPermissions(QFileInfo(folder).absolutePath(), privateDir);
    }
    return folder;
}

void DB::closeConnection()
{
    if (m_seat)
        m_seat->finalizeStatements();
    sqlite3_finalize(m_insert);
    m_insert = nullptr;
    sqlite3_finalize(m_delete);
    m_delete = nullptr;
    // A statement another part still holds closes the file when it is finalized.
    sqlite3_close_v2(m_db);
    m_db = nullptr;
}

void DB::checkpoint()
{
    if (m_db)
        exec("PRAGMA wal_checkpoint(TRUNCATE)");
}

int DB::exec(const char *sql)
{
    if (!m_db)
        return SQLITE_MISUSE;
    const int rc = sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK)
        m_lastCode = sqlite3_extended_errcode(m_db);
    return rc;
}

bool DB::load()
{
    std::unordered_map<QString, StoredRec> map;
    // Shares repeated texts while loading; dropped afterwards, since the texts
    // themselves stay shared between the records that hold them.
    StringPool pool;
    sqlite3_stmt *stmt = nullptr;
    if (sqlite3_prepare_v2(m_db, "SELECT count(*) FROM recs", -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
        const qint64 rows = sqlite3_column_int64(stmt, 0);
        map.reserve(size_t(rows));
        pool.reserve(qsizetype(rows / 4));
    }
    sqlite3_finalize(stmt);
    stmt = nullptr;
    int rc = sqlite3_prepare_v2(m_db, "SELECT json FROM recs", -1, &stmt, nullptr);
    if (rc == SQLITE_OK) {
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0));
            if (!text)
                continue;
            const int bytes = sqlite3_column_bytes(stmt, 0);
            // A row that does not decode is left in the table untouched.
            if (auto rec = RecJSON::decode(QByteArrayView(text, bytes), &pool)) {
                const QString id = rec->id;
                StoredRec stored{std::move(*rec)};
                readSortKey(stored);
                map.insert_or_assign(id, std::move(stored));
            }
        }
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE && !m_inMemory) {
        // Half a store is no store: showing it would invite edits on top of missing records.
        const int primary = rc & 0xff;
        const QString shown = QDir::toNativeSeparators(m_path);
        if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR)
            return refuse(OpenState::Damaged, shown + u" is damaged: its records cannot be read."_s);
        return refuse(OpenState::Unopenable,
                      u"Trestle could not read "_s + shown + u": "_s + plainCause(rc) + u'.');
    }
    m_recs = std::move(map);
    m_index.clear();
    for (const auto &[id, stored] : m_recs)
        m_index.add(&stored);
    m_projectStamps.clear();
    m_sharedStamp = ++m_revision;
    Q_EMIT changed();
    return true;
}

bool DB::write(const Rec &rec)
{
    if (!m_db) {
        m_lastCode = SQLITE_CANTOPEN;
        return false;
    }
    if (m_seat && !m_seat->noteChange(rec.id, false))
        return false;
    const QByteArray json = RecJSON::encode(rec);
    if (!m_insert &&
        sqlite3_prepare_v3(m_db,
                           "INSERT OR REPLACE INTO recs (id, company, kind, project, parent, json) "
                           "VALUES (?,?,?,?,?,?)",
                           -1, SQLITE_PREPARE_PERSISTENT, &m_insert, nullptr) != SQLITE_OK) {
        m_lastCode = sqlite3_extended_errcode(m_db);
        sqlite3_finalize(m_insert);
        m_insert = nullptr;
        return false;
    }
    const QByteArray cols[5] = {rec.id.toUtf8(), rec.company.toUtf8(), rec.kind.toUtf8(),
                                rec.project.toUtf8(), rec.parent.toUtf8()};
    for (int k = 0; k < 5; ++k)
        sqlite3_bind_text(m_insert, k + 1, cols[k].constData(), int(cols[k].size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(m_insert, 6, json.constData(), int(json.size()), SQLITE_TRANSIENT);
    const int rc = sqlite3_step(m_insert);
    if (rc != SQLITE_DONE)
        m_lastCode = sqlite3_extended_errcode(m_db);
    sqlite3_reset(m_insert);
    sqlite3_clear_bindings(m_insert);
    return rc == SQLITE_DONE;
}

bool DB::removeRow(const QString &id)
{
    if (!m_db) {
        m_lastCode = SQLITE_CANTOPEN;
        return false;
    }
    if (!m_delete && sqlite3_prepare_v3(m_db, "DELETE FROM recs WHERE id = ?", -1, SQLITE_PREPARE_PERSISTENT,
                                        &m_delete, nullptr) != SQLITE_OK) {
        m_lastCode = sqlite3_extended_errcode(m_db);
        sqlite3_finalize(m_delete);
        m_delete = nullptr;
        return false;
    }
    if (m_seat && !m_seat->noteChange(id, true))
        return false;
    const QByteArray rid = id.toUtf8();
    sqlite3_bind_text(m_delete, 1, rid.constData(), int(rid.size()), SQLITE_TRANSIENT);
    const int rc = sqlite3_step(m_delete);
    if (rc != SQLITE_DONE)
        m_lastCode = sqlite3_extended_errcode(m_db);
    sqlite3_reset(m_delete);
    return rc == SQLITE_DONE;
}

bool DB::writeBatch(const std::function<bool()> &body)
{
    if (!m_db) {
        m_lastCode = SQLITE_CANTOPEN;
        return false;
    }
    if (exec("BEGIN") != SQLITE_OK)
        return false;
    if (body() && exec("COMMIT") == SQLITE_OK)
        return true;
    // SQLite may have rolled the whole transaction back already; if not, the
    // batch is undone here so that it is written whole or not at all.
    if (!sqlite3_get_autocommit(m_db))
        sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
    return false;
}

void DB::markUnsaved(const QStringList &ids)
{
    for (const QString &id : ids)
        if (!m_unsaved.contains(id)) {
            m_unsaved.insert(id);
            m_unsavedOrder.append(id);
        }
    m_cause = m_openState == OpenState::Ok ? plainCause(m_lastCode) : m_openProblem;
    m_retry->start();
    Q_EMIT writeFailed(m_cause);
    Q_EMIT unsavedChanged();
}

bool DB::retryUnsaved()
{
    if (m_unsavedOrder.isEmpty())
        return true;
    const bool ok = writeBatch([this] {
        for (const QString &id : std::as_const(m_unsavedOrder)) {
            const Rec *rec = find(id);
            if (!(rec ? write(*rec) : removeRow(id)))
                return false;
        }
        return true;
    });
    if (!ok) {
        const QString cause = m_openState == OpenState::Ok ? plainCause(m_lastCode) : m_openProblem;
        m_retry->start();
        if (cause != m_cause) {
            m_cause = cause;
            Q_EMIT unsavedChanged();
        }
        return false;
    }
    m_unsavedOrder.clear();
    m_unsaved.clear();
    m_cause.clear();
    m_retry->stop();
    Q_EMIT unsavedChanged();
    return true;
}

bool DB::saveUnsavedTo(const QString &file, QString *error) const
{
    QJsonArray records;
    QJsonArray removed;
    for (const QString &id : m_unsavedOrder) {
        if (const Rec *rec = find(id))
            records.append(QJsonDocument::fromJson(RecJSON::encode(*rec)).object());
        else
            removed.append(id);
    }
    QJsonObject top;
    top.insert(u"trestleUnsaved"_s, 1);
    top.insert(u"store"_s, m_path);
    top.insert(u"savedAt"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    top.insert(u"cause"_s, m_cause);
    top.insert(u"records"_s, records);
    top.insert(u"removed"_s, removed);
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(QJsonDocument(top).toJson()) < 0 || !out.commit()) {
        if (error)
            *error = out.errorString();
        return false;
    }
    return true;
}

void DB::readSortKey(StoredRec &stored)
{
    const QString text = stored.rec.f.value(u"sort");
    stored.sortBad = false;
    if (text.isEmpty()) {
        stored.sort = 0;
    } else if (auto v = RecText::parseInt(text)) {
        stored.sort = *v;
    } else {
        const double d = RecText::parseDouble(text).value_or(0.0);
        stored.sortBad = !(std::isfinite(d) && d < 9223372036854775808.0 && d >= -9223372036854775808.0);
        stored.sort = stored.sortBad ? 0 : static_cast<qint64>(d);
    }
}

void DB::stamp(const Rec &rec)
{
    // Stamped with the revision the pending change is about to get.
    const quint64 next = m_revision + 1;
    if (rec.kind == u"project")
        m_projectStamps.insert(rec.id, next);
    else if (rec.project.isEmpty())
        m_sharedStamp = next;
    // A record also counts for the projects of the records it hangs from, as
    // it is read through them; the depth cap stops a loop of parents.
    const Rec *r = &rec;
    for (int depth = 0; r && depth < 32; ++depth) {
        if (!r->project.isEmpty())
            m_projectStamps.insert(r->project, next);
        r = find(r->parent);
    }
}

void DB::put(const Rec &rec)
{
    auto it = m_recs.find(rec.id);
    if (it == m_recs.end()) {
        it = m_recs.emplace(rec.id, StoredRec{rec}).first;
    } else {
        m_index.remove(&it->second);
        it->second.rec = rec;
    }
    StoredRec &stored = it->second;
    // Share the texts that many records repeat.
    stored.rec.kind = m_pool.intern(stored.rec.kind);
    stored.rec.company = m_pool.intern(stored.rec.company);
    stored.rec.project = m_pool.intern(stored.rec.project);
    stored.rec.parent = m_pool.intern(stored.rec.parent);
    readSortKey(stored);
    m_index.add(&stored);
}

std::optional<Rec> DB::get(const QString &id) const
{
    if (const Rec *r = find(id))
        return *r;
    return std::nullopt;
}

const Rec *DB::find(const QString &id) const
{
    if (id.isEmpty())
        return nullptr;
    auto it = m_recs.find(id);
    return it == m_recs.end() ? nullptr : &it->second.rec;
}

template<class Fn> void DB::eachMatch(const QString &kind, const RecFilter &filter, Fn &&fn) const
{
    const QString &company = filter.company ? *filter.company : m_companyID;
    const QString *project = filter.project ? &*filter.project : nullptr;
    const QString *parent = filter.parent ? &*filter.parent : nullptr;
    const RecIndex::Bucket *bucket = m_index.candidates(kind, company, project, parent);
    if (!bucket)
        return;
    const bool anyCompany = kind == u"company";
    for (const StoredRec *s : *bucket) {
        const Rec *r = &s->rec;
        if (r->kind != kind)
            continue;
        if (!anyCompany && r->company != company)
            continue;
        if (project && r->project != *project)
            continue;
        if (parent && r->parent != *parent)
            continue;
        fn(s);
    }
}

std::vector<const Rec *> DB::sorted(const QString &kind, const RecFilter &filter) const
{
    struct Key
    {
        qint64 sort;
        double created;
        const Rec *rec;
    };
    std::vector<Key> keys;
    eachMatch(kind, filter, [&](const StoredRec *s) {
        if (s->sortBad)
            (void)s->rec.i(u"sort"); // stops the program with the reason
        keys.push_back({s->sort, s->rec.created, &s->rec});
    });
    // Equal sort and created fall back to the id, so the order never flickers.
    std::sort(keys.begin(), keys.end(), [](const Key &a, const Key &b) {
        if (a.sort != b.sort)
            return a.sort < b.sort;
        if (a.created != b.created)
            return a.created < b.created;
        return a.rec->id < b.rec->id;
    });
    std::vector<const Rec *> out;
    out.reserve(keys.size());
    for (const Key &k : keys)
        out.push_back(k.rec);
    return out;
}

QList<Rec> DB::list(const QString &kind, const RecFilter &filter) const
{
    const std::vector<const Rec *> recs = sorted(kind, filter);
    QList<Rec> out;
    out.reserve(qsizetype(recs.size()));
    for (const Rec *r : recs)
        out.append(*r);
    return out;
}

void DB::visit(const QString &kind, const RecFilter &filter, const std::function<void(const Rec &)> &fn) const
{
    for (const Rec *r : sorted(kind, filter))
        fn(*r);
}

bool DB::ListKey::before(const ListKey &o) const
{
    if (sort != o.sort)
        return sort < o.sort;
    if (rec->created != o.rec->created)
        return rec->created < o.rec->created;
    return rec->id < o.rec->id;
}

void DB::visitUnordered(const QString &kind, const RecFilter &filter,
                        const std::function<void(const Rec &, const ListKey &)> &fn) const
{
    eachMatch(kind, filter, [&](const StoredRec *s) {
        if (s->sortBad)
            (void)s->rec.i(u"sort"); // stops the program with the reason, as list() does
        fn(s->rec, ListKey{s->sort, &s->rec});
    });
}

qsizetype DB::count(const QString &kind, const RecFilter &filter) const
{
    qsizetype n = 0;
    eachMatch(kind, filter, [&](const StoredRec *) { ++n; });
    return n;
}

void DB::save(const Rec &rec)
{
    Rec copy = rec;
    copy.updated = nowSeconds();
    if (const Rec *old = find(copy.id))
        stamp(*old);
    put(copy);
    stamp(copy);
    // Earlier changes that wait go first, so the disk never holds a newer state before an older one.
    if ((!m_unsavedOrder.isEmpty() && !retryUnsaved()) || !write(copy))
        markUnsaved({copy.id});
    ++m_revision;
    Q_EMIT changed();
}

void DB::saveAll(const QList<Rec> &recs)
{
    saveAndRemove(recs, {});
}

Rec DB::add(const QString &kind, const QString &project, const QString &parent, const Fields &fields,
            const std::optional<QString> &company)
{
    Rec rec;
    rec.id = newID();
    rec.created = nowSeconds();
    rec.updated = nowSeconds();
    rec.kind = kind;
    rec.company = company.value_or(m_companyID);
    rec.project = project;
    rec.parent = parent;
    rec.f = fields;
    if (kind == u"company")
        rec.company = rec.id;
    save(rec);
    return rec;
}

void DB::remove(const QString &id)
{
    if (!id.isEmpty() && m_recs.contains(id))
        saveAndRemove({}, {id});
}

void DB::saveAndRemove(const QList<Rec> &recs, const QStringList &removals)
{
    QStringList ids;
    ids.reserve(recs.size());
    QList<Rec> copies;
    copies.reserve(recs.size());
    for (const Rec &rec : recs) {
        Rec copy = rec;
        copy.updated = nowSeconds();
        if (const Rec *old = find(copy.id))
            stamp(*old);
        put(copy);
        stamp(copy);
        ids.append(copy.id);
        copies.append(std::move(copy));
    }
    // Everything that hangs from a removed record: children at any depth by
    // parent, and for a project or a company everything that names it.
    QSet<const StoredRec *> doomed;
    QList<const StoredRec *> queue;
    auto doom = [&](const StoredRec *r) {
        if (!doomed.contains(r)) {
            doomed.insert(r);
            queue.append(r);
        }
    };
    auto addAll = [&](const RecIndex::Bucket *bucket) {
        if (bucket)
            for (const StoredRec *r : *bucket)
                doom(r);
    };
    QStringList companies; // removed companies, whose folders go too
    for (const QString &id : removals) {
        auto it = m_recs.find(id);
        if (id.isEmpty() || it == m_recs.end())
            continue;
        doom(&it->second);
        const Rec &top = it->second.rec;
        if (top.kind == u"project")
            for (const RecIndex::Bucket *b : m_index.byProject(id))
                addAll(b);
        if (top.kind == u"company") {
            companies.append(id);
            for (const RecIndex::Bucket *b : m_index.byCompany(id))
                addAll(b);
        }
    }
    for (qsizetype k = 0; k < queue.size(); ++k)
        addAll(m_index.byParent(queue.at(k)->rec.id));

    QStringList gone;
    for (const StoredRec *s : std::as_const(doomed)) {
        gone.append(s->rec.id);
        stamp(s->rec);
    }
    const bool ok = (m_unsavedOrder.isEmpty() || retryUnsaved()) && writeBatch([&] {
                        for (const Rec &copy : std::as_const(copies))
                            if (!doomed.contains(&m_recs.at(copy.id)) && !write(copy))
                                return false;
                        for (const QString &rid : std::as_const(gone))
                            if (!removeRow(rid))
                                return false;
                        return true;
                    });
    // The files go only once their records are gone from the disk, so a
    // removal that waits can never leave a stored record without its file.
    if (ok)
        for (const StoredRec *s : std::as_const(doomed)) {
            const QString file = s->rec.f.value(u"file");
            if (!file.isEmpty())
                QFile::remove(storedPath(file, s->rec.company));
        }
    for (const QString &rid : std::as_const(gone)) {
        auto it = m_recs.find(rid);
        m_index.remove(&it->second);
        m_recs.erase(it);
    }
    if (!ok)
        markUnsaved(ids + gone);
    ++m_revision;
    Q_EMIT changed();

    for (const QString &id : std::as_const(companies)) {
        if (ok)
            QDir(QDir(m_filesRoot).filePath(id)).removeRecursively();
        if (m_companyID == id) {
            const QList<Rec> rest = list(u"company"_s);
            setCompanyID(rest.isEmpty() ? QString() : rest.first().id);
        }
    }
}

void DB::forEach(const std::function<void(const Rec &)> &fn) const
{
    for (const auto &[id, stored] : m_recs)
        fn(stored.rec);
}
