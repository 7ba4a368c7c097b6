#pragma once
#include <QtCore/QHash>
#include <QtCore/QStringList>

namespace Pg {
class Conn;
}

// What the server's definitions are made from, read from the module table by
// the caller (the store knows no modules).
struct ServerCatalog
{
    // Kinds whose `number` must stay unique within a project (or company-wide).
    QStringList numberedKinds;

    // What one role of the team may read and change.
    // Invariant: a restricted role reads only `readKinds` and changes only
    // `writeKinds`; any other role reads everything and changes all but
    // `deniedKinds`. A role that hides money sees, of each kind, only `fields`.
    struct Role
    {
        QString name;  // "Field"
        QString group; // the server's group role, "trestle_role_field"
        bool restricted = false;
        bool hideMoney = false;
        // Reads and changes only records that concern the firm its member works for.
        bool ownFirmOnly = false;
        QStringList readKinds;
        QStringList writeKinds;
        QStringList deniedKinds;
        QHash<QString, QStringList> fields;
    };
    QList<Role> roles;
};

// Trestle's tables, functions and roles on a company server.
namespace ServerSchema {
// The version of the definitions this program makes and understands.
constexpr int kVersion = 2;
// The group role every login of a seat belongs to.
inline constexpr char kMemberRole[] = "trestle_member";

enum class Init { Created, Upgraded, AlreadySetUp, Refused, Failed };
// Creates everything in an empty database over an administrator's connection,
// in one transaction; a database already set up is left as it is, and one
// holding anything else is refused with nothing changed; one made by an older
// version is brought up to this one. Each time, the rules of what each role
// may see and change are made again from `catalog`. `message` says what
// happened in plain words.
Init init(Pg::Conn &admin, const ServerCatalog &catalog, QString *message);
// Checks that a seat may work on this server: Trestle's tables are there and
// were made by a version this program understands. `serverId` receives the
// server's own id, which tells a seat's cache which server it mirrors.
bool check(Pg::Conn &conn, QString *serverId, QString *error);
} // namespace ServerSchema
