#include "csv.h"

#include <QtCore/QDir>
#include <QtCore/QSaveFile>

using namespace Qt::StringLiterals;

namespace CSV {

QString text(const QList<QStringList> &rows)
{
    QString out;
    for (const QStringList &row : rows) {
        bool first = true;
        for (const QString &cell : row) {
            if (!first)
                out += u',';
            first = false;
            // A carriage return alone is left as it is: spreadsheets read the
            // lines of this program's own files either way.
            if (cell.contains(u',') || cell.contains(u'"') || cell.contains(u'\n'))
                out += u'"' + QString(cell).replace(u"\""_s, u"\"\""_s) + u'"';
            else
                out += cell;
        }
        out += u"\r\n"_s;
    }
    if (rows.isEmpty())
        out = u"\r\n"_s;
    return out;
}

bool save(const QList<QStringList> &rows, const QString &path)
{
    return ExportFile::write(path, text(rows)).isEmpty();
}

} // namespace CSV

namespace ExportFile {

QString write(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return u"Could not write "_s + QDir::toNativeSeparators(path) + u": "_s + file.errorString();
    const QByteArray bytes = text.toUtf8();
    if (file.write(bytes) != bytes.size() || !file.commit())
        return u"Could not write "_s + QDir::toNativeSeparators(path) + u": "_s + file.errorString();
    return QString();
}

QString makeFolder(const QString &parent, const QString &name)
{
    const QString path = QDir(parent).filePath(name);
    if (!QDir().mkpath(path))
        return QString();
    return QDir(path).absolutePath();
}

} // namespace ExportFile
