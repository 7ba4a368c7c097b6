#pragma once
#include <QtCore/QString>

class DB;
class ServerSync;

// Whether this data folder works on a company server, and the seat's link to it.
// The folder's own records stay untouched in "trestle.sqlite" while it is
// connected; the server's copy lives in "Server/" beside them, laid out as a
// data folder of its own, so backups and snapshots read it the same way.
namespace ServerLink {
// The file that says the folder is connected: the connection string, never a password.
QString markerPath();
bool isConnected();
// The connection string of the server this folder works on.
QString conninfo();
// The seat's copy of the server's records.
QString cachePath();
// Marks the folder connected to `conninfo`; false with a reason when the marker cannot be written.
bool connect(const QString &conninfo, QString *error);
// Makes the folder's copy ready for the server `serverId`: a copy of another
// server is moved aside, unless changes in it still wait to be sent.
bool prepareCache(const QString &serverId, QString *error);
// Returns the folder to its own records; the server's copy stays for a later connect.
bool disconnect(QString *error);
// Starts mirroring the server into the application's store `db`.
void attach(DB &db);
// The application's link, when the folder is connected and the store open.
ServerSync *sync();
// Verbs wait for the server's changes before they read, and ask for a
// password on the terminal when the server wants one that libpq's own
// sources (PGPASSWORD, ~/.pgpass) do not give.
void setHeadless(bool headless);
// The password the application's link starts with (kept in memory only).
void setPassword(const QString &password);
// Asks on the terminal, without echo; nothing when there is no terminal.
QString askPassword(const QString &prompt);
// Whether a failure to connect was the server turning the login away.
bool loginRefused(const QString &problem);
} // namespace ServerLink
