#include "syncworker.h"

#include "serveradmin.h"
#include "serverschema.h"
#include "store/recjson.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

using namespace Qt::StringLiterals;

namespace {
QDateTime serverTime(const QString &text)
{
    // timestamptz in ISO style, "2026-11-25 10:42:13.12345+00"
    QString t = text;
    if (t.size() > 3 && (t.at(t.size() - 3) == u'+' || t.at(t.size() - 3) == u'-'))
        t += u":00"_s;
    QDateTime d = QDateTime::fromString(t, Qt::ISODateWithMs);
    if (!d.isValid())
        d = QDateTime::fromString(t, Qt::ISODate);
    return d.toUTC();
}

QByteArray fieldsJson(const Fields &f)
{
    QJsonObject o;
    for (const Fields::Entry &e : f)
        o.insert(e.key, e.value);
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}
} // namespace

ServerRow serverRow(const Pg::Result &r, int row, int col)
{
    ServerRow out;
    if (!r.isNull(row, col))
        if (auto rec = RecJSON::decode(r.bytes(row, col)))
            out.rec = std::move(*rec);
    out.version = r.number(row, col + 1);
    out.pos = r.number(row, col + 2);
    out.deleted = r.text(row, col + 3) == u"t";
    out.changedBy = r.text(row, col + 4);
    out.changedAt = serverTime(r.text(row, col + 5));
    return out;
}

SyncWorker::SyncWorker(const QString &conninfo, const QString &password)
    : m_conninfo(conninfo)
    , m_password(password)
{}

SyncWorker::~SyncWorker() = default;

void SyncWorker::start()
{
    if (!m_retry) {
        m_retry = new QTimer(this);
        m_retry->setSingleShot(true);
        connect(m_retry, &QTimer::timeout, this, &SyncWorker::start);
    }
    if (m_stopped || m_conn.isOpen())
        return;
    if (!connectNow()) {
        m_retry->start(m_backoff);
        m_backoff = std::min(m_backoff * 2, 4000);
    }
}

bool SyncWorker::connectNow()
{
    QString error;
    if (!m_conn.open(m_conninfo, m_password, &error)) {
        Q_EMIT offline(error);
        return false;
    }
    QString serverId;
    if (!ServerSchema::check(m_conn, &serverId, &error)) {
        m_conn.close();
        Q_EMIT offline(error);
        return false;
    }
    // A seat works as a person: never as the server's administrator, and only as a login of the team.
    const Pg::Result who =
        m_conn.exec("SELECT current_setting('is_superuser'), (SELECT count(*) FROM trestle.whoami())");
    if (who.ok() && (who.text(0, 0) == u"on" || who.text(0, 1) == u"0")) {
        const QString login = m_conn.login();
        m_conn.close();
        Q_EMIT offline(who.text(0, 0) == u"on"
                           ? u"Trestle does not work as the server's administrator ("_s + login +
                                 u"); connect with your own login"_s
                           : u"the login "_s + login + u" is not a member of the team on this server"_s);
        return false;
    }
    // A login the server no longer lets in (disabled, or no longer in the team) is told so plainly.
    if (const Pg::Result allowed = m_conn.exec("SELECT count(*) FROM trestle.changes_since(0, 0)");
        !allowed.ok()) {
        m_conn.close();
        Q_EMIT offline(allowed.error());
        return false;
    }
    // Listen first, then read: a change committed in between is read, not missed.
    if (!m_conn.exec("LISTEN trestle").ok()) {
        lost(m_conn.lastError());
        return false;
    }
    QString member, role;
    const Pg::Result me = m_conn.exec("SELECT member, role FROM trestle.whoami()");
    if (me.ok() && me.rows() == 1) {
        member = me.text(0, 0);
        role = me.text(0, 1);
    }
    QHash<QString, QString> members;
    const Pg::Result names = m_conn.exec("SELECT login, member FROM trestle.login_names()");
    for (int i = 0; names.ok() && i < names.rows(); ++i)
        members.insert(names.text(i, 0), names.text(i, 1));
    m_backoff = 500;
    delete m_notifier;
    m_notifier = new QSocketNotifier(qintptr(m_conn.socket()), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SyncWorker::onSocket);
    Q_EMIT online(m_conn.login(), serverId, member, role, members);
    return true;
}

void SyncWorker::lost(const QString &reason)
{
    delete m_notifier;
    m_notifier = nullptr;
    m_conn.close();
    Q_EMIT offline(reason.isEmpty() ? u"the connection to the company server was lost"_s
                                    : u"the connection to the company server was lost: "_s + reason);
    if (!m_stopped && m_retry)
        m_retry->start(m_backoff);
}

