// The company server from the command line: set one up, push this folder's
// companies to it, make logins, and connect this folder to it or back.
#include "catalog/serverrules.h"
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/seatcache.h"
#include "store/server/serveradmin.h"
#include "store/server/serverlink.h"
#include "store/server/serverschema.h"
#include "store/server/serversync.h"
#include "verbs.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

int fail(QTextStream &err, const QString &line)
{
    err << "trestle: " << line << '\n';
    return 1;
}

int usage(QTextStream &err, const QString &verb)
{
    err << "usage: trestle " << verb << ' ' << Verbs::find(verb)->usage << '\n';
    return 2;
}

// The server's definitions follow the module table.
ServerCatalog catalog()
{
    return ServerRules::fromCatalog();
}

// Connects, asking for the password on the terminal when libpq's own sources give none that works.
bool open(Pg::Conn &conn, const QString &conninfo, QString *password, QString *error)
{
    if (conn.open(conninfo, QString(), error))
        return true;
    if (!ServerLink::loginRefused(*error))
        return false;
    const QString typed = ServerLink::askPassword(u"Password for "_s + Pg::describe(conninfo) + u": "_s);
    if (typed.isEmpty())
        return false;
    if (!conn.open(conninfo, typed, error))
        return false;
    if (password)
        *password = typed;
    return true;
}

int serverInit(const QString &conninfo, QTextStream &out, QTextStream &err)
{
    Pg::Conn admin;
    QString error;
    if (!open(admin, conninfo, nullptr, &error))
        return fail(err, error);
    QString message;
    switch (ServerSchema::init(admin, catalog(), &message)) {
    case ServerSchema::Init::Created:
    case ServerSchema::Init::Upgraded:
    case ServerSchema::Init::AlreadySetUp: out << Pg::describe(conninfo) << ": " << message << '\n'; return 0;
    case ServerSchema::Init::Refused:
    case ServerSchema::Init::Failed: break;
    }
    return fail(err, Pg::describe(conninfo) + u": "_s + message);
}

int serverPush(const QString &conninfo, QTextStream &out, QTextStream &err)
{
    Pg::Conn admin;
    QString error;
    if (!open(admin, conninfo, nullptr, &error))
        return fail(err, error);
    if (!ServerSchema::check(admin, nullptr, &error))
        return fail(err, error);
    // Always this folder's own records, also while it works on a server.
    DB local(QDir(DB::appFolder()).filePath(u"trestle.sqlite"_s));
    if (!local.isOpen())
        return fail(err, local.openProblem());
    QString summary;
    if (!ServerAdmin::push(admin, local, &summary, &error))
        return fail(err, error);
    out << "Pushed " << summary << " to " << Pg::describe(conninfo) << '\n';
    return 0;
}

int serverAddLogin(const QStringList &args, QTextStream &out, QTextStream &err)
{
    // <conninfo> <login> --user <member-id> --password-stdin
    QString conninfo, login, member;
    bool fromStdin = false;
    for (qsizetype k = 0; k < args.size(); ++k) {
        const QString &a = args.at(k);
        if (a == u"--user" && k + 1 < args.size())
            member = args.at(++k);
        else if (a == u"--password-stdin")
            fromStdin = true;
        else if (a.startsWith(u"--"_s))
            return usage(err, u"server"_s);
        else if (conninfo.isEmpty())
            conninfo = a;
        else if (login.isEmpty())
            login = a;
        else
            return usage(err, u"server"_s);
    }
    if (conninfo.isEmpty() || login.isEmpty() || member.isEmpty() || !fromStdin)
        return usage(err, u"server"_s);
    QString error;
    if (!ServerAdmin::validLogin(login, &error))
        return fail(err, error);
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly))
        return fail(err, u"could not read the password from standard input"_s);
    QString password = QString::fromUtf8(in.readLine());
    while (password.endsWith(u'\n') || password.endsWith(u'\r'))
        password.chop(1);
    if (password.isEmpty())
        return fail(err, u"no password on standard input"_s);
    Pg::Conn admin;
    if (!open(admin, conninfo, nullptr, &error))
        return fail(err, error);
    if (!ServerSchema::check(admin, nullptr, &error))
        return fail(err, error);
    if (!ServerAdmin::addLogin(admin, login, member, password, &error))
        return fail(err, error);
    out << "Login " << login << " is ready for team member " << member << '\n';
    return 0;
}

int server(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.isEmpty())
        return usage(err, u"server"_s);
    const QString what = args.first();
    const QStringList rest = args.mid(1);
    if (what == u"add-login")
        return serverAddLogin(rest, out, err);
    if (rest.size() != 1 || rest.first().startsWith(u"--"_s))
        return usage(err, u"server"_s);
    QString error;
    if (!Pg::conninfoValid(rest.first(), &error))
        return fail(err, error);
    if (what == u"init")
        return serverInit(rest.first(), out, err);
    if (what == u"push")
        return serverPush(rest.first(), out, err);
    return usage(err, u"server"_s);
}

