// Figures of the interchange layer on the reference company.
#include "interbench.h"

#include "interchange/backup.h"
#include "interchange/qb.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdlib>
#include <cstring>
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
}