bool SyncWorker::alive()
{
    if (m_conn.broken()) {
        if (m_conn.raw())
            lost(m_conn.lastError());
        return false;
    }
    return true;
}

void SyncWorker::onSocket()
{
    const bool any = m_conn.takeNotifications();
    if (!alive())
        return;
    if (any)
        Q_EMIT woken();
}

void SyncWorker::fetch(qint64 pos, qint64 noticeId)
{
    if (!m_conn.isOpen())
        return;
    // One snapshot for rows, files and notices, so positions agree.
    const Pg::Result begin = m_conn.exec("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
    const QByteArray p = QByteArray::number(pos);
    const Pg::Result rows =
        m_conn.exec("SELECT * FROM trestle.changes_since($1, $2)", {p, QByteArray::number(kPage)});
    const Pg::Result files =
        m_conn.exec("SELECT company, name, sha256, pos FROM trestle.files_since($1)", {p});
    const Pg::Result notes =
        m_conn.exec("SELECT * FROM trestle.notices_since($1)", {QByteArray::number(noticeId)});
    const Pg::Result me = m_conn.exec("SELECT role FROM trestle.whoami()");
    const Pg::Result commit = m_conn.exec("COMMIT");
    if (!begin.ok() || !rows.ok() || !files.ok() || !notes.ok() || !me.ok() || !commit.ok()) {
        if (!alive())
            return;
        m_conn.exec("ROLLBACK");
        if (rows.state() == "28000") {
            // Disabled while connected: the next request is refused, and the seat says why.
            delete m_notifier;
            m_notifier = nullptr;
            m_conn.close();
            Q_EMIT offline(rows.error());
            if (m_retry)
                m_retry->start(m_backoff = 4000);
            return;
        }
        lost(rows.ok() ? files.error() : rows.error());
        return;
    }
    QList<ServerRow> out;
    out.reserve(rows.rows());
    qint64 newPos = pos;
    for (int i = 0; i < rows.rows(); ++i) {
        out.append(serverRow(rows, i, 0));
        newPos = std::max(newPos, out.last().pos);
    }
    const bool more = rows.rows() >= kPage;
    QList<ServerFile> fileList;
    for (int i = 0; i < files.rows(); ++i) {
        const ServerFile f{files.text(i, 0), files.text(i, 1), files.text(i, 2), files.number(i, 3)};
        // A full page stops at its last row; later files come with the next page.
        if (more && f.pos > newPos)
            continue;
        fileList.append(f);
        if (!more)
            newPos = std::max(newPos, f.pos);
    }
    QList<ServerNotice> notices;
    for (int i = 0; i < notes.rows(); ++i)
        notices.append({notes.number(i, 0), notes.text(i, 1), notes.text(i, 2), notes.text(i, 3),
                        notes.text(i, 4), notes.text(i, 5), serverTime(notes.text(i, 6))});
    Q_EMIT fetched(out, newPos, more, notices, fileList, me.rows() == 1 ? me.text(0, 0) : QString());
}

SendResult SyncWorker::sendOne(const OutItem &item, QString *error)
{
    SendResult result;
    result.item = item;
    const QByteArray id = item.id.toUtf8();
    const QByteArray base = QByteArray::number(item.baseVersion);
    const QByteArray force = item.force ? "true" : "false";
    Pg::Result r;
    if (item.removed) {
        r = m_conn.exec("SELECT * FROM trestle.remove_rec($1, $2, $3)", {id, base, force});
    } else {
        const Rec &rec = item.rec;
        r = m_conn.exec("SELECT * FROM trestle.put_rec($1, $2, $3, $4, $5, $6, $7, $8, $9, $10)",
                        {id, base, rec.company.toUtf8(), rec.kind.toUtf8(), rec.project.toUtf8(),
                         rec.parent.toUtf8(), QByteArray::number(rec.created, 'g', 17),
                         QByteArray::number(rec.updated, 'g', 17), fieldsJson(rec.f), force});
    }
    if (!r.ok() || r.rows() != 1) {
        *error = r.ok() ? u"the server gave no answer"_s : r.error();
        return result;
    }
    const QString status = r.text(0, 0);
    result.row = serverRow(r, 0, 1);
    if (result.row.rec.id.isEmpty()) {
        result.row.rec = item.rec;
        result.row.rec.id = item.id;
    }
    result.status = status == u"conflict" ? SendResult::Conflict : SendResult::Accepted;
    if (result.status == SendResult::Accepted)
        for (const OutNotice &n : item.notices)
            if (!m_conn
                     .exec("SELECT trestle.add_notice($1, $2, $3, $4, $5)",
                           {n.forLogin.toUtf8(), id, n.field.toUtf8(), n.replaced.toUtf8(), n.kept.toUtf8()})
                     .ok()) {
                *error = m_conn.lastError();
                break;
            }
    return result;
}

void SyncWorker::send(const QList<OutItem> &items)
{
    if (!m_conn.isOpen() || items.isEmpty())
        return;
    // The batch goes in one transaction; when one change is refused the rest
    // are tried one by one so a single refusal holds up nothing else.
    QList<SendResult> results;
    QString error;
    bool ok = m_conn.exec("BEGIN").ok();
    for (qsizetype k = 0; ok && k < items.size(); ++k) {
        results.append(sendOne(items.at(k), &error));
        ok = error.isEmpty();
    }
    ok = ok && m_conn.exec("COMMIT").ok();
    if (ok) {
        Q_EMIT sent(results);
        return;
    }
    if (!alive())
        return;
    m_conn.exec("ROLLBACK");
    results.clear();
    for (const OutItem &item : items) {
        error.clear();
        m_conn.exec("BEGIN");
        SendResult r = sendOne(item, &error);
        if (error.isEmpty() && m_conn.exec("COMMIT").ok()) {
            results.append(r);
            continue;
        }
        if (!alive())
            return;
        m_conn.exec("ROLLBACK");
        r.status = SendResult::Refused;
        r.message = error;
        const Pg::Result now = m_conn.exec("SELECT * FROM trestle.rec($1)", {item.id.toUtf8()});
        r.row = now.ok() && now.rows() == 1 ? serverRow(now, 0, 0) : ServerRow();
        results.append(r);
    }
    Q_EMIT sent(results);
}

void SyncWorker::download(const QString &company, const QString &name, const QString &sha)
{
    QByteArray data;
    if (m_conn.isOpen()) {
        const Pg::Result r = m_conn.exec("SELECT encode(trestle.get_blob($1), 'base64')", {sha.toUtf8()});
        if (r.ok() && r.rows() == 1 && !r.isNull(0, 0))
            data = QByteArray::fromBase64(r.bytes(0, 0));
        else
            alive();
    }
    Q_EMIT downloaded(company, name, sha, data);
}

void SyncWorker::upload(const QString &company, const QString &name, const QString &path)
{
    QString sha, error;
    const bool ok = m_conn.isOpen() && ServerAdmin::putFile(m_conn, company, name, path, &sha, &error);
    if (!ok)
        alive();
    Q_EMIT uploaded(company, name, sha, ok);
}

void SyncWorker::history(const QString &recId)
{
    QList<HistoryLine> lines;
    if (!m_conn.isOpen()) {
        Q_EMIT historyRead(recId, lines, u"the company server cannot be reached"_s);
        return;
    }
    const Pg::Result r =
        m_conn.exec("SELECT at, login, field, coalesce(old_value, ''), coalesce(new_value, '') "
                    "FROM trestle.history_of($1)",
                    {recId.toUtf8()});
    if (!r.ok()) {
        alive();
        Q_EMIT historyRead(recId, lines, r.error());
        return;
    }
    for (int i = 0; i < r.rows(); ++i)
        lines.append({serverTime(r.text(i, 0)), r.text(i, 1), r.text(i, 2), r.text(i, 3), r.text(i, 4)});
    Q_EMIT historyRead(recId, lines, QString());
}

void SyncWorker::logins()
{
    QList<LoginInfo> out;
    const Pg::Result r = m_conn.isOpen()
                             ? m_conn.exec("SELECT login, member, disabled FROM trestle.login_list()")
                             : Pg::Result();
    if (!r.ok()) {
        Q_EMIT loginsRead(out, m_conn.isOpen() ? r.error() : u"the company server cannot be reached"_s);
        return;
    }
    for (int i = 0; i < r.rows(); ++i)
        out.append({r.text(i, 0), r.text(i, 1), r.text(i, 2) == u"t"});
    Q_EMIT loginsRead(out, QString());
}

void SyncWorker::manageLogin(const QString &action, const QString &login, const QString &member,
                             const QString &password)
{
    if (!m_conn.isOpen()) {
        Q_EMIT loginManaged(login, u"the company server cannot be reached"_s);
        return;
    }
    // The password is turned into its verifier here; the plain text never leaves this machine.
    const QByteArray verifier = password.isEmpty() ? QByteArray() : m_conn.encryptPassword(password, login);
    const Pg::Result r = m_conn.exec("SELECT trestle.manage_login($1, $2, $3, $4)",
                                     {action.toUtf8(), login.toUtf8(), member.toUtf8(), verifier});
    Q_EMIT loginManaged(login, r.ok() ? QString() : r.error());
}

void SyncWorker::stop()
{
    m_stopped = true;
    if (m_retry)
        m_retry->stop();
    delete m_notifier;
    m_notifier = nullptr;
    m_conn.close();
}
