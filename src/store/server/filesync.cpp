#include "filesync.h"

#include "seatcache.h"
#include "serveradmin.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

using namespace Qt::StringLiterals;

namespace {
QString key(const QString &company, const QString &name)
{
    return company + u'/' + name;
}
// A name the server gave that could leave the company's folder is never written.
bool safeName(const QString &name)
{
    return !name.isEmpty() && !name.contains(u'/') && name != u"." && name != u"..";
}
} // namespace

FileSync::FileSync(DB &db, SeatCache &cache, QObject *parent)
    : QObject(parent)
    , m_db(db)
    , m_cache(cache)
{}

QString FileSync::path(const QString &company, const QString &name) const
{
    return QDir(QDir(m_db.filesRoot()).filePath(company)).filePath(name);
}

bool FileSync::downloading(const QString &company, const QString &name) const
{
    return m_downloading.contains(key(company, name));
}

void FileSync::takeServerFiles(const QList<ServerFile> &files)
{
    const QHash<QString, SeatCache::FileState> known = m_cache.files();
    for (const ServerFile &f : files) {
        if (!safeName(f.name) || !safeName(f.company))
            continue;
        m_cache.setServerFile(f.company, f.name, f.sha256);
        const SeatCache::FileState here = known.value(key(f.company, f.name));
        // A file this seat holds is brought up to date at once; others wait until asked for.
        if (QFileInfo::exists(path(f.company, f.name)) && here.localSha != f.sha256 &&
            !m_downloading.contains(key(f.company, f.name))) {
            m_downloading.insert(key(f.company, f.name));
            Q_EMIT download(f.company, f.name, f.sha256);
        }
    }
}

void FileSync::want(const QString &company, const QString &name)
{
    if (m_downloading.contains(key(company, name)))
        return;
    const SeatCache::FileState state = m_cache.files().value(key(company, name));
    if (state.serverSha.isEmpty())
        return;
    m_downloading.insert(key(company, name));
    Q_EMIT download(company, name, state.serverSha);
}

void FileSync::scan()
{
    const QHash<QString, SeatCache::FileState> known = m_cache.files();
    const QDir root(m_db.filesRoot());
    for (const QString &company : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QDir folder(root.filePath(company));
        for (const QFileInfo &info : folder.entryInfoList(QDir::Files | QDir::NoDotAndDotDot)) {
            const QString k = key(company, info.fileName());
            if (m_uploading.contains(k) || m_downloading.contains(k))
                continue;
            const SeatCache::FileState state = known.value(k);
            const qint64 mtime = info.lastModified().toMSecsSinceEpoch();
            if (state.size == info.size() && state.mtime == mtime)
                continue;
            const QString sha = ServerAdmin::fileSha256(info.filePath());
            if (sha.isEmpty())
                continue;
            m_cache.setLocalFile(company, info.fileName(), sha, info.size(), mtime);
            if (sha != state.serverSha) {
                m_uploading.insert(k);
                Q_EMIT upload(company, info.fileName(), info.filePath());
            }
        }
    }
}

void FileSync::takeDownload(const QString &company, const QString &name, const QString &sha,
                            const QByteArray &data)
{
    m_downloading.remove(key(company, name));
    if (data.isNull() || !safeName(name) || !safeName(company))
        return;
    const QString where = path(company, name);
    QDir().mkpath(QFileInfo(where).absolutePath());
    // Written whole and renamed into place, so a reader never sees half a file.
    QSaveFile out(where);
    if (!out.open(QIODevice::WriteOnly) || out.write(data) != data.size() || !out.commit())
        return;
    const QFileInfo info(where);
    m_cache.setLocalFile(company, name, sha, info.size(), info.lastModified().toMSecsSinceEpoch());
    Q_EMIT arrived();
}

void FileSync::takeUpload(const QString &company, const QString &name, const QString &sha, bool ok)
{
    m_uploading.remove(key(company, name));
    if (ok)
        m_cache.setServerFile(company, name, sha);
    else
        m_cache.setLocalFile(company, name, QString(), -1, -1); // looked at again on the next scan
}
