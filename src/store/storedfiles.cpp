// Files that belong to records, kept in one flat folder per company.
#include "db.h"

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

QString DB::fileURL(const QString &name, const std::optional<QString> &company) const
{
    const QString folder = QDir(m_filesRoot).filePath(component(company.value_or(m_companyID)));
    QDir().mkpath(folder);
    return QDir(folder).filePath(component(name));
}

std::optional<QString> DB::importFile(const QString &path) const
{
    const QString stored = newID().left(8) + u'-' + QFileInfo(path).fileName();
    if (!QFile::copy(path, fileURL(stored)))
        return std::nullopt;
    return stored;
}
