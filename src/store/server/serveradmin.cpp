#include "serveradmin.h"

#include "pg.h"
#include "store/db.h"
#include "store/recjson.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace ServerAdmin {

namespace {
// Records sent per statement: large enough to be quick, small enough to stay well within memory.
constexpr int kChunk = 5000;
} // namespace

QString fileSha256(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash h(QCryptographicHash::Sha256);
    if (!h.addData(&f))
        return QString();
    return QString::fromLatin1(h.result().toHex());
}

bool putFile(Pg::Conn &conn, const QString &company, const QString &name, const QString &path,
             QString *sha256, QString *error)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        *error = u"could not read "_s + path + u": "_s + f.errorString();
        return false;
    }
    const QByteArray data = f.readAll();
    const QString sha =
        QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
    const Pg::Result has = conn.exec("SELECT trestle.has_blob($1)", {sha.toUtf8()});
    if (!has.ok()) {
        *error = has.error();
        return false;
    }
    if (has.text(0, 0) != u"t") {
        const Pg::Result put =
            conn.exec("SELECT trestle.put_blob($1, decode($2, 'base64'))", {sha.toUtf8(), data.toBase64()});
        if (!put.ok()) {
            *error = put.error();
            return false;
        }
    }
    const Pg::Result named =
        conn.exec("SELECT trestle.put_file($1, $2, $3)", {company.toUtf8(), name.toUtf8(), sha.toUtf8()});
    if (!named.ok()) {
        *error = named.error();
        return false;
    }
    if (sha256)
        *sha256 = sha;
    return true;
}

bool push(Pg::Conn &admin, const DB &db, QString *summary, QString *error)
{
    const QList<Rec> companies = db.list(u"company"_s);
    if (companies.isEmpty()) {
        *error = u"this data folder has no company to push"_s;
        return false;
    }
    QStringList ids;
    for (const Rec &c : companies)
        ids.append(c.id);
    const QByteArray idArray = u"{"_s.append(ids.join(u',')).append(u'}').toUtf8();
    const Pg::Result there = admin.exec(
        "SELECT DISTINCT r.company FROM trestle.recs r WHERE r.company = ANY($1::text[]) AND NOT r.deleted",
        {idArray});
    if (!there.ok()) {
        *error = there.error();
        return false;
    }
    if (there.rows() > 0) {
        const Rec *c = db.find(there.text(0, 0));
        *error = u"the company \""_s + (c ? c->f.value(u"name") : there.text(0, 0)) +
                 u"\" is already on the server; nothing was pushed"_s;
        return false;
    }
    auto fail = [&](const QString &why) {
        admin.exec("ROLLBACK");
        *error = why;
        return false;
    };
    // The first copy is not a change anybody made: no history lines and no wake-ups for it.
    if (!admin.exec("BEGIN").ok() || !admin.exec("SELECT pg_advisory_xact_lock(2063514631)").ok() ||
        !admin.exec("SET LOCAL session_replication_role = replica").ok())
        return fail(admin.lastError());
    QList<const Rec *> all;
    db.forEach([&](const Rec &r) {
        if (ids.contains(r.company))
            all.append(&r);
    });
    for (qsizetype start = 0; start < all.size(); start += kChunk) {
        QByteArray json = "[";
        for (qsizetype k = start; k < std::min(all.size(), start + kChunk); ++k) {
            if (k > start)
                json += ',';
            json += RecJSON::encode(*all.at(k));
        }
        json += ']';
        const Pg::Result r = admin.exec(
            "INSERT INTO trestle.recs (id, company, kind, project, parent, created, updated, f, version, "
            "pos, "
            "deleted, changed_by, changed_at) SELECT x.id, x.company, x.kind, x.project, x.parent, "
            "x.created, "
            "x.updated, x.f, 1, nextval('trestle.positions'), false, session_user, now() FROM "
            "jsonb_to_recordset($1::jsonb) AS x(id text, company text, kind text, project text, parent text, "
            "created double precision, updated double precision, f jsonb)",
            {json});
        if (!r.ok())
            return fail(r.state() == "23505" ? u"some records are already on the server; nothing was pushed"_s
                                             : r.error());
    }
    int files = 0;
    for (const QString &company : std::as_const(ids)) {
        const QDir folder(QDir(db.filesRoot()).filePath(company));
        const QStringList names = folder.entryList(QDir::Files | QDir::NoDotAndDotDot);
        for (const QString &name : names) {
            QString why;
            if (!putFile(admin, company, name, folder.filePath(name), nullptr, &why))
                return fail(why);
            ++files;
        }
    }
    if (!admin.exec("COMMIT").ok())
        return fail(admin.lastError());
    *summary = QString::number(companies.size()) +
               (companies.size() == 1 ? u" company, "_s : u" companies, "_s) + QString::number(all.size()) +
               u" records and "_s + QString::number(files) + u" files"_s;
    return true;
}

