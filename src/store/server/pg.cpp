#include "pg.h"

#include <libpq-fe.h>

#include <QtCore/QStringList>

#include <vector>

using namespace Qt::StringLiterals;

namespace Pg {

namespace {
QString firstLine(const char *text)
{
    QString s = QString::fromUtf8(text).trimmed();
    const qsizetype nl = s.indexOf(u'\n');
    return nl < 0 ? s : s.left(nl).trimmed();
}

// libpq's words for why a connection failed, said for the people who read them.
QString plainConnectError(pg_conn *conn, const QString &conninfo)
{
    const QString raw = QString::fromUtf8(PQerrorMessage(conn));
    const QString where = describe(conninfo);
    if (raw.contains(u"password authentication failed"_s) || raw.contains(u"no password supplied"_s) ||
        raw.contains(u"SCRAM"_s))
        return u"the company server ("_s + where +
               u") refused the login: the password is wrong, or the login does not exist"_s;
    if (raw.contains(u"is not permitted to log in"_s))
        return u"the login is disabled on the company server ("_s + where + u')';
    if (raw.contains(u"does not exist"_s) && raw.contains(u"database"_s))
        return u"the company server ("_s + where + u") has no such database"_s;
    if (raw.contains(u"does not support SSL"_s))
        return u"the company server ("_s + where +
               u") does not offer an encrypted connection; over a network Trestle connects only with TLS"_s;
    if (raw.contains(u"certificate"_s) || raw.contains(u"SSL"_s) || raw.contains(u"ssl"_s))
        return u"the company server's certificate could not be verified ("_s + where + u"): "_s +
               firstLine(PQerrorMessage(conn));
    return u"the company server ("_s + where + u") could not be reached: "_s +
           firstLine(PQerrorMessage(conn));
}

QByteArray envValue(const char *name)
{
    return qgetenv(name);
}
} // namespace

Result::Result(pg_result *res)
    : m_res(res, [](pg_result *r) { PQclear(r); })
{}

bool Result::ok() const
{
    if (!m_res)
        return false;
    const ExecStatusType s = PQresultStatus(m_res.get());
    return s == PGRES_COMMAND_OK || s == PGRES_TUPLES_OK;
}

QString Result::error() const
{
    if (!m_res)
        return u"the connection to the company server was lost"_s;
    return firstLine(PQresultErrorMessage(m_res.get())).remove(u"ERROR:  "_s);
}

QByteArray Result::state() const
{
    if (!m_res || ok())
        return {};
    const char *s = PQresultErrorField(m_res.get(), PG_DIAG_SQLSTATE);
    return s ? QByteArray(s) : QByteArray();
}

int Result::rows() const
{
    return m_res ? PQntuples(m_res.get()) : 0;
}

int Result::columns() const
{
    return m_res ? PQnfields(m_res.get()) : 0;
}

QString Result::text(int row, int col) const
{
    return QString::fromUtf8(PQgetvalue(m_res.get(), row, col), PQgetlength(m_res.get(), row, col));
}

QByteArray Result::bytes(int row, int col) const
{
    return QByteArray(PQgetvalue(m_res.get(), row, col), PQgetlength(m_res.get(), row, col));
}

qint64 Result::number(int row, int col) const
{
    return QByteArray(PQgetvalue(m_res.get(), row, col)).toLongLong();
}

bool Result::isNull(int row, int col) const
{
    return PQgetisnull(m_res.get(), row, col) == 1;
}

Conn::~Conn()
{
    close();
}

bool Conn::open(const QString &conninfo, const QString &password, QString *error)
{
    close();
    QString why;
    if (!conninfoValid(conninfo, &why)) {
        if (error)
            *error = why;
        return false;
    }
    // Where the connection goes: a host that is not a folder is a network address.
    QString host = conninfoValue(conninfo, "host");
    if (host.isEmpty())
        host = QString::fromLocal8Bit(envValue("PGHOST"));
    const QString hostaddr = conninfoValue(conninfo, "hostaddr");
    const bool tcp =
        !hostaddr.isEmpty() || (!host.isEmpty() && !host.startsWith(u'/') && !host.startsWith(u'@'));
    const bool sslChosen = !conninfoValue(conninfo, "sslmode").isEmpty() || !envValue("PGSSLMODE").isEmpty();

    std::vector<QByteArray> keys{"dbname"};
    std::vector<QByteArray> values{conninfo.toUtf8()};
    if (!password.isEmpty()) {
        keys.emplace_back("password");
        values.push_back(password.toUtf8());
    }
    if (tcp && !sslChosen) {
        keys.emplace_back("sslmode");
        values.emplace_back("verify-full");
    }
    if (conninfoValue(conninfo, "connect_timeout").isEmpty() && envValue("PGCONNECT_TIMEOUT").isEmpty()) {
        keys.emplace_back("connect_timeout");
        values.emplace_back("5");
    }
    keys.emplace_back("application_name");
    values.emplace_back("trestle");
    std::vector<const char *> k, v;
    for (size_t i = 0; i < keys.size(); ++i) {
        k.push_back(keys[i].constData());
        v.push_back(values[i].constData());
    }
    k.push_back(nullptr);
    v.push_back(nullptr);
    m_conn = PQconnectdbParams(k.data(), v.data(), 1);
    if (PQstatus(m_conn) != CONNECTION_OK) {
        if (error)
            *error = plainConnectError(m_conn, conninfo);
        close();
        return false;
    }
    const QString connectedHost = QString::fromUtf8(PQhost(m_conn));
    const bool overNetwork = !connectedHost.startsWith(u'/') && !connectedHost.startsWith(u'@');
    if (overNetwork && !PQsslInUse(m_conn)) {
        if (error)
            *error =
                u"the connection to the company server ("_s + describe(conninfo) +
                u") is not encrypted; over a network Trestle connects only with TLS (sslmode=verify-full "
                u"and the company's certificate file in sslrootcert)"_s;
        close();
        return false;
    }
    // The server's notices ("role already a member", ...) are not for the person at the terminal.
    PQsetNoticeProcessor(
        m_conn, [](void *, const char *) {}, nullptr);
    exec("SET client_encoding = 'UTF8'");
    return true;
}

bool Conn::isOpen() const
{
    return m_conn && PQstatus(m_conn) == CONNECTION_OK;
}

void Conn::close()
{
    if (m_conn)
        PQfinish(m_conn);
    m_conn = nullptr;
}

namespace {
Result run(pg_conn *conn, const char *sql, const Params &params, int resultFormat)
{
    if (!conn)
        return Result();
    std::vector<const char *> values;
    std::vector<int> lengths;
    std::vector<int> formats;
    for (const QByteArray &p : params) {
        values.push_back(p.isNull() ? nullptr : p.constData());
        lengths.push_back(int(p.size()));
        formats.push_back(0);
    }
    return Result(PQexecParams(conn, sql, int(params.size()), nullptr, values.data(), lengths.data(),
                               formats.data(), resultFormat));
}
} // namespace

Result Conn::exec(const char *sql, const Params &params)
{
    return run(m_conn, sql, params, 0);
}

Result Conn::script(const char *sql)
{
    return m_conn ? Result(PQexec(m_conn, sql)) : Result();
}

Result Conn::execBinary(const char *sql, const Params &params)
{
    return run(m_conn, sql, params, 1);
}

bool Conn::broken() const
{
    return !m_conn || PQstatus(m_conn) != CONNECTION_OK;
}

int Conn::socket() const
{
    return m_conn ? PQsocket(m_conn) : -1;
}

bool Conn::takeNotifications()
{
    if (!m_conn)
        return false;
    PQconsumeInput(m_conn);
    bool any = false;
    while (PGnotify *n = PQnotifies(m_conn)) {
        any = true;
        PQfreemem(n);
    }
    return any;
}

QString Conn::login() const
{
    return m_conn ? QString::fromUtf8(PQuser(m_conn)) : QString();
}

QString Conn::lastError() const
{
    return m_conn ? firstLine(PQerrorMessage(m_conn)) : QString();
}

QString Conn::quoteIdent(const QString &name) const
{
    const QByteArray utf8 = name.toUtf8();
    char *q = m_conn ? PQescapeIdentifier(m_conn, utf8.constData(), size_t(utf8.size())) : nullptr;
    if (!q)
        return QString();
    const QString out = QString::fromUtf8(q);
    PQfreemem(q);
    return out;
}

QString Conn::quoteLiteral(const QString &text) const
{
    const QByteArray utf8 = text.toUtf8();
    char *q = m_conn ? PQescapeLiteral(m_conn, utf8.constData(), size_t(utf8.size())) : nullptr;
    if (!q)
        return QString();
    const QString out = QString::fromUtf8(q);
    PQfreemem(q);
    return out;
}

QByteArray Conn::encryptPassword(const QString &password, const QString &login) const
{
    if (!m_conn)
        return {};
    char *v = PQencryptPasswordConn(m_conn, password.toUtf8().constData(), login.toUtf8().constData(),
                                    "scram-sha-256");
    if (!v)
        return {};
    const QByteArray out(v);
    PQfreemem(v);
    return out;
}

QString conninfoValue(const QString &conninfo, const char *key)
{
    char *err = nullptr;
    PQconninfoOption *opts = PQconninfoParse(conninfo.toUtf8().constData(), &err);
    if (err)
        PQfreemem(err);
    if (!opts)
        return QString();
    QString out;
    for (PQconninfoOption *o = opts; o->keyword; ++o)
        if (qstrcmp(o->keyword, key) == 0 && o->val)
            out = QString::fromUtf8(o->val);
    PQconninfoFree(opts);
    return out;
}

bool conninfoValid(const QString &conninfo, QString *error)
{
    char *err = nullptr;
    PQconninfoOption *opts = PQconninfoParse(conninfo.toUtf8().constData(), &err);
    if (!opts) {
        if (error)
            *error =
                u"the connection string cannot be read: "_s + (err ? firstLine(err) : u"out of memory"_s);
        if (err)
            PQfreemem(err);
        return false;
    }
    bool hasPassword = false;
    for (PQconninfoOption *o = opts; o->keyword; ++o)
        if (qstrcmp(o->keyword, "password") == 0 && o->val && *o->val)
            hasPassword = true;
    PQconninfoFree(opts);
    if (hasPassword) {
        // A password in the string would end up in settings, shell history and process lists.
        if (error)
            *error = u"the connection string holds a password; give it in PGPASSWORD, ~/.pgpass or at the "
                     u"prompt instead"_s;
        return false;
    }
    return true;
}

QString describe(const QString &conninfo)
{
    QString host = conninfoValue(conninfo, "host");
    if (host.isEmpty())
        host = conninfoValue(conninfo, "hostaddr");
    if (host.isEmpty())
        host = u"local socket"_s;
    QString out = host;
    const QString port = conninfoValue(conninfo, "port");
    if (!port.isEmpty() && port != u"5432")
        out += u':' + port;
    const QString db = conninfoValue(conninfo, "dbname");
    if (!db.isEmpty())
        out += u'/' + db;
    const QString user = conninfoValue(conninfo, "user");
    if (!user.isEmpty())
        out = user + u" at "_s + out;
    return out;
}

} // namespace Pg
