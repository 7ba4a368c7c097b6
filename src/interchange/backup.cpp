#include "backup.h"

#include "storecopy.h"

#include "calc/datefmt.h"
#include "store/db.h"
#include "store/rec.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>

#include <sys/stat.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

// Formats that are compressed already: deflating them again costs time for nothing.
bool storedAsIs(const QString &name)
{
    static const QSet<QString> packed = {u"jpg"_s, u"jpeg"_s, u"png"_s,  u"gif"_s,  u"webp"_s, u"heic"_s,
                                         u"pdf"_s, u"zip"_s,  u"docx"_s, u"xlsx"_s, u"gz"_s,   u"bz2"_s,
                                         u"xz"_s,  u"zst"_s,  u"7z"_s,   u"mp4"_s,  u"mov"_s,  u"m4a"_s};
    return packed.contains(QFileInfo(name).suffix().toLower());
}

struct Sink
{
    const Backup::Progress *progress = nullptr;
    qint64 total = 0;
    bool go = true;
};

Backup::Result failed(const QString &zipPath)
{
    return {false, u"Backup failed"_s, u"Could not write "_s + QFileInfo(zipPath).fileName()};
}

} // namespace

namespace Backup {

Result backup(DB &db, const QString &zipPath, const Progress &progress)
{
    if (db.inMemory())
        return failed(zipPath);
    const QString folder = QFileInfo(db.filesRoot()).absolutePath();
    const QString top = QFileInfo(folder).fileName();
    // The live database may be written meanwhile, by this window or another
    // program: the zip takes a consistent copy of it, never its raw file.
    // The copy sits beside the data folder, on its disk, until the zip is written.
    const QString copyPath = QFileInfo(folder).absolutePath() + u"/tl-backup-"_s + newID() + u".sqlite"_s;
    struct Drop
    {
        QString path;
        ~Drop() { QFile::remove(path); }
    } drop{copyPath};
    {
        StoreCopy copy(QDir(folder).filePath(u"trestle.sqlite"_s));
        if (const QString why = copy.copyTo(copyPath); !why.isEmpty())
            return {false, u"Backup failed"_s,
                    u"Could not write "_s + QFileInfo(zipPath).fileName() + u": "_s + why + u'.'};
    }

    int err = 0;
    zip_t *zip = zip_open(QFile::encodeName(zipPath).constData(), ZIP_CREATE | ZIP_TRUNCATE, &err);
    if (!zip)
        return failed(zipPath);

    Sink sink{&progress, 0, true};
    auto addEntry = [&](const QString &path, const QString &name, bool dir) -> bool {
        struct stat st
        {
        };
        if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
            return true; // gone since the walk: nothing to keep
        const QByteArray entry = name.toUtf8();
        zip_int64_t index = -1;
        if (dir) {
            index = zip_dir_add(zip, entry.constData(), ZIP_FL_ENC_UTF_8);
        } else {
            // The file is read in pieces when the archive is written, never whole.
            zip_source_t *src = zip_source_file(zip, QFile::encodeName(path).constData(), 0, -1);
            if (!src)
                return false;
            index = zip_file_add(zip, entry.constData(), src, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
            if (index < 0) {
                zip_source_free(src);
                return false;
            }
            zip_set_file_compression(zip, zip_uint64_t(index),
                                     storedAsIs(name) ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
            sink.total += qint64(st.st_size);
        }
        if (index < 0)
            return false;
        zip_file_set_external_attributes(zip, zip_uint64_t(index), 0, ZIP_OPSYS_UNIX,
                                         zip_uint32_t(st.st_mode) << 16);
        return true;
    };

    bool ok = addEntry(folder, top + u'/', true) && addEntry(copyPath, top + u"/trestle.sqlite"_s, false);
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (ok && it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        // Links could point anywhere.
        const QString relative = QDir(folder).relativeFilePath(info.filePath());
        if (info.isSymLink() || liveOnly(relative))
            continue;
        if (!info.isDir() && !info.isFile())
            continue;
        const QString name = top + u'/' + relative;
        ok = addEntry(info.filePath(), info.isDir() ? name + u'/' : name, info.isDir());
    }
    if (!ok) {
        zip_discard(zip);
        return failed(zipPath);
    }

    if (progress) {
        zip_register_progress_callback_with_state(
            zip, 0.001,
            [](zip_t *, double fraction, void *ud) {
                auto *s = static_cast<Sink *>(ud);
                if (s->go)
                    s->go = (*s->progress)(qint64(fraction * double(s->total)), s->total);
            },
            nullptr, &sink);
        zip_register_cancel_callback_with_state(
            zip, [](zip_t *, void *ud) { return static_cast<Sink *>(ud)->go ? 0 : 1; }, nullptr, &sink);
    }
    // libzip writes to a temporary file beside the target and renames it at the end.
    if (zip_close(zip) != 0) {
        zip_discard(zip);
        QFile::remove(zipPath);
        if (!sink.go)
            return {false, QString(), u"Backup cancelled"_s};
        return failed(zipPath);
    }
    return {true, QString(), u"Saved "_s + QFileInfo(zipPath).fileName()};
}

ExportResult exportCSV(const DB &db, const QString &parentDir)
{
    const std::optional<Rec> company = db.company();
    const QString name = company ? company->f.value(u"name") : QString();
    ExportResult result;
    result.folder = ExportFile::makeFolder(parentDir, (name.isEmpty() ? u"Company"_s : name) + u" export "_s +
                                                          DateFmt::iso(DateFmt::today()));
    if (result.folder.isEmpty()) {
        result.error = u"Could not create a folder in "_s + QDir::toNativeSeparators(parentDir);
        return result;
    }
    const QString companyID = db.companyID();
    QSet<QString> kindSet;
    db.forEach([&](const Rec &r) {
        if (r.company == companyID)
            kindSet.insert(r.kind);
    });
    QStringList kinds(kindSet.begin(), kindSet.end());
    kinds.sort();
    const QDir dir(result.folder);
    for (const QString &kind : std::as_const(kinds)) {
        QSet<QString> keySet;
        db.visit(kind, {}, [&](const Rec &r) {
            for (const Fields::Entry &e : r.f)
                keySet.insert(e.key);
        });
        QStringList keys(keySet.begin(), keySet.end());
        keys.sort();
        QList<QStringList> rows{QStringList{u"id"_s, u"project"_s, u"parent"_s} + keys};
        db.visit(kind, {}, [&](const Rec &r) {
            QStringList row{r.id, db.label(r.project), r.parent};
            for (const QString &k : std::as_const(keys))
                row.append(r.f.value(k));
            rows.append(std::move(row));
        });
        // One file that cannot be written does not stop the others.
        const QString error = ExportFile::write(dir.filePath(kind + u".csv"_s), CSV::text(rows));
        if (!error.isEmpty() && result.error.isEmpty())
            result.error = error;
    }
    result.ok = result.error.isEmpty();
    return result;
}

} // namespace Backup
