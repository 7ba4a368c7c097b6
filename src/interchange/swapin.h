#pragma once
#include "backup.h"

// Shared by the restores of a zip and of a snapshot.
namespace Backup {
// Puts the ready folder `prepared` in the place of `dataFolder`, whose old
// contents move aside to "<name> (before restore <seconds>)" in the same
// parent. On failure nothing has changed and `prepared` is still where it was.
// `source` names what was restored from, for the message.
Result swapIn(const QString &prepared, const QString &dataFolder, const QString &source);
} // namespace Backup
