#include "serverschema.h"

#include "pg.h"
#include "store/rec.h"

using namespace Qt::StringLiterals;

namespace ServerSchemaSQL {
extern const char kRoles[];
extern const char kDefinitions[];
extern const char kGrants[];
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

Init init(Pg::Conn &admin, const ServerCatalog &catalog, QString *message)
{
    auto say = [&](const QString &text) {
        if (message)
            *message = text;
    };
    int version = 0;
    if (hasTrestle(admin, &version)) {
        if (version > kVersion) {
            say(u"the database was set up by a newer Trestle (version "_s + QString::number(version) +
                u"); this one understands version "_s + QString::number(kVersion));
            return Init::Refused;
        }
        say(u"the database is already set up for Trestle"_s);
        return Init::AlreadySetUp;
    }
    const int foreign = foreignObjects(admin);
    if (foreign != 0) {
        say(foreign < 0
                ? u"the database could not be examined: "_s + admin.lastError()
                : u"the database already holds tables or functions of its own; Trestle is set up only "
                  u"in an empty database"_s);
        return foreign < 0 ? Init::Failed : Init::Refused;
    }
    auto failed = [&](const Pg::Result &r) {
        admin.exec("ROLLBACK");
        say(u"the database could not be set up: "_s + r.error());
        return Init::Failed;
    };
    // Roles are shared by every database of the server, so they are made apart
    // from the rest and only when missing.
    if (const Pg::Result r = admin.script(ServerSchemaSQL::kRoles); !r.ok())
        return failed(r);
    if (const Pg::Result r = admin.exec("BEGIN"); !r.ok())
        return failed(r);
    for (const char *sql : {ServerSchemaSQL::kDefinitions, ServerSchemaSQL::kGrants})
        if (const Pg::Result r = admin.script(sql); !r.ok())
            return failed(r);
    const Pg::Params meta[] = {{"schema_version", QByteArray::number(kVersion)},
                               {"server_id", newID().toUtf8()}};
    for (const Pg::Params &p : meta)
        if (const Pg::Result r = admin.exec("INSERT INTO trestle.meta (key, value) VALUES ($1, $2)", p);
            !r.ok())
            return failed(r);
    for (const QString &kind : catalog.numberedKinds)
        if (const Pg::Result r =
                admin.exec("INSERT INTO trestle.numbered (kind) VALUES ($1)", {kind.toUtf8()});
            !r.ok())
            return failed(r);
    if (const Pg::Result r = admin.exec("COMMIT"); !r.ok())
        return failed(r);
    say(u"the database is set up for Trestle"_s);
    return Init::Created;
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
