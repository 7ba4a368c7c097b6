// Restore from a zip that came from outside: every entry name is checked
// before anything is written, and nothing is written outside a temporary
// folder until the data folder is swapped in by two renames.
#include "swapin.h"

#include "store/rec.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <sys/stat.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

Backup::Result notOurs()
{
    return {false, u"Not a Trestle backup"_s, u"That file doesn't contain Trestle data."_s};
}

Backup::Result restoreFailed(const QString &why)
{
    return {false, u"Restore failed"_s, why};
}

// A relative path of plain components: no "..", no ".", no root, no backslash.
bool safeName(const QString &name)
{
    if (name.isEmpty() || name.startsWith(u'/') || name.contains(u'\\') || name.contains(QChar(0)))
        return false;
    const QStringList parts = name.split(u'/');
    for (qsizetype k = 0; k < parts.size(); ++k) {
        const QString &p = parts.at(k);
        // A directory entry ends in "/", which leaves one empty last part.
        if (p.isEmpty() && k == parts.size() - 1 && k > 0)
            continue;
        if (p.isEmpty() || p == u"." || p == u"..")
            return false;
    }
    return true;
}

struct Entry
{
    zip_uint64_t index;
    QString name;
    bool dir;
    mode_t mode; // permission bits, 0 when the archive does not say
    qint64 size;
};

// Copies one entry in pieces; false on any read or write error.
bool extract(zip_t *zip, const Entry &e, const QString &path, qint64 &done, qint64 total,
             const Backup::Progress &progress, bool &cancelled)
{
    zip_file_t *in = zip_fopen_index(zip, e.index, 0);
    if (!in)
        return false;
    QFile out(path);
    bool ok = out.open(QIODevice::WriteOnly | QIODevice::Truncate);
    QByteArray buf(1 << 16, Qt::Uninitialized);
    while (ok) {
        const zip_int64_t n = zip_fread(in, buf.data(), zip_uint64_t(buf.size()));
        if (n < 0)
            ok = false;
        if (n <= 0)
            break;
        ok = out.write(buf.constData(), n) == n;
        done += n;
        if (progress && !progress(done, total)) {
            cancelled = true;
            ok = false;
        }
    }
    zip_fclose(in);
    out.close();
    if (ok && e.mode)
        ::chmod(QFile::encodeName(path).constData(), (e.mode & 07777) | S_IRUSR | S_IWUSR);
    return ok;
}

} // namespace

namespace Backup {

Result restore(const QString &zipPath, const QString &dataFolder, const Progress &progress)
{
    const QFileInfo target(dataFolder);
    const QString top = target.fileName();
    const QString parent = target.absolutePath();

    int err = 0;
    zip_t *zip = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &err);
    if (!zip)
        return notOurs();

    // Read and judge every name before writing a byte.
    QList<Entry> entries;
    qint64 total = 0;
    bool hasDatabase = false;
    const zip_int64_t count = zip_get_num_entries(zip, 0);
    for (zip_int64_t k = 0; k < count; ++k) {
        zip_stat_t st;
        if (zip_stat_index(zip, zip_uint64_t(k), 0, &st) != 0 || !(st.valid & ZIP_STAT_NAME)) {
            zip_close(zip);
            return notOurs();
        }
        const QString name = QString::fromUtf8(st.name);
        if (!safeName(name)) {
            zip_close(zip);
            return notOurs();
        }
        // Only the data folder is wanted; anything beside it is left in the zip.
        if (!name.startsWith(top + u'/'))
            continue;
        zip_uint8_t opsys = 0;
        zip_uint32_t attr = 0;
        zip_file_get_external_attributes(zip, zip_uint64_t(k), 0, &opsys, &attr);
        const mode_t mode = opsys == ZIP_OPSYS_UNIX ? mode_t(attr >> 16) : 0;
        const bool dir = name.endsWith(u'/');
        // Links and devices have no place in a data folder and could reach out of it.
        if (mode && !S_ISREG(mode) && !S_ISDIR(mode))
            continue;
        const qint64 size = (st.valid & ZIP_STAT_SIZE) ? qint64(st.size) : 0;
        entries.append({zip_uint64_t(k), name, dir, mode_t(mode & 07777), size});
        total += size;
        if (!dir && name == top + u"/trestle.sqlite"_s)
            hasDatabase = true;
    }
    if (!hasDatabase) {
        zip_close(zip);
        return notOurs();
    }

    // Beside the data folder rather than in /tmp, so the swap is a rename on one disk.
    const QString temp = QDir(parent).filePath(u"tl-restore-"_s + newID());
    QDir().mkpath(temp);
    auto giveUp = [&](const Result &r) {
        zip_close(zip);
        QDir(temp).removeRecursively();
        return r;
    };
    qint64 done = 0;
    bool cancelled = false;
    for (const Entry &e : std::as_const(entries)) {
        const QString path = QDir(temp).filePath(e.name);
        if (e.dir) {
            QDir().mkpath(path);
            continue;
        }
        QDir().mkpath(QFileInfo(path).absolutePath());
        if (!extract(zip, e, path, done, total, progress, cancelled)) {
            if (cancelled)
                return giveUp({false, QString(), u"Restore cancelled"_s});
            return giveUp(restoreFailed(u"Could not read "_s + QFileInfo(zipPath).fileName() +
                                        u": the file is damaged or the disk is full."_s));
        }
    }
    zip_close(zip);
    // Directory modes last, once nothing more is written inside them.
    for (const Entry &e : std::as_const(entries))
        if (e.dir && e.mode)
            ::chmod(QFile::encodeName(QDir(temp).filePath(e.name)).constData(), e.mode | S_IRWXU);

    const QString extracted = QDir(temp).filePath(top);
    QFile header(QDir(extracted).filePath(u"trestle.sqlite"_s));
    if (!header.open(QIODevice::ReadOnly) || header.read(16) != QByteArray("SQLite format 3\0", 16)) {
        QDir(temp).removeRecursively();
        return notOurs();
    }
    header.close();

    const Result r = swapIn(extracted, dataFolder, QFileInfo(zipPath).fileName());
    QDir(temp).removeRecursively();
    return r;
}

Result swapIn(const QString &prepared, const QString &dataFolder, const QString &source)
{
    const QFileInfo target(dataFolder);
    const QString parent = target.absolutePath();
    const QString aside = QDir(parent).filePath(target.fileName() + u" (before restore "_s +
                                                QString::number(QDateTime::currentSecsSinceEpoch()) + u")"_s);
    if (QFileInfo::exists(dataFolder) && !QDir().rename(dataFolder, aside))
        return restoreFailed(u"Could not move the current data aside to "_s + QFileInfo(aside).fileName() +
                             u"; nothing was changed."_s);
    if (!QDir().rename(prepared, dataFolder)) {
        // Put the old data back rather than leave no data folder at all.
        QDir().rename(aside, dataFolder);
        return restoreFailed(u"Could not move the restored data into place; nothing was changed."_s);
    }
    return {true, QString(),
            u"Restored from "_s + source + u"; the old data is in "_s + QFileInfo(aside).fileName()};
}

} // namespace Backup
