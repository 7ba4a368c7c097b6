#include "folderlock.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLockFile>
#include <QtCore/QSysInfo>

#include <cerrno>
#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace FolderLock {

namespace {

QString describe(const QLockFile &lock)
{
    qint64 pid = 0;
    QString host;
    QString app;
    if (!lock.getLockInfo(&pid, &host, &app))
        return u"another process"_s;
    QString out = u"process "_s + QString::number(pid);
    if (!app.isEmpty())
        out += u" ("_s + app + u')';
    if (!host.isEmpty() && host != QSysInfo::machineHostName())
        out += u" on "_s + host;
    return out;
}

void prepare(QLockFile &lock)
{
    // Never stale by age: a window may stay open for weeks. A lock whose
    // process is gone is recognised as stale by QLockFile itself.
    lock.setStaleLockTime(0);
}

} // namespace

QString lockPath(const QString &dataFolder)
{
    const QFileInfo info(dataFolder);
    return QDir(info.absolutePath()).filePath(info.fileName() + u".lock"_s);
}

QString socketName(const QString &dataFolder)
{
    const QByteArray key = QFileInfo(dataFolder).absoluteFilePath().toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(16);
    return u"trestle-"_s + QString::number(::getuid()) + u'-' + QString::fromLatin1(hash);
}

bool windowHolds(const QString &dataFolder, QString *holder)
{
    // Only read, never taken: taking the lock even for a moment would make a
    // window starting at that moment believe another one is open.
    const QLockFile lock(lockPath(dataFolder));
    qint64 pid = 0;
    QString host;
    QString app;
    if (!lock.getLockInfo(&pid, &host, &app) || pid <= 0)
        return false;
    // A process on another machine cannot be asked; its lock stands.
    const bool here = host.isEmpty() || host == QSysInfo::machineHostName();
    if (here && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH)
        return false;
    if (holder)
        *holder = describe(lock);
    return true;
}

Hold::Hold() = default;
Hold::~Hold() = default;

bool Hold::take(const QString &dataFolder, QString *holder, QString *problem)
{
    const QString path = lockPath(dataFolder);
    QDir().mkpath(QFileInfo(path).absolutePath());
    m_lock = std::make_unique<QLockFile>(path);
    prepare(*m_lock);
    if (m_lock->tryLock(0))
        return true;
    if (m_lock->error() == QLockFile::LockFailedError) {
        if (holder)
            *holder = describe(*m_lock);
    } else if (problem) {
        *problem =
            m_lock->error() == QLockFile::PermissionError
                ? u"Trestle may not write in "_s + QDir::toNativeSeparators(QFileInfo(path).absolutePath())
                : u"Trestle could not write its lock file "_s + QDir::toNativeSeparators(path);
    }
    m_lock.reset();
    return false;
}

bool Hold::held() const
{
    return m_lock && m_lock->isLocked();
}

} // namespace FolderLock
