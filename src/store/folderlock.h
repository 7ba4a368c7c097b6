#pragma once
#include <QtCore/QString>

#include <memory>

class QLockFile;

// One writer per data folder. The window holds the folder's lock for its whole
// life; a verb that writes holds it while it runs. A lock left by a process
// that is gone is taken over without asking.
namespace FolderLock {
// The lock file of `dataFolder`: beside it, so a restore that swaps the folder
// or a backup of it never carries the lock along.
QString lockPath(const QString &dataFolder);
// Whether a live process holds `dataFolder`; `holder` gets a description of it
// such as "process 4242 (trestle)".
bool windowHolds(const QString &dataFolder, QString *holder = nullptr);
// The name of the local socket through which a running window is brought to the front.
QString socketName(const QString &dataFolder);

// A held lock, released when destroyed.
class Hold
{
public:
    Hold();
    ~Hold();
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    // Takes the lock of `dataFolder`. False when another live process holds it
    // (`holder` says which) or the lock cannot be written (`holder` stays empty,
    // `problem` says why).
    bool take(const QString &dataFolder, QString *holder = nullptr, QString *problem = nullptr);
    bool held() const;

private:
    std::unique_ptr<QLockFile> m_lock;
};
} // namespace FolderLock
