#include "serversync.h"

#include "filesync.h"
#include "pg.h"
#include "store/db.h"
#include "syncworker.h"

#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtCore/QTimer>

using namespace Qt::StringLiterals;

namespace {
// A lost wake-up only delays a change by this much.
constexpr int kPollMs = 5000;
// Changes sent in one transaction.
constexpr int kSendBatch = 200;
} // namespace

ServerSync::ServerSync(DB &db, const QString &conninfo, QObject *parent)
    : QObject(parent)
    , m_db(db)
    , m_conninfo(conninfo)
    , m_cache(std::make_unique<SeatCache>(db))
    , m_poll(new QTimer(this))
    , m_kick(new QTimer(this))
{
    qRegisterMetaType<QList<ServerRow>>();
    qRegisterMetaType<QList<OutItem>>();
    qRegisterMetaType<QList<SendResult>>();
    qRegisterMetaType<QList<ServerNotice>>();
    qRegisterMetaType<QList<ServerFile>>();
    qRegisterMetaType<QList<HistoryLine>>();
    qRegisterMetaType<QList<LoginInfo>>();
    m_poll->setInterval(kPollMs);
    connect(m_poll, &QTimer::timeout, this, &ServerSync::requestFetch);
    // Local writes are sent on the next turn of the loop, many saves in one go.
    m_kick->setSingleShot(true);
    m_kick->setInterval(0);
    connect(m_kick, &QTimer::timeout, this, [this] {
        countWaiting();
        pumpSend();
    });
    connect(&m_db, &DB::changed, m_kick, qOverload<>(&QTimer::start));
    m_files = new FileSync(db, *m_cache, this);
    m_scan = new QTimer(this);
    m_scan->setSingleShot(true);
    m_scan->setInterval(1000);
    connect(m_scan, &QTimer::timeout, m_files, &FileSync::scan);
    connect(m_files, &FileSync::arrived, this, [this] { m_cache->touch(); });
    m_cache->wantFile = [this](const QString &company, const QString &name) {
        m_files->want(company, name);
        if (m_headless)
            waitFile(company, name, 30000);
    };
    connect(m_poll, &QTimer::timeout, this, [this] {
        if (m_caughtUp)
            m_files->scan();
    });
    countWaiting();
}

ServerSync::~ServerSync()
{
    stopWorker();
}

void ServerSync::stopWorker()
{
    if (!m_thread)
        return;
    QMetaObject::invokeMethod(m_worker, &SyncWorker::stop, Qt::BlockingQueuedConnection);
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
    m_thread = nullptr;
    m_worker = nullptr;
    m_fetchInFlight = m_sendInFlight = false;
}

