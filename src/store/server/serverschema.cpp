#include "serverschema.h"

#include "pg.h"
#include "store/rec.h"

using namespace Qt::StringLiterals;

namespace ServerSchemaSQL {
extern const char kRoles[];
extern const char kDefinitions[];
extern const char kGrants[];
extern const char kRoles2[];
extern const char kUpgrade2[];
} // namespace ServerSchemaSQL

namespace ServerSchema {

namespace {
// Whether the database holds anything of its own besides what PostgreSQL brings.
int foreignObjects(Pg::Conn &conn)
{
    const Pg::Result r =
        conn.exec("SELECT (SELECT count(*) FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
                  "        WHERE n.nspname NOT IN ('pg_catalog', 'information_schema') AND n.nspname NOT "
                  "LIKE 'pg_toast%' "
                  "          AND n.nspname NOT LIKE 'pg_temp%') "
                  "     + (SELECT count(*) FROM pg_proc p JOIN pg_namespace n ON n.oid = p.pronamespace "
                  "        WHERE n.nspname NOT IN ('pg_catalog', 'information_schema')) "
                  "     + (SELECT count(*) FROM pg_namespace n WHERE n.nspname NOT IN ('pg_catalog', "
                  "'information_schema', "
                  "        'public') AND n.nspname NOT LIKE 'pg_toast%' AND n.nspname NOT LIKE 'pg_temp%')");
    return r.ok() && r.rows() == 1 ? int(r.number(0, 0)) : -1;
}

bool hasTrestle(Pg::Conn &conn, int *version)
{
    const Pg::Result r = conn.exec("SELECT to_regclass('trestle.meta') IS NOT NULL");
    if (!r.ok() || r.text(0, 0) != u"t")
        return false;
    const Pg::Result v = conn.exec("SELECT value FROM trestle.meta WHERE key = 'schema_version'");
    *version = v.ok() && v.rows() == 1 ? v.text(0, 0).toInt() : 0;
    return true;
}
} // namespace

namespace {
// A text array literal for one parameter; every element quoted.
QByteArray textArray(const QStringList &items)
{
    QStringList quoted;
    for (QString item : items) {
        item.replace(u'\\', u"\\\\"_s);
        item.replace(u'"', u"\\\""_s);
        quoted.append(u'"' + item + u'"');
    }
    return (u'{' + quoted.join(u',') + u'}').toUtf8();
}

// Makes the rules read from the module table again, inside the caller's transaction.
bool refreshRules(Pg::Conn &admin, const ServerCatalog &catalog, QString *error)
{
    auto run = [&](const char *sql, const Pg::Params &params = {}) {
        const Pg::Result r = admin.exec(sql, params);
        if (!r.ok() && error)
            *error = r.error();
        return r.ok();
    };
    bool ok = run("DELETE FROM trestle.numbered") && run("DELETE FROM trestle.roles") &&
              run("DELETE FROM trestle.role_read") && run("DELETE FROM trestle.role_write") &&
              run("DELETE FROM trestle.role_write_denied") && run("DELETE FROM trestle.role_fields");
    ok = ok && run("INSERT INTO trestle.numbered (kind) SELECT unnest($1::text[])",
                   {textArray(catalog.numberedKinds)});
    for (const ServerCatalog::Role &role : catalog.roles) {
        const QByteArray name = role.name.toUtf8();
        ok = ok &&
             run("INSERT INTO trestle.roles (role, grp, restricted, hide_money, own_firm) VALUES ($1, $2, "
                 "$3, $4, $5)",
                 {name, role.group.toUtf8(), role.restricted ? "true" : "false",
                  role.hideMoney ? "true" : "false", role.ownFirmOnly ? "true" : "false"}) &&
             run("INSERT INTO trestle.role_read SELECT $1, unnest($2::text[])",
                 {name, textArray(role.readKinds)}) &&
             run("INSERT INTO trestle.role_write SELECT $1, unnest($2::text[])",
                 {name, textArray(role.writeKinds)}) &&
             run("INSERT INTO trestle.role_write_denied SELECT $1, unnest($2::text[])",
                 {name, textArray(role.deniedKinds)});
        for (auto it = role.fields.cbegin(); ok && it != role.fields.cend(); ++it)
            ok = run("INSERT INTO trestle.role_fields SELECT $1, $2, unnest($3::text[])",
                     {name, it.key().toUtf8(), textArray(it.value())});
    }
    // Each login is in the group of its member's role, as the rules now say.
    ok = ok &&
         run("SELECT trestle.sync_login_groups(m) FROM (SELECT DISTINCT member AS m FROM trestle.logins) x");
    return ok;
}
} // namespace

Init init(Pg::Conn &admin, const ServerCatalog &catalog, QString *message)
{
    auto say = [&](const QString &text) {
        if (message)
            *message = text;
    };
    auto failed = [&](const QString &why) {
        admin.exec("ROLLBACK");
        say(u"the database could not be set up: "_s + why);
        return Init::Failed;
    };
    int version = 0;
    const bool existing = hasTrestle(admin, &version);
    if (existing && version > kVersion) {
        say(u"the database was set up by a newer Trestle (version "_s + QString::number(version) +
            u"); this one understands version "_s + QString::number(kVersion));
        return Init::Refused;
    }
    if (!existing) {
        const int foreign = foreignObjects(admin);
        if (foreign != 0) {
            say(foreign < 0 ? u"the database could not be examined: "_s + admin.lastError()
                            : u"the database already holds tables or functions of its own; Trestle is set up "
                              u"only in an empty database"_s);
            return foreign < 0 ? Init::Failed : Init::Refused;
        }
    }
    // Roles are shared by every database of the server, so they are made apart
    // from the rest and only when missing.
    if (const Pg::Result r = admin.script(ServerSchemaSQL::kRoles); !r.ok())
        return failed(r.error());
    if (const Pg::Result r = admin.exec("BEGIN"); !r.ok())
        return failed(r.error());
    QStringList steps;
    if (!existing) {
        steps = {QString::fromUtf8(ServerSchemaSQL::kDefinitions),
                 QString::fromUtf8(ServerSchemaSQL::kGrants)};
        version = 1;
    }
    if (version < 2)
        steps += {QString::fromUtf8(ServerSchemaSQL::kRoles2), QString::fromUtf8(ServerSchemaSQL::kUpgrade2)};
    for (const QString &sql : std::as_const(steps))
        if (const Pg::Result r = admin.script(sql.toUtf8().constData()); !r.ok())
            return failed(r.error());
    if (!existing)
        if (const Pg::Result r = admin.exec("INSERT INTO trestle.meta (key, value) VALUES ('server_id', $1)",
                                            {newID().toUtf8()});
            !r.ok())
            return failed(r.error());
    if (const Pg::Result r = admin.exec("INSERT INTO trestle.meta (key, value) VALUES ('schema_version', $1) "
                                        "ON CONFLICT (key) DO UPDATE SET value = excluded.value",
                                        {QByteArray::number(kVersion)});
        !r.ok())
        return failed(r.error());
    QString why;
    if (!refreshRules(admin, catalog, &why))
        return failed(why);
    if (const Pg::Result r = admin.exec("COMMIT"); !r.ok())
        return failed(r.error());
    if (!existing) {
        say(u"the database is set up for Trestle"_s);
        return Init::Created;
    }
    if (!steps.isEmpty()) {
        say(u"the database is brought up to this version of Trestle"_s);
        return Init::Upgraded;
    }
    say(u"the database is already set up for Trestle; the rules of each role were made again"_s);
    return Init::AlreadySetUp;
}

bool check(Pg::Conn &conn, QString *serverId, QString *error)
{
    const Pg::Result r = conn.exec("SELECT schema_version, server_id FROM trestle.server_info()");
    if (!r.ok() || r.rows() != 1) {
        if (error)
            *error =
                r.state() == "42883" || r.state() == "3F000"
                    ? u"this database is not a Trestle company server (run trestle server init on it first)"_s
                    : u"the company server could not be asked about itself: "_s + r.error();
        return false;
    }
    const int version = r.text(0, 0).toInt();
    if (version > kVersion) {
        if (error)
            *error = u"the company server was set up by a newer Trestle (version "_s +
                     QString::number(version) + u"); update Trestle on this machine"_s;
        return false;
    }
    if (serverId)
        *serverId = r.text(0, 1);
    return true;
}

} // namespace ServerSchema
