#pragma once
#include "seatcache.h"

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QObject>

#include <memory>

class DB;
class QThread;
class QTimer;
class SyncWorker;
class FileSync;

// Keeps a seat's store in step with its company server: reads what other
// seats changed (at start, on every wake-up, after every reconnect, and on a
// slow timer in case a wake-up was lost) and sends this seat's outbox in
// order. The store itself goes on working on its copy whatever the server does.
class ServerSync : public QObject
{
    Q_OBJECT
public:
    enum class State { Connecting, Online, Offline };

    // Mirrors the server named by `conninfo` (no password in it) into `db`.
    ServerSync(DB &db, const QString &conninfo, QObject *parent = nullptr);
    ~ServerSync() override;

    // Starts connecting; `password` may be empty (then libpq's own sources serve).
    void start(const QString &password = QString());
    // Connects again with another password.
    void setPassword(const QString &password);
    // Stops working online until a password is given again (setPassword).
    void signOut();

    State state() const { return m_state; }
    // Why the seat is offline, in plain words; empty when online.
    QString problem() const { return m_problem; }
    QString conninfo() const { return m_conninfo; }
    // The login this seat works as, once online (or as last seen).
    QString login() const;
    // The team member the login is, or the empty text.
    QString memberId() const;
    // The name of the person behind a login (the login itself when unknown).
    QString person(const QString &login) const;
    // Changes of this seat the server has not accepted yet.
    qsizetype waiting() const { return m_cache->waiting(); }
    // When the newest change seen was made, by the server's clock.
    QDateTime lastSeen() const;
    // True once everything the server had at the last look is in the store.
    bool caughtUp() const { return m_caughtUp; }
    // Waits (running events) until caught up, offline after a try, or `ms` passed.
    bool waitCaughtUp(int ms);
    // Waits until the outbox is empty, the seat is offline, or `ms` passed; true when empty.
    bool flush(int ms);

    // What the person here should know; removed once dismissed.
    QList<SeatNotice> notices() const { return m_notices; }
    void dismiss(qsizetype index);
    // Acts on a notice: puts this seat's value (or record) back, or removes the
    // record that was kept; then dismisses it.
    void act(qsizetype index);

    SeatCache &cache() { return *m_cache; }
    // Asks for a record's history; historyReady answers.
    void requestHistory(const QString &recId);
    // Asks for the company's logins (an owner's request); loginsReady answers.
    void requestLogins();
    // Makes, changes or shuts a login; loginManaged answers.
    void manageLogin(const QString &action, const QString &login, const QString &member,
                     const QString &password = QString());
    // Waits (running events) until the stored file is fetched or `ms` passed.
    bool waitFile(const QString &company, const QString &name, int ms);
    // Verbs wait for a stored file they ask for; the window goes on and redraws when it comes.
    void setHeadless(bool headless) { m_headless = headless; }

Q_SIGNALS:
    void stateChanged();
    void noticesChanged();
    void historyReady(const QString &recId, const QList<HistoryLine> &lines, const QString &error);
    void loginsReady(const QList<LoginInfo> &logins, const QString &error);
    // `error` is empty when it was done.
    void loginManaged(const QString &login, const QString &error);

private:
    void onOnline(const QString &login, const QString &serverId, const QString &member, const QString &role,
                  const QHash<QString, QString> &members);
    // Takes the role the server gives the login; a changed role starts the copy afresh.
    void takeRole(const QString &role);
    void onOffline(const QString &reason);
    void onFetched(const QList<ServerRow> &rows, qint64 newPos, bool more, const QList<ServerNotice> &notices,
                   const QList<ServerFile> &files, const QString &role);
    void onSent(const QList<SendResult> &results);
    void requestFetch();
    void pumpSend();
    void takeNotices();
    void setState(State state, const QString &problem);
    void countWaiting();
    void stopWorker();

    DB &m_db;
    QString m_conninfo;
    std::unique_ptr<SeatCache> m_cache;
    FileSync *m_files = nullptr;
    bool m_headless = false;
    QThread *m_thread = nullptr;
    SyncWorker *m_worker = nullptr;
    QTimer *m_poll = nullptr;
    QTimer *m_kick = nullptr;
    QTimer *m_scan = nullptr;
    State m_state = State::Connecting;
    QString m_problem;
    QHash<QString, QString> m_members; // login → team member id
    bool m_caughtUp = false;
    bool m_triedOnce = false;
    bool m_fetchInFlight = false;
    bool m_fetchAgain = false;
    bool m_sendInFlight = false;
    qsizetype m_waiting = 0;
    QList<SeatNotice> m_notices;
};
