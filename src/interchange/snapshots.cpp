#include "snapshots.h"

#include "storecopy.h"
#include "swapin.h"

#include "store/db.h"
#include "store/rec.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtCore/QThread>
#include <QtCore/QtEndian>

#include <cerrno>
#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString kFormat = u"yyyy-MM-dd HHmmss"_s;
const QString kPartial = u".partial-"_s;
const QString kDatabase = u"trestle.sqlite"_s;

Backup::Result failed(const QString &why)
{
    return {false, u"Snapshot failed"_s, u"Could not make a snapshot: "_s + why + u'.'};
}

// The moment a snapshot folder's name stands for; invalid for any other name.
QDateTime takenOf(const QString &name)
{
    if (name.size() != kFormat.size())
        return {};
    return QDateTime::fromString(name, kFormat);
}

struct Entry
{
    QString path;
    QDateTime taken;
};

// Every folder named as a snapshot, newest first, whether whole or not.
QList<Entry> entries(const QString &dataFolder)
{
    QList<Entry> out;
    const QDir dir(Snapshots::folder(dataFolder));
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QDateTime taken = takenOf(name);
        if (taken.isValid())
            out.append({dir.filePath(name), taken});
    }
    std::sort(out.begin(), out.end(), [](const Entry &a, const Entry &b) { return a.taken > b.taken; });
    return out;
}

// Whether the file is a whole SQLite database by its header: a copy cut short
// is shorter than the pages the header counts.
bool wholeDatabase(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(100);
    if (head.size() < 100 || !head.startsWith(QByteArray("SQLite format 3\0", 16)))
        return false;
    const auto *b = reinterpret_cast<const uchar *>(head.constData());
    qint64 pageSize = qFromBigEndian<quint16>(b + 16);
    if (pageSize == 1)
        pageSize = 65536;
    if (pageSize < 512 || (pageSize & (pageSize - 1)) != 0)
        return false;
    const qint64 size = file.size();
    // The page count in the header counts only when written with the change counter.
    if (qFromBigEndian<quint32>(b + 24) == qFromBigEndian<quint32>(b + 92)) {
        const qint64 pages = qFromBigEndian<quint32>(b + 28);
        if (pages > 0)
            return size == pages * pageSize;
    }
    return size > 0 && size % pageSize == 0;
}

// The rows of the record table of a snapshot, or -1 when it does not read.
qint64 recordsOf(const QString &snapshot)
{
    const QString db = QDir(snapshot).filePath(kDatabase);
    if (!wholeDatabase(db))
        return -1;
    StoreCopy copy(db);
    return copy.records();
}

// Links (or, across disks, copies) every stored file of `from` into `to`,
// keeping the tree; folders are made as they come. Empty on success.
QString linkTree(const QString &from, const QString &to)
{
    const QDir source(from);
    QDirIterator it(from, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        const QString relative = source.relativeFilePath(info.filePath());
        if (liveOnly(relative) || info.isSymLink())
            continue;
        const QString target = QDir(to).filePath(relative);
        if (info.isDir()) {
            if (!QDir().mkpath(target))
                return u"the folder "_s + relative + u" could not be made"_s;
            continue;
        }
        if (!info.isFile())
            continue;
        QDir().mkpath(QFileInfo(target).absolutePath());
        const QByteArray src = QFile::encodeName(info.filePath());
        if (::link(src.constData(), QFile::encodeName(target).constData()) == 0)
            continue;
        if (errno == ENOENT && !QFileInfo::exists(info.filePath()))
            continue; // removed since the walk began, with its record
        if (errno == ENOSPC)
            return u"the disk is full"_s;
        if (!QFile::copy(info.filePath(), target)) {
            QFile::remove(target);
            return u"the file "_s + relative + u" could not be copied"_s;
        }
    }
    return {};
}

bool processGone(qint64 pid)
{
    return pid > 0 && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
}

