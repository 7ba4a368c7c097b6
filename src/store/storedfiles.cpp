// Files that belong to records, kept in one flat folder per company.
#include "db.h"
#include "server/seatcache.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {
// A stored name or company id is one path component; anything that could
// climb out of the files folder keeps only its last component. Only "/"
// separates: a backslash is an ordinary character in a Linux file name.
QString component(const QString &text)
{
    const QString last = text.section(u'/', -1);
    return last == u"." || last == u".." ? QString() : last;
}
} // namespace

QString DB::storedPath(const QString &name, const QString &company) const
{
    return QDir(QDir(m_filesRoot).filePath(component(company))).filePath(component(name));
}

QString DB::fileURL(const QString &name, const std::optional<QString> &company) const
{
    const QString owner = company.value_or(m_companyID);
    const QString folder = QDir(m_filesRoot).filePath(component(owner));
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(component(name));
    // On a company server a file not fetched yet is asked for the first time it is needed.
    if (m_seat && m_seat->wantFile && !name.isEmpty() && !QFileInfo::exists(path))
        m_seat->wantFile(component(owner), component(name));
    return path;
}

std::optional<QString> DB::importFile(const QString &path) const
{
    const QString stored = newID().left(8) + u'-' + QFileInfo(path).fileName();
    if (!QFile::copy(path, fileURL(stored)))
        return std::nullopt;
    return stored;
}