void ServerSync::start(const QString &password)
{
    stopWorker();
    if (!m_cache->ok()) {
        // Without its outbox a seat would drop what is typed here; it stays on its copy and says why.
        m_triedOnce = true;
        setState(State::Offline, u"this folder's copy of the company server cannot be written: "_s +
                                     (m_db.isOpen() ? (m_db.readOnly() ? u"it is read-only"_s
                                                                       : u"its tables could not be made"_s)
                                                    : m_db.openProblem()));
        return;
    }
    m_triedOnce = false;
    setState(State::Connecting, QString());
    m_thread = new QThread;
    m_thread->setObjectName(u"company server"_s);
    m_worker = new SyncWorker(m_conninfo, password);
    m_worker->moveToThread(m_thread);
    connect(m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(m_worker, &SyncWorker::online, this, &ServerSync::onOnline);
    connect(m_worker, &SyncWorker::offline, this, &ServerSync::onOffline);
    connect(m_worker, &SyncWorker::fetched, this, &ServerSync::onFetched);
    connect(m_worker, &SyncWorker::sent, this, &ServerSync::onSent);
    connect(m_worker, &SyncWorker::woken, this, &ServerSync::requestFetch);
    connect(m_worker, &SyncWorker::downloaded, m_files, &FileSync::takeDownload);
    connect(m_worker, &SyncWorker::uploaded, m_files, &FileSync::takeUpload);
    connect(m_worker, &SyncWorker::historyRead, this, &ServerSync::historyReady);
    connect(m_worker, &SyncWorker::loginsRead, this, &ServerSync::loginsReady);
    connect(m_worker, &SyncWorker::loginManaged, this, &ServerSync::loginManaged);
    // The file requests go to whichever worker is current.
    disconnect(m_files, &FileSync::download, nullptr, nullptr);
    disconnect(m_files, &FileSync::upload, nullptr, nullptr);
    connect(m_files, &FileSync::download, m_worker, &SyncWorker::download);
    connect(m_files, &FileSync::upload, m_worker, &SyncWorker::upload);
    m_thread->start();
    QMetaObject::invokeMethod(m_worker, &SyncWorker::start, Qt::QueuedConnection);
}

void ServerSync::setPassword(const QString &password)
{
    start(password);
}

void ServerSync::signOut()
{
    stopWorker();
    m_poll->stop();
    m_triedOnce = true;
    setState(State::Offline, u"you signed out of the company server"_s);
}

QString ServerSync::login() const
{
    return m_cache->meta(u"login"_s);
}

QString ServerSync::memberId() const
{
    return m_cache->meta(u"member"_s);
}

QString ServerSync::person(const QString &login) const
{
    const QString member = m_members.value(login);
    const QString name = member.isEmpty() ? QString() : m_db.label(member);
    return name.isEmpty() ? login : name;
}

QDateTime ServerSync::lastSeen() const
{
    return QDateTime::fromString(m_cache->meta(u"last_seen"_s), Qt::ISODateWithMs);
}

void ServerSync::setState(State state, const QString &problem)
{
    if (state == m_state && problem == m_problem)
        return;
    m_state = state;
    m_problem = problem;
    Q_EMIT stateChanged();
}

void ServerSync::countWaiting()
{
    const qsizetype n = m_cache->waiting();
    if (n != m_waiting) {
        m_waiting = n;
        Q_EMIT stateChanged();
    }
}

void ServerSync::onOnline(const QString &login, const QString &serverId, const QString &member,
                          const QString &role, const QHash<QString, QString> &members)
{
    m_triedOnce = true;
    m_members = members;
    const QString known = m_cache->meta(u"server_id"_s);
    if (!known.isEmpty() && known != serverId) {
        // This cache mirrors another server: mixing the two would send one company's records to the other.
        stopWorker();
        setState(State::Offline,
                 u"this folder's copy belongs to another company server; disconnect and connect "
                 u"again to start a fresh copy"_s);
        return;
    }
    m_cache->setMeta(u"server_id"_s, serverId);
    if (m_cache->meta(u"login"_s) != login && !m_cache->meta(u"login"_s).isEmpty())
        m_cache->setMeta(u"role"_s, QString()); // another person: their role decides afresh
    m_cache->setMeta(u"login"_s, login);
    m_cache->setMeta(u"member"_s, member);
    takeRole(role);
    m_fetchInFlight = m_sendInFlight = false;
    m_caughtUp = false;
    setState(State::Online, QString());
    m_poll->start();
    requestFetch();
}

void ServerSync::onOffline(const QString &reason)
{
    m_triedOnce = true;
    m_fetchInFlight = m_sendInFlight = false;
    m_poll->stop();
    setState(State::Offline, reason);
}

void ServerSync::requestFetch()
{
    if (m_state != State::Online || !m_worker)
        return;
    if (m_fetchInFlight) {
        m_fetchAgain = true;
        return;
    }
    m_fetchInFlight = true;
    m_fetchAgain = false;
    const qint64 pos = m_cache->position();
    const qint64 notice = m_cache->meta(u"notice_id"_s).toLongLong();
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker, pos, notice] { w->fetch(pos, notice); }, Qt::QueuedConnection);
}

void ServerSync::takeRole(const QString &role)
{
    const QString before = m_cache->meta(u"role"_s);
    if (role != before) {
        // What the seat holds was given to the old role; the new one starts from what the server gives it
        // now.
        if (!before.isEmpty() && m_cache->waiting() == 0 && m_cache->reset()) {
            SeatNotice n;
            n.kind = SeatNotice::RoleChanged;
            n.mine = before;
            n.theirs = role;
            m_notices.append(n);
            Q_EMIT noticesChanged();
        }
        m_cache->setMeta(u"role"_s, role);
    }
    m_db.setServerRole(role);
}

void ServerSync::onFetched(const QList<ServerRow> &rows, qint64 newPos, bool more,
                           const QList<ServerNotice> &notices, const QList<ServerFile> &files,
                           const QString &role)
{
    m_fetchInFlight = false;
    if (!role.isEmpty() && role != m_cache->meta(u"role"_s)) {
        takeRole(role);
        requestFetch();
        return;
    }
    if (!m_cache->applyRemote(rows, newPos)) {
        // The file could not take them; the same rows are read again on the next look.
        m_fetchAgain = false;
        return;
    }
    m_files->takeServerFiles(files);
    if (!rows.isEmpty()) {
        QDateTime newest;
        for (const ServerRow &r : rows)
            newest = std::max(newest, r.changedAt);
        m_cache->setMeta(u"last_seen"_s, newest.toString(Qt::ISODateWithMs));
    }
    for (const ServerNotice &n : notices) {
        SeatNotice s;
        s.kind = SeatNotice::Replaced;
        s.recId = n.rec;
        s.field = n.field;
        s.mine = n.replaced;
        s.theirs = n.kept;
        s.by = n.byLogin;
        s.at = n.at;
        m_notices.append(s);
        m_cache->setMeta(u"notice_id"_s, QString::number(n.id));
    }
    if (!notices.isEmpty())
        Q_EMIT noticesChanged();
    takeNotices();
    if (more || m_fetchAgain) {
        requestFetch();
        return;
    }
    if (!m_caughtUp) {
        m_caughtUp = true;
        // The seat works as the person the login is.
        const Rec *me = m_db.find(memberId());
        if (me && me->kind == u"user") {
            if (m_db.companyID() != me->company)
                m_db.setCompanyID(me->company);
            if (m_db.userID() != me->id)
                m_db.setUserID(me->id);
        }
        m_files->scan();
        Q_EMIT stateChanged();
    }
    countWaiting();
    pumpSend();
}

