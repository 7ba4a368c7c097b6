#pragma once
#include <QtCore/QString>

class DB;
namespace Pg {
class Conn;
}

// What an administrator's connection does to a company server beyond setting it up.
namespace ServerAdmin {

// Uploads every company of `db`, records and stored files, in one transaction
// for the records. A company already on the server is refused with nothing
// changed. `summary` says what went up.
bool push(Pg::Conn &admin, const DB &db, QString *summary, QString *error);

// Creates the server login `login` (a login role with a SCRAM password that
// never travels as plain text) for the team member `memberId` of a company on
// the server, or sets a new password when the login exists for that member.
bool addLogin(Pg::Conn &admin, const QString &login, const QString &memberId, const QString &password,
              QString *error);

// Whether `login` is a name a server login may have.
bool validLogin(const QString &login, QString *error);

// Sends one stored file's bytes (by their SHA-256) and names them for a company.
bool putFile(Pg::Conn &conn, const QString &company, const QString &name, const QString &path,
             QString *sha256, QString *error);
// The SHA-256 of a file's contents as lower-case hex, or the empty text when unreadable.
QString fileSha256(const QString &path);

} // namespace ServerAdmin
