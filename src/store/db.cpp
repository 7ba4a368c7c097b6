#include "db.h"

#include "settings.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <sqlite3.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
const QString kCompanyKey = u"tl.company"_s;
const QString kUserKey = u"tl.user"_s;
} // namespace

DB::DB(const std::optional<QString> &path, QObject *parent)
    : QObject(parent)
{
    m_inMemory = !path.has_value();
    if (m_inMemory) {
        m_filesRoot = QDir(QDir::tempPath()).filePath(u"tl-test-files-"_s + newID());
    } else {
        m_filesRoot = QFileInfo(*path).absoluteDir().filePath(u"files"_s);
        m_companyID = Settings::text(kCompanyKey);
        m_userID = Settings::text(kUserKey);
    }
    const QByteArray file = m_inMemory ? QByteArray(":memory:") : QFile::encodeName(*path);
    sqlite3_open(file.constData(), &m_db);
    // Another copy of the program writing at the same moment waits its turn
    // instead of failing the write.
    sqlite3_busy_timeout(m_db, 5000);
    exec("PRAGMA journal_mode=WAL");
    exec("CREATE TABLE IF NOT EXISTS recs (id TEXT PRIMARY KEY, company TEXT, kind TEXT, project TEXT, "
         "parent TEXT, json TEXT NOT NULL)");
    exec("CREATE INDEX IF NOT EXISTS recs_kind ON recs(company, kind)");
    load();
    repairSelection();
}

DB::~DB()
{
    closeConnection();
    if (m_inMemory)
        QDir(m_filesRoot).removeRecursively();
}

DB &DB::shared()
{
    // Never destroyed: freeing years of records would only slow down every
    // quit. The connection is closed at exit so the WAL is folded back in.
    static DB *instance = [] {
        auto *db = new DB(QDir(appFolder()).filePath(u"trestle.sqlite"_s));
        std::atexit([] { instance->closeConnection(); });
        return db;
    }();
    return *instance;
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
    sqlite3_finalize(m_insert);
    m_insert = nullptr;
    sqlite3_close(m_db);
    m_db = nullptr;
}

void DB::checkpoint()
{
    if (m_db)
        exec("PRAGMA wal_checkpoint(TRUNCATE)");
}

void DB::exec(const char *sql)
{
    sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
}

void DB::load()
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
    if (sqlite3_prepare_v2(m_db, "SELECT json FROM recs", -1, &stmt, nullptr) == SQLITE_OK) {
        while (sqlite3_step(stmt) == SQLITE_ROW) {
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
    m_recs = std::move(map);
    m_index.clear();
    for (const auto &[id, stored] : m_recs)
        m_index.add(&stored);
    ++m_revision;
    Q_EMIT changed();
}

bool DB::write(const Rec &rec)
{
    const QByteArray json = RecJSON::encode(rec);
    if (!m_insert &&
        sqlite3_prepare_v3(m_db,
                           "INSERT OR REPLACE INTO recs (id, company, kind, project, parent, json) "
                           "VALUES (?,?,?,?,?,?)",
                           -1, SQLITE_PREPARE_PERSISTENT, &m_insert, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_insert);
        m_insert = nullptr;
        Q_EMIT writeFailed(QString::fromUtf8(sqlite3_errmsg(m_db)));
        return false;
    }
    const QByteArray cols[5] = {rec.id.toUtf8(), rec.company.toUtf8(), rec.kind.toUtf8(),
                                rec.project.toUtf8(), rec.parent.toUtf8()};
    for (int k = 0; k < 5; ++k)
        sqlite3_bind_text(m_insert, k + 1, cols[k].constData(), int(cols[k].size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(m_insert, 6, json.constData(), int(json.size()), SQLITE_TRANSIENT);
    const int rc = sqlite3_step(m_insert);
    sqlite3_reset(m_insert);
    sqlite3_clear_bindings(m_insert);
    if (rc != SQLITE_DONE) {
        Q_EMIT writeFailed(QString::fromUtf8(sqlite3_errmsg(m_db)));
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
    put(copy);
    write(copy);
    ++m_revision;
    Q_EMIT changed();
}

void DB::saveAll(const QList<Rec> &recs)
{
    exec("BEGIN");
    for (const Rec &rec : recs) {
        Rec copy = rec;
        copy.updated = nowSeconds();
        write(copy);
        put(copy);
    }
    exec("COMMIT");
    ++m_revision;
    Q_EMIT changed();
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
    auto rootIt = m_recs.find(id);
    if (id.isEmpty() || rootIt == m_recs.end())
        return;
    const StoredRec *root = &rootIt->second;
    const Rec top = root->rec;
    // Everything that hangs from the record: children at any depth by parent,
    // and for a project or a company everything that names it.
    QSet<const StoredRec *> doomed{root};
    QList<const StoredRec *> queue{root};
    auto addAll = [&](const RecIndex::Bucket *bucket) {
        if (!bucket)
            return;
        for (const StoredRec *r : *bucket)
            if (!doomed.contains(r)) {
                doomed.insert(r);
                queue.append(r);
            }
    };
    if (top.kind == u"project")
        for (const RecIndex::Bucket *b : m_index.byProject(id))
            addAll(b);
    if (top.kind == u"company")
        for (const RecIndex::Bucket *b : m_index.byCompany(id))
            addAll(b);
    for (qsizetype k = 0; k < queue.size(); ++k)
        addAll(m_index.byParent(queue.at(k)->rec.id));

    exec("BEGIN");
    sqlite3_stmt *del = nullptr;
    sqlite3_prepare_v2(m_db, "DELETE FROM recs WHERE id = ?", -1, &del, nullptr);
    for (const StoredRec *s : std::as_const(doomed)) {
        const Rec *r = &s->rec;
        const QString file = r->f.value(u"file");
        if (!file.isEmpty())
            QFile::remove(fileURL(file, r->company));
        const QByteArray rid = r->id.toUtf8();
        sqlite3_bind_text(del, 1, rid.constData(), int(rid.size()), SQLITE_TRANSIENT);
        sqlite3_step(del);
        sqlite3_reset(del);
    }
    sqlite3_finalize(del);
    exec("COMMIT");

    QStringList ids;
    for (const StoredRec *s : std::as_const(doomed))
        ids.append(s->rec.id);
    for (const QString &rid : std::as_const(ids)) {
        auto it = m_recs.find(rid);
        m_index.remove(&it->second);
        m_recs.erase(it);
    }
    ++m_revision;
    Q_EMIT changed();

    if (top.kind == u"company") {
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