bool validLogin(const QString &login, QString *error)
{
    // Lower-case letters, digits, dot, dash and underscore: a name that needs
    // no quoting anywhere a person may type it (psql, ~/.pgpass, a URI).
    static const QRegularExpression ok(u"^[a-z_][a-z0-9_.-]{0,62}$"_s);
    if (ok.match(login).hasMatch() && !login.startsWith(u"pg_"_s) && !login.startsWith(u"trestle_"_s))
        return true;
    if (error)
        *error =
            u"\""_s + login +
            u"\" cannot be a login: use lower-case letters, digits, '.', '-' or '_' (at most 63), starting "
            u"with a letter"_s;
    return false;
}

bool addLogin(Pg::Conn &admin, const QString &login, const QString &memberId, const QString &password,
              QString *error)
{
    if (!validLogin(login, error))
        return false;
    if (password.isEmpty()) {
        *error = u"the password is empty"_s;
        return false;
    }
    const Pg::Result member = admin.exec("SELECT r.company, r.f->>'name' FROM trestle.recs r WHERE r.id = $1 "
                                         "AND r.kind = 'user' AND NOT r.deleted",
                                         {memberId.toUtf8()});
    if (!member.ok()) {
        *error = member.error();
        return false;
    }
    if (member.rows() != 1) {
        *error = u"no team member "_s + memberId + u" is on the server"_s;
        return false;
    }
    const QString company = member.text(0, 0);
    const Pg::Result taken =
        admin.exec("SELECT member FROM trestle.logins WHERE login = $1", {login.toUtf8()});
    if (taken.ok() && taken.rows() == 1 && taken.text(0, 0) != memberId) {
        *error = u"the login "_s + login + u" belongs to another team member"_s;
        return false;
    }
    const QByteArray verifier = admin.encryptPassword(password, login);
    if (verifier.isEmpty()) {
        *error = u"the password could not be prepared: "_s + admin.lastError();
        return false;
    }
    const Pg::Result exists = admin.exec("SELECT 1 FROM pg_roles WHERE rolname = $1", {login.toUtf8()});
    const bool roleExists = exists.ok() && exists.rows() == 1;
    if (roleExists && !(taken.ok() && taken.rows() == 1)) {
        *error = u"the server already has a role named "_s + login + u" that is not a Trestle login"_s;
        return false;
    }
    // Role statements take no parameters: the name and the verifier are quoted by libpq.
    const QString ident = admin.quoteIdent(login);
    const QString literal = admin.quoteLiteral(QString::fromUtf8(verifier));
    const QString sql =
        (roleExists ? u"ALTER ROLE "_s : u"CREATE ROLE "_s) + ident + u" LOGIN PASSWORD "_s + literal;
    auto fail = [&](const QString &why) {
        admin.exec("ROLLBACK");
        *error = why;
        return false;
    };
    if (!admin.exec("BEGIN").ok())
        return fail(admin.lastError());
    if (const Pg::Result r = admin.exec(sql.toUtf8().constData()); !r.ok())
        return fail(r.error());
    if (const Pg::Result r =
            admin.exec("INSERT INTO trestle.logins (login, company, member) VALUES ($1, $2, $3) "
                       "ON CONFLICT (login) DO UPDATE SET disabled = false",
                       {login.toUtf8(), company.toUtf8(), memberId.toUtf8()});
        !r.ok())
        return fail(r.error());
    // The login gets what the group of its member's role is granted, and nothing of its own.
    if (const Pg::Result r = admin.exec("SELECT trestle.sync_login_groups($1)", {memberId.toUtf8()}); !r.ok())
        return fail(r.error());
    if (!admin.exec("COMMIT").ok())
        return fail(admin.lastError());
    return true;
}

} // namespace ServerAdmin
