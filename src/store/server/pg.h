#pragma once
#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

struct pg_conn;
struct pg_result;

// A thin owner of libpq's connection and results. SQL text never carries a
// value: every value goes in as a parameter.
namespace Pg {

// One result of a statement. Text values only; a null value reads as the empty text.
class Result
{
public:
    Result() = default;
    explicit Result(pg_result *res);
    // Whether the statement ran (command or rows).
    bool ok() const;
    // The server's message when it did not, first line only.
    QString error() const;
    // The five-character SQLSTATE of a failure, empty otherwise.
    QByteArray state() const;
    int rows() const;
    int columns() const;
    QString text(int row, int col) const;
    QByteArray bytes(int row, int col) const;
    qint64 number(int row, int col) const;
    bool isNull(int row, int col) const;

private:
    std::shared_ptr<pg_result> m_res;
};

// Parameters of one statement; a null QByteArray is SQL NULL.
using Params = QList<QByteArray>;

// One connection. Blocking calls: use it off the window's thread.
class Conn
{
public:
    Conn() = default;
    ~Conn();
    Conn(const Conn &) = delete;
    Conn &operator=(const Conn &) = delete;

    // Connects with a libpq connection string or URI; `password`, when not
    // empty, is given to libpq without ever being written anywhere. Over TCP
    // the server must be encrypted and verified unless the string itself asks
    // for less; a plain connection over TCP is refused. False with a reason
    // in plain words (never holding the password) in `error`.
    bool open(const QString &conninfo, const QString &password, QString *error);
    bool isOpen() const;
    void close();
    // Runs `sql` with text parameters $1, $2...
    Result exec(const char *sql, const Params &params = {});
    // Runs several statements of fixed text (the server's definitions); no parameters.
    Result script(const char *sql);
    // Binary result columns (for file contents).
    Result execBinary(const char *sql, const Params &params);
    // Whether the connection broke (the server went away).
    bool broken() const;
    // The descriptor to wait on for notifications; -1 when closed.
    int socket() const;
    // Reads what arrived and drains the notifications; true when any came.
    bool takeNotifications();
    // The login the server knows this connection as.
    QString login() const;
    QString lastError() const;
    // Quotes a name for the few statements that take no parameters (roles).
    QString quoteIdent(const QString &name) const;
    QString quoteLiteral(const QString &text) const;
    // The password verifier to store for `login`, computed here so the
    // password itself never travels in a statement.
    QByteArray encryptPassword(const QString &password, const QString &login) const;
    pg_conn *raw() const { return m_conn; }

private:
    pg_conn *m_conn = nullptr;
};

// The value of `key` in a connection string (empty when absent or unreadable).
QString conninfoValue(const QString &conninfo, const char *key);
// Whether `conninfo` parses; the reason in `error` when not.
bool conninfoValid(const QString &conninfo, QString *error);
// The connection string shown to people: host, port, database and login only.
QString describe(const QString &conninfo);

} // namespace Pg
