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
};

// Trestle's tables, functions and roles on a company server.
namespace ServerSchema {
// The version of the definitions this program makes and understands.
constexpr int kVersion = 1;
// The group role every login of a seat belongs to.
inline constexpr char kMemberRole[] = "trestle_member";

enum class Init { Created, AlreadySetUp, Refused, Failed };
// Creates everything in an empty database over an administrator's connection,
// in one transaction; a database already set up is left as it is, and one
// holding anything else is refused with nothing changed. `message` says what
// happened in plain words.
Init init(Pg::Conn &admin, const ServerCatalog &catalog, QString *message);
// Checks that a seat may work on this server: Trestle's tables are there and
// were made by a version this program understands. `serverId` receives the
// server's own id, which tells a seat's cache which server it mirrors.
bool check(Pg::Conn &conn, QString *serverId, QString *error);
} // namespace ServerSchema