void ServerSync::pumpSend()
{
    // Files changed here are looked for a moment after the last write, not at every keystroke.
    if (m_state == State::Online && m_caughtUp && !m_scan->isActive())
        m_scan->start();
    if (m_state != State::Online || !m_caughtUp || m_sendInFlight || !m_worker)
        return;
    const QList<OutItem> items = m_cache->pending(kSendBatch);
    if (items.isEmpty())
        return;
    m_sendInFlight = true;
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker, items] { w->send(items); }, Qt::QueuedConnection);
}

void ServerSync::onSent(const QList<SendResult> &results)
{
    m_sendInFlight = false;
    if (!m_cache->takeResults(results))
        return; // the file could not take the answers; the changes go again
    takeNotices();
    countWaiting();
    pumpSend();
}

void ServerSync::takeNotices()
{
    const QList<SeatNotice> fresh = m_cache->takeNotices();
    if (fresh.isEmpty())
        return;
    m_notices += fresh;
    Q_EMIT noticesChanged();
}

bool ServerSync::waitCaughtUp(int ms)
{
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(this, &ServerSync::stateChanged, &loop, [&] {
        if (m_caughtUp || (m_triedOnce && m_state == State::Offline))
            loop.quit();
    });
    if (!(m_caughtUp || (m_triedOnce && m_state == State::Offline))) {
        timeout.start(ms);
        loop.exec();
    }
    return m_caughtUp;
}

bool ServerSync::flush(int ms)
{
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    auto done = [this] { return m_waiting == 0 || m_state == State::Offline; };
    connect(this, &ServerSync::stateChanged, &loop, [&] {
        if (done())
            loop.quit();
    });
    countWaiting();
    pumpSend();
    if (!done()) {
        timeout.start(ms);
        loop.exec();
    }
    return m_waiting == 0;
}

void ServerSync::requestHistory(const QString &recId)
{
    if (!m_worker) {
        Q_EMIT historyReady(recId, {}, m_problem);
        return;
    }
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker, recId] { w->history(recId); }, Qt::QueuedConnection);
}

void ServerSync::requestLogins()
{
    if (!m_worker) {
        Q_EMIT loginsReady({}, m_problem);
        return;
    }
    QMetaObject::invokeMethod(m_worker, &SyncWorker::logins, Qt::QueuedConnection);
}

void ServerSync::manageLogin(const QString &action, const QString &login, const QString &member,
                             const QString &password)
{
    if (!m_worker) {
        Q_EMIT loginManaged(login, m_problem);
        return;
    }
    QMetaObject::invokeMethod(
        m_worker,
        [w = m_worker, action, login, member, password] { w->manageLogin(action, login, member, password); },
        Qt::QueuedConnection);
}

bool ServerSync::waitFile(const QString &company, const QString &name, int ms)
{
    if (!m_files->downloading(company, name) || !m_worker)
        return !m_files->downloading(company, name);
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(
        m_worker, &SyncWorker::downloaded, &loop,
        [&] {
            if (!m_files->downloading(company, name))
                loop.quit();
        },
        Qt::QueuedConnection);
    timeout.start(ms);
    loop.exec();
    return !m_files->downloading(company, name);
}

void ServerSync::dismiss(qsizetype index)
{
    if (index < 0 || index >= m_notices.size())
        return;
    m_notices.removeAt(index);
    Q_EMIT noticesChanged();
}

void ServerSync::act(qsizetype index)
{
    if (index < 0 || index >= m_notices.size())
        return;
    const SeatNotice n = m_notices.at(index);
    switch (n.kind) {
    case SeatNotice::Replaced:
        if (const Rec *r = m_db.find(n.recId)) {
            Rec copy = *r;
            if (n.field == u"project")
                copy.project = n.mine;
            else if (n.field == u"parent")
                copy.parent = n.mine;
            else
                copy.f.insert(n.field, n.mine);
            m_db.save(copy);
        }
        break;
    case SeatNotice::Renumbered:
    case SeatNotice::Refused:
    case SeatNotice::RoleChanged: break; // nothing to undo: the server's word stands
    case SeatNotice::RemovedElsewhere:
        if (!n.copy.id.isEmpty()) {
            m_db.save(n.copy);
            m_cache->forcePut(n.copy.id);
        }
        break;
    case SeatNotice::KeptAfterRemove: m_db.remove(n.recId); break;
    }
    dismiss(index);
}
