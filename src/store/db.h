#pragma once
#include "dbindex.h"
#include "rec.h"
#include "recjson.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QSet>

#include <algorithm>

#include <functional>
#include <optional>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;
class QTimer;
class SeatCache;

// The optional conditions of DB::list. An absent member means no filter; an
// empty text is a real value that matches records holding the empty text.
struct RecFilter
{
    std::optional<QString> project = std::nullopt;
    std::optional<QString> parent = std::nullopt;
    std::optional<QString> company = std::nullopt; // absent: the current company
};

// The one record store: every record in SQLite and a complete copy in memory.
// All reads come from memory; SQL only loads at start and writes through.
// Every save, saveAll, remove and load emits changed() exactly once.
// A write that fails leaves the change in memory, marked unsaved; unsaved
// changes are written again, oldest first, before the next write and on a
// short timer, and none is ever dropped. A file that is damaged at open is
// never written: the store then holds no records and writes nothing.
class DB : public QObject
{
    Q_OBJECT
public:
    // Opens the store on the database file `path`, or a private in-memory
    // store (which never touches the user defaults) when absent.
    explicit DB(const std::optional<QString> &path = std::nullopt, QObject *parent = nullptr);
    ~DB() override;
    DB(const DB &) = delete;
    DB &operator=(const DB &) = delete;

    // The application's store on "trestle.sqlite" in the data folder.
    static DB &shared();
    // The application's store when something has opened it already, else null.
    static DB *sharedIfOpened();
    // Called once with the application's store right after it opened (even
    // when the file turned out damaged); the program decides what to do then.
    static std::function<void(DB &)> &openedHook();
    // The private data folder, created (mode 0700) on first use.
    static QString appFolder();

    // --- how the file opened ---
    // Healthy; damaged (SQLite cannot read it as a database, or its quick check
    // fails); or not opened at all (no permission, disk full, folder missing).
    enum class OpenState { Ok, Damaged, Unopenable };
    OpenState openState() const { return m_openState; }
    bool isOpen() const { return m_openState == OpenState::Ok; }
    // Why the file did not open, in plain words; empty when it did.
    QString openProblem() const { return m_openProblem; }
    // The database file; empty for an in-memory store.
    QString path() const { return m_path; }
    // Whether the file could only be opened for reading (marked read-only).
    bool readOnly() const;
    // SQLite's words for any failure in plain words ("the disk is full").
    static QString plainCause(int sqliteCode);

    // --- changes that did not reach the disk ---
    // How many records wait to be written (or removed) after a failed write.
    qsizetype unsavedCount() const { return m_unsavedOrder.size(); }
    bool isUnsaved(const QString &id) const { return m_unsaved.contains(id); }
    // Why the last write failed, in plain words; empty when nothing waits.
    QString unsavedCause() const { return m_cause; }
    // Writes every waiting change now, oldest first, in one transaction;
    // true when nothing waits any more.
    bool retryUnsaved();
    // Writes the waiting changes to `file` (JSON: the records as they are now
    // and the ids still to be removed), replacing it whole; false with a
    // reason in `error` when the file cannot be written.
    bool saveUnsavedTo(const QString &file, QString *error = nullptr) const;
    // Lets the database file grow to at most `pages` pages (0: no cap); a
    // write that needs more fails as on a full disk. For drills and tests;
    // TRESTLE_MAX_PAGES sets it at open.
    void setPageLimit(qint64 pages);

    // --- records ---
    // The record `id`, or nothing; the empty id gives nothing.
    std::optional<Rec> get(const QString &id) const;
    // A view of the stored record, valid until the next write; null when absent.
    const Rec *find(const QString &id) const;
    // Records of `kind` matching the filter, by `sort` then `created`.
    QList<Rec> list(const QString &kind, const RecFilter &filter = {}) const;
    // Calls `fn` for each record list() would return, in the same order,
    // without copying them. `fn` must not write to the store.
    void visit(const QString &kind, const RecFilter &filter,
               const std::function<void(const Rec &)> &fn) const;
    // Where a record stands in list order: compare with ListKey::before.
    struct ListKey
    {
        qint64 sort = 0;
        const Rec *rec = nullptr;
        // True when the record of this key comes first in a list.
        bool before(const ListKey &other) const;
    };
    // Calls `fn` for each record list() would return, in no particular order,
    // with its place in list order; for sums that only need first appearances.
    // `fn` must not write to the store.
    void visitUnordered(const QString &kind, const RecFilter &filter,
                        const std::function<void(const Rec &, const ListKey &)> &fn) const;
    // How many records of `kind` match the filter, without copying them.
    qsizetype count(const QString &kind, const RecFilter &filter = {}) const;
    void save(const Rec &rec);
    void saveAll(const QList<Rec> &recs);
    // Makes, saves and returns a new record (company: the current one when absent).
    Rec add(const QString &kind, const QString &project, const QString &parent, const Fields &fields,
            const std::optional<QString> &company = std::nullopt);
    // Removes the record and everything that hangs from it by parent, or by
    // project for a project, or by company for a company, with their files.
    void remove(const QString &id);
    // Saves `recs` and removes `removals` (as remove does) in one transaction,
    // with one changed(); an id that is absent already is passed over.
    void saveAndRemove(const QList<Rec> &recs, const QStringList &removals);
    // Calls `fn` for every record, in no particular order.
    void forEach(const std::function<void(const Rec &)> &fn) const;
    qsizetype size() const { return qsizetype(m_recs.size()); }