int connectVerb(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1 || args.first().startsWith(u"--"_s))
        return usage(err, u"connect"_s);
    const QString conninfo = args.first();
    QString error, password, serverId;
    if (!Pg::conninfoValid(conninfo, &error))
        return fail(err, error);
    {
        Pg::Conn probe;
        if (!open(probe, conninfo, &password, &error))
            return fail(err, error);
        if (!ServerSchema::check(probe, &serverId, &error))
            return fail(err, error);
    }
    if (!ServerLink::prepareCache(serverId, &error) || !ServerLink::connect(conninfo, &error))
        return fail(err, error);
    ServerLink::setPassword(password);
    DB &db = DB::shared();
    ServerSync *sync = ServerLink::sync();
    if (!sync || !sync->caughtUp())
        return fail(err, sync ? sync->problem() : db.openProblem());
    out << "Connected to " << Pg::describe(conninfo) << " as " << sync->login() << '\n';
    const QList<Rec> companies = db.list(u"company"_s);
    if (companies.isEmpty())
        out << "The server holds no company yet (trestle server push uploads this folder's)\n";
    for (const Rec &c : companies)
        out << "  " << c.f.value(u"name") << " (" << c.id << ")\n";
    return 0;
}

int disconnectVerb(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty())
        return usage(err, u"disconnect"_s);
    if (!ServerLink::isConnected()) {
        out << "This data folder already works on its own records\n";
        return 0;
    }
    qsizetype waiting = 0;
    {
        DB cache(ServerLink::cachePath());
        if (cache.isOpen())
            waiting = SeatCache(cache).waiting();
    }
    QString error;
    if (!ServerLink::disconnect(&error))
        return fail(err, error);
    out << "Disconnected: this data folder works on its own records again\n";
    if (waiting > 0)
        out << waiting << (waiting == 1 ? " change" : " changes")
            << " not yet sent stay in the server's copy and go out when you connect again\n";
    return 0;
}

// A value on one tab-separated line: tabs and line ends written as \t and \n.
QString oneLine(QString value)
{
    value.replace(u'\\', u"\\\\"_s);
    value.replace(u'\t', u"\\t"_s);
    value.replace(u'\n', u"\\n"_s);
    value.replace(u'\r', u"\\r"_s);
    return value;
}

int historyVerb(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1 || args.first().startsWith(u"--"_s))
        return usage(err, u"history"_s);
    if (!ServerLink::isConnected())
        return fail(err,
                    u"the history of changes is kept by a company server; this data folder works on its own "
                    u"records"_s);
    const QString id = args.first();
    Pg::Conn conn;
    QString error;
    if (!open(conn, ServerLink::conninfo(), nullptr, &error))
        return fail(err, error);
    if (!ServerSchema::check(conn, nullptr, &error))
        return fail(err, error);
    const Pg::Result seen = conn.exec("SELECT count(*) FROM trestle.rec($1)", {id.toUtf8()});
    if (!seen.ok())
        return fail(err, seen.error());
    if (seen.text(0, 0) == u"0")
        return fail(err, u"no record "_s + id + u" that this login may read"_s);
    const Pg::Result h =
        conn.exec("SELECT to_char(at AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"'), login, "
                  "field, coalesce(old_value, ''), coalesce(new_value, '') FROM trestle.history_of($1)",
                  {id.toUtf8()});
    if (!h.ok())
        return fail(err, h.error());
    for (int i = 0; i < h.rows(); ++i)
        out << h.text(i, 0) << '\t' << h.text(i, 1) << '\t' << h.text(i, 2) << '\t' << oneLine(h.text(i, 3))
            << '\t' << oneLine(h.text(i, 4)) << '\n';
    return 0;
}

const Verbs::Register regHistory(
    {u"history"_s, u"<record-id>"_s,
     u"Print a record's changes on the company server: time, login, field, old, new"_s, &historyVerb});
const Verbs::Register regServer({u"server"_s,
                                 u"init|push <conninfo> | add-login <conninfo> <login> --user <member-id> "
                                 u"--password-stdin"_s,
                                 u"Set up a company server, push this folder's companies, or make a login"_s,
                                 &server});
const Verbs::Register regConnect({u"connect"_s, u"<conninfo>"_s,
                                  u"Work on a company server from this data folder"_s, &connectVerb, true});
const Verbs::Register regDisconnect({u"disconnect"_s, QString(),
                                     u"Return this data folder to its own records"_s, &disconnectVerb, true});

} // namespace
