// Figures of the interchange layer on the reference company.
#include "interbench.h"

#include "benchutil.h"

#include "interchange/backup.h"
#include "interchange/qb.h"
#include "interchange/snapshots.h"
#include "interchange/storecopy.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFiles = 40;
constexpr qint64 kFileBytes = 5 << 20; // 40 × 5 MB: half photos, half text

// Resident memory of this process in kB.
qint64 rssKB()
{
    QFile f(u"/proc/self/status"_s);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return std::atoll(line.constData() + 6);
    return -1;
}

// Bytes on disk under `root` that no other name shares: what a snapshot
// really costs, since its linked files take no room of their own.
qint64 ownBytes(const QString &root, qint64 *linked)
{
    qint64 own = 0;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        struct stat st
        {
        };
        if (::stat(QFile::encodeName(it.next()).constData(), &st) != 0)
            continue;
        if (st.st_nlink > 1)
            *linked += qint64(st.st_size);
        else
            own += qint64(st.st_blocks) * 512;
    }
    return own;
}

// A copy of the reference store in a folder named as the program's own, with stored files added.
QString makeDataFolder(const QString &storePath, const QString &root)
{
    const QString folder = QDir(root).filePath(u"Trestle"_s);
    const QString files = QDir(folder).filePath(u"files/bench"_s);
    QDir().mkpath(files);
    QFile::copy(storePath, QDir(folder).filePath(u"trestle.sqlite"_s));
    QRandomGenerator rng(42);
    QByteArray chunk(1 << 20, Qt::Uninitialized);
    for (int k = 0; k < kFiles; ++k) {
        const bool photo = k % 2 == 0;
        QFile f(QDir(files).filePath(u"%1-site-%2.%3"_s.arg(k).arg(k * 7).arg(photo ? u"jpg"_s : u"txt"_s)));
        if (!f.open(QIODevice::WriteOnly))
            return QString();
        for (qint64 w = 0; w < kFileBytes; w += chunk.size()) {
            if (photo)
                rng.fillRange(reinterpret_cast<quint32 *>(chunk.data()), chunk.size() / 4);
            else
                for (qsizetype i = 0; i < chunk.size(); ++i)
                    chunk[i] = "Roof sheathing complete on east wing. "[i % 38];
            f.write(chunk);
        }
    }
    return folder;
}

} // namespace

void runInterchangeBench(const DB &db, const QString &storePath, int runs, QTextStream &out)
{
    QTemporaryDir dir;
    std::vector<double> ms;
    for (int k = 0; k < runs; ++k) {
        QElapsedTimer t;
        t.start();
        const ExportResult r = QB::exportAll(db, dir.path());
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
        if (!r.ok) {
            out << "export-qb failed: " << r.error << Qt::endl;
            return;
        }
    }
    std::sort(ms.begin(), ms.end());
    out << "export-qb (all projects): " << QString::number(ms[ms.size() / 2], 'f', 0) << " ms ("
        << QString::number(ms.front(), 'f', 0) << u'–' << QString::number(ms.back(), 'f', 0) << ')'
        << Qt::endl;

    const QString folder = makeDataFolder(storePath, dir.path());
    if (folder.isEmpty()) {
        out << "backup: could not write the stored files" << Qt::endl;
        return;
    }
    qint64 bytes = 0;
    {
        DB copy(QDir(folder).filePath(u"trestle.sqlite"_s));
        const QString zip = dir.filePath(u"bench.zip"_s);
        const qint64 before = rssKB();
        qint64 peak = before;
        QElapsedTimer t;
        t.start();
        const Backup::Result r = Backup::backup(copy, zip, [&](qint64 done, qint64 total) {
            peak = std::max(peak, rssKB());
            bytes = total;
            Q_UNUSED(done);
            return true;
        });
        const double elapsed = double(t.nsecsElapsed()) / 1e6;
        if (!r.ok) {
            out << "backup failed: " << r.message << Qt::endl;
            return;
        }
        out << "backup (" << bytes / (1 << 20) << " MB in, " << QFileInfo(zip).size() / (1 << 20)
            << " MB zip): " << QString::number(elapsed, 'f', 0) << " ms; resident memory grew by "
            << (peak - before) / 1024 << " MB" << Qt::endl;
        const qint64 rbefore = rssKB();
        qint64 rpeak = rbefore;
        t.restart();
        const Backup::Result back =
            Backup::restore(zip, QDir(dir.path()).filePath(u"Restored/Trestle"_s), [&](qint64, qint64) {
                rpeak = std::max(rpeak, rssKB());
                return true;
            });
        out << "restore: "
            << (back.ok ? QString::number(double(t.nsecsElapsed()) / 1e6, 'f', 0) + u" ms"_s : back.message)
            << "; resident memory grew by " << (rpeak - rbefore) / 1024 << " MB" << Qt::endl;
    }
    runSnapshotBench(folder, runs, out);
}

void runSnapshotBench(const QString &folder, int runs, QTextStream &out)
{
    const QString database = QDir(folder).filePath(u"trestle.sqlite"_s);
    // The two halves of a snapshot's time: the check of the live store and the copy.
    Bench::figure(out, runs, u"snapshot: quick_check of the store"_s, QString(), [&] {
        StoreCopy copy(database);
        (void)copy.check();
    });
    QTemporaryDir scratch;
    int n = 0;
    Bench::figure(out, runs, u"snapshot: online copy of the database"_s, QString(), [&] {
        StoreCopy copy(database);
        (void)copy.copyTo(scratch.filePath(QString::number(++n)));
    });
    const QDateTime start = QDateTime::currentDateTime();
    QStringList made;
    QString failure;
    const Bench::Stats whole = Bench::measure(runs, [&] {
        QString path;
        const Backup::Result r = Snapshots::make(database, start.addSecs(made.size()), &path);
        if (r.ok)
            made.append(path);
        else
            failure = r.message;
    });
    if (!failure.isEmpty()) {
        out << "snapshot failed: " << failure << Qt::endl;
        return;
    }
    qint64 linked = 0;
    const qint64 own = ownBytes(made.first(), &linked);
    Bench::print(out, u"snapshot (check, copy, link the files)"_s, whole,
                 u"new on disk "_s + QString::number(double(own) / (1 << 20), 'f', 1) + u" MB (database "_s +
                     QString::number(double(QFileInfo(database).size()) / (1 << 20), 'f', 1) + u" MB), "_s +
                     QString::number(linked / (1 << 20)) + u" MB of files linked"_s);
    Bench::figure(out, runs, u"snapshots listed with record counts"_s,
                  QString::number(made.size()) + u" snapshots"_s, [&] { (void)Snapshots::list(folder); });
    QElapsedTimer t;
    t.start();
    const Backup::Result back = Snapshots::restore(made.first(), folder);
    out << "restore from a snapshot: "
        << (back.ok ? QString::number(double(t.nsecsElapsed()) / 1e6, 'f', 0) + u" ms"_s : back.message)
        << Qt::endl;
}