    // --- stored files ---
    bool inMemory() const { return m_inMemory; }
    QString filesRoot() const { return m_filesRoot; }
    // Folds the write-ahead log back into the database file, so that a copy of
    // the folder taken now holds every saved record in "trestle.sqlite".
    void checkpoint();
    // Location of a stored file of `company` (the current one when absent); creates the folder.
    QString fileURL(const QString &name, const std::optional<QString> &company = std::nullopt) const;
    // Copies an outside file into the current company's folder; its stored name, or nothing.
    std::optional<QString> importFile(const QString &path) const;

    // --- companies, users and the current selection ---
    QString companyID() const { return m_companyID; }
    QString userID() const { return m_userID; }
    void setCompanyID(const QString &id);
    void setUserID(const QString &id);
    std::optional<Rec> company() const;
    std::optional<Rec> user() const;
    // The role in force: the role a company server gives this seat's login,
    // else the current user's role, "Owner" when there is no user.
    QString role() const;
    // Sets (or, with nothing, clears) the role a company server gives this seat.
    void setServerRole(const std::optional<QString> &role);
    // Whether the role comes from a company server (the user picker then stays shut).
    bool roleFromServer() const { return m_serverRole.has_value(); }
    // A new company with the default cost codes and one owner, made current.
    Rec createCompany(const QString &name, const QString &owner, const QString &state);
    // The display text of any record id (empty for a dangling reference).
    QString label(const QString &id) const;
    // The id of the cost code whose code is exactly `code`, or the empty text.
    QString code(const QString &code) const;
    // The current company's cost codes in code order.
    QList<Rec> costCodes() const;
    // Counts the changes of the records: an unchanged count means unchanged
    // records, so a screen may keep figures it worked out from them.
    quint64 revision() const { return m_revision; }
    // Counts the changes that can touch what is worked out from the records of
    // the project `projectId`: its own record, its records and those hanging
    // from them, and every record that belongs to no project.
    quint64 projectRevision(const QString &projectId) const
    {
        return std::max(m_sharedStamp, m_projectStamps.value(projectId));
    }

Q_SIGNALS:
    void changed();
    void selectionChanged();
    // A write did not reach the disk (the cause in plain words); the change
    // stays in memory, marked unsaved, until it can be written.
    void writeFailed(const QString &cause);
    // The number of unsaved changes or their cause changed.
    void unsavedChanged();

private:
    // The mirror of a company server keeps its outbox in this file and
    // applies the server's changes through the store's memory.
    friend class SeatCache;
    SeatCache *m_seat = nullptr;
    quint64 m_revision = 0;
    // The revision at which each project, and anything outside every project,
    // last changed: a record outside every project may be read by any project.
    QHash<QString, quint64> m_projectStamps;
    quint64 m_sharedStamp = 0;
    void stamp(const Rec &rec);
    // Where a stored file lives, without creating its folder or fetching it.
    QString storedPath(const QString &name, const QString &company) const;
    bool openFile(const QString &path);
    bool refuse(OpenState state, const QString &problem);
    bool load();
    bool write(const Rec &rec);
    bool removeRow(const QString &id);
    bool writeBatch(const std::function<bool()> &body);
    void markUnsaved(const QStringList &ids);
    void put(const Rec &rec);
    int exec(const char *sql);
    void closeConnection();
    void repairSelection();
    template<class Fn> void eachMatch(const QString &kind, const RecFilter &filter, Fn &&fn) const;
    std::vector<const Rec *> sorted(const QString &kind, const RecFilter &filter) const;
    static void readSortKey(StoredRec &stored);

    std::unordered_map<QString, StoredRec> m_recs;
    RecIndex m_index;
    StringPool m_pool;
    QString m_companyID;
    QString m_userID;
    std::optional<QString> m_serverRole;
    sqlite3 *m_db = nullptr;
    sqlite3_stmt *m_insert = nullptr;
    sqlite3_stmt *m_delete = nullptr;
    bool m_inMemory = true;
    QString m_filesRoot;
    QString m_path;
    OpenState m_openState = OpenState::Ok;
    QString m_openProblem;
    // Ids whose current state (the record in memory, or its absence) is not
    // yet on disk, in the order they first failed.
    QStringList m_unsavedOrder;
    QSet<QString> m_unsaved;
    QString m_cause;
    int m_lastCode = 0;
    QTimer *m_retry = nullptr;
};