// Makes the snapshot from a moment already pinned.
Backup::Result makeFrom(StoreCopy &copy, const QString &dataFolder, const QDateTime &now, QString *madePath)
{
    if (!copy.error().isEmpty())
        return failed(u"the store could not be read ("_s + copy.error() + u')');
    if (const QString verdict = copy.check(); !verdict.isEmpty())
        return failed(u"the store did not pass its check: "_s + verdict);
    const QString home = Snapshots::folder(dataFolder);
    if (!QFileInfo(home).isDir()) {
        if (!QDir().mkpath(home))
            return failed(u"the folder "_s + QDir::toNativeSeparators(home) + u" could not be made"_s);
        // The books of a company are nobody else's business, in a copy as much as in the original.
        QFile::setPermissions(home, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    // Built under a name no list shows, so a stop halfway leaves no snapshot
    // that looks finished; the process id tells prune when it is abandoned.
    const QString partial =
        QDir(home).filePath(kPartial + QString::number(QCoreApplication::applicationPid()) + u'-' + newID());
    auto giveUp = [&](const QString &why) {
        QDir(partial).removeRecursively();
        return failed(why);
    };
    if (!QDir().mkpath(partial))
        return giveUp(u"the folder "_s + QDir::toNativeSeparators(home) + u" could not be written"_s);
    if (const QString why = linkTree(dataFolder, partial); !why.isEmpty())
        return giveUp(why);
    if (const QString why = copy.copyTo(QDir(partial).filePath(kDatabase)); !why.isEmpty())
        return giveUp(why);
    // Two snapshots in one second take the next free second.
    for (int k = 0; k < 60; ++k) {
        const QString final = QDir(home).filePath(now.addSecs(k).toString(kFormat));
        if (QFileInfo::exists(final))
            continue;
        if (!QDir().rename(partial, final))
            break;
        if (madePath)
            *madePath = final;
        return {true, QString(), u"Snapshot saved in "_s + QDir::toNativeSeparators(final)};
    }
    return giveUp(u"the snapshot could not be named in "_s + QDir::toNativeSeparators(home));
}

QString dataFolderOf(const DB &db)
{
    return QFileInfo(db.filesRoot()).absolutePath();
}

} // namespace

namespace Snapshots {

QString folder(const QString &dataFolder)
{
    // A company server's copy lives inside the data folder; its snapshots go
    // beside the folder's own, never into the folder a backup would carry.
    const QFileInfo info(dataFolder);
    if (info.fileName() == u"Server" && QFileInfo(info.absolutePath()).fileName() == u"Trestle")
        return QDir(QFileInfo(info.absolutePath()).absolutePath()).filePath(u"Trestle Server Snapshots"_s);
    return QDir(info.absolutePath()).filePath(u"Trestle Snapshots"_s);
}

QList<Info> list(const QString &dataFolder)
{
    QList<Info> out;
    for (const Entry &e : entries(dataFolder)) {
        const qint64 records = recordsOf(e.path);
        if (records >= 0)
            out.append({e.path, e.taken, records});
    }
    return out;
}

QDateTime newest(const QString &dataFolder)
{
    for (const Entry &e : entries(dataFolder))
        if (wholeDatabase(QDir(e.path).filePath(kDatabase)))
            return e.taken;
    return {};
}

Backup::Result make(const QString &databasePath, const QDateTime &now, QString *madePath)
{
    StoreCopy copy(databasePath);
    return makeFrom(copy, QFileInfo(databasePath).absolutePath(), now, madePath);
}

Backup::Result make(DB &db, QString *madePath)
{
    if (db.inMemory())
        return failed(u"the store is not kept in a file"_s);
    return make(QDir(dataFolderOf(db)).filePath(kDatabase), QDateTime::currentDateTime(), madePath);
}

Backup::Result restore(const QString &snapshotFolder, const QString &dataFolder)
{
    const QString name = QFileInfo(snapshotFolder).fileName();
    auto refused = [&](const QString &why) {
        return Backup::Result{false, u"Not a usable snapshot"_s,
                              name + u" cannot be restored: "_s + why + u". Nothing was changed."_s};
    };
    const QString database = QDir(snapshotFolder).filePath(kDatabase);
    if (!QFileInfo(snapshotFolder).isDir() || !QFileInfo(database).isFile())
        return refused(u"it holds no Trestle database"_s);
    if (!wholeDatabase(database))
        return refused(u"its database is incomplete"_s);
    StoreCopy copy(database);
    if (!copy.error().isEmpty())
        return refused(u"its database cannot be read ("_s + copy.error() + u')');
    if (const QString verdict = copy.check(); !verdict.isEmpty())
        return refused(verdict);
    if (copy.records() < 0)
        return refused(u"its database holds no Trestle records"_s);

    // Prepared beside the data folder, so the swap is a rename on one disk.
    const QString parent = QFileInfo(dataFolder).absolutePath();
    const QString temp = QDir(parent).filePath(u"tl-restore-"_s + newID());
    const QString prepared = QDir(temp).filePath(QFileInfo(dataFolder).fileName());
    auto giveUp = [&](const QString &why) {
        QDir(temp).removeRecursively();
        return Backup::Result{false, u"Restore failed"_s,
                              u"Could not restore "_s + name + u": "_s + why + u". Nothing was changed."_s};
    };
    if (!QDir().mkpath(prepared))
        return giveUp(u"the folder "_s + QDir::toNativeSeparators(parent) + u" could not be written"_s);
    // As private as the data folder it replaces.
    QFile::setPermissions(prepared, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (const QString why = linkTree(snapshotFolder, prepared); !why.isEmpty())
        return giveUp(why);
    // A copy, never a link: the restored database is written from now on,
    // and the snapshot must stay as it was.
    if (const QString why = copy.copyTo(QDir(prepared).filePath(kDatabase)); !why.isEmpty())
        return giveUp(why);
    const Backup::Result r = Backup::swapIn(prepared, dataFolder, u"the snapshot "_s + name);
    QDir(temp).removeRecursively();
    return r;
}

void prune(const QString &dataFolder, const QDateTime &now)
{
    const QList<Entry> all = entries(dataFolder);
    QSet<QDate> days;
    QSet<int> months;
    const int thisMonth = now.date().year() * 12 + now.date().month() - 1;
    for (const Entry &e : all) {
        const QDate day = e.taken.date();
        const int month = day.year() * 12 + day.month() - 1;
        bool keep = e.taken > now; // a clock set back: nothing to judge it by
        if (!days.contains(day) && days.size() < 14) {
            days.insert(day);
            keep = true;
        }
        if (!months.contains(month) && thisMonth - month >= 0 && thisMonth - month < 12) {
            months.insert(month);
            keep = true;
        }
        if (!keep)
            QDir(e.path).removeRecursively();
    }
    // What a stopped program was making when it stopped.
    const QDir home(folder(dataFolder));
    for (const QString &name : home.entryList({kPartial + u'*'}, QDir::Dirs | QDir::Hidden)) {
        const qint64 pid = name.mid(kPartial.size()).section(u'-', 0, 0).toLongLong();
        if (processGone(pid))
            QDir(home.filePath(name)).removeRecursively();
    }
}

bool due(const QString &dataFolder, qint64 records, const QDateTime &now)
{
    if (records <= 0)
        return false;
    const QDateTime last = newest(dataFolder);
    return !last.isValid() || last.secsTo(now) > 20 * 3600;
}

void makeInBackground(DB &db, const std::function<void(const Backup::Result &, const QString &)> &done)
{
    const QString dataFolder = dataFolderOf(db);
    const QDateTime now = QDateTime::currentDateTime();
    auto copy = std::make_shared<StoreCopy>(QDir(dataFolder).filePath(kDatabase));
    QThread *thread = QThread::create([copy, dataFolder, now, done, context = &db]() mutable {
        QString path;
        const Backup::Result r = makeFrom(*copy, dataFolder, now, &path);
        // Ends the read at once, so the store's log can be folded back in.
        copy.reset();
        if (r.ok)
            prune(dataFolder, now);
        QMetaObject::invokeMethod(
            context, [done, r, path] { done(r, path); }, Qt::QueuedConnection);
    });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    // A quit while the copy runs waits for it rather than cut it off.
    if (auto *app = QCoreApplication::instance())
        QObject::connect(app, &QCoreApplication::aboutToQuit, thread, [thread] { thread->wait(); });
    thread->start(QThread::LowPriority);
}

bool unshare(const QString &path)
{
    struct stat st
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return false;
    if (st.st_nlink <= 1)
        return true;
    // A fresh copy renamed over the name leaves the snapshots the old inode.
    const QString temp = path + u".unshare-"_s + newID().left(8);
    if (!QFile::copy(path, temp))
        return false;
    if (::rename(QFile::encodeName(temp).constData(), QFile::encodeName(path).constData()) != 0) {
        QFile::remove(temp);
        return false;
    }
    return true;
}

} // namespace Snapshots
