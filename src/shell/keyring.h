#pragma once
#include <QtCore/QString>

// The company server's password in the desktop's keyring, under the
// connection string it opens. Nothing is kept when there is no keyring.
namespace Keyring {
// The kept password, or the empty text (no keyring, nothing kept, or no answer within a few seconds).
QString password(const QString &conninfo);
// Keeps the password; false with the keyring's reason in `error`.
bool keep(const QString &conninfo, const QString &password, QString *error);
// Forgets it (on disconnect).
void forget(const QString &conninfo);
} // namespace Keyring
