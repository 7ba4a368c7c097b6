#pragma once
#include <QtCore/QList>
#include <QtCore/QStringList>

// The one CSV writer: comma-separated cells, CRLF line ends, UTF-8.
namespace CSV {
// The text of a table: a cell holding a comma, a double quote or a line feed is
// quoted with its quotes doubled; every row, the last included, ends in CRLF.
QString text(const QList<QStringList> &rows);
// Writes the table to `path` atomically; false when it could not be written.
bool save(const QList<QStringList> &rows, const QString &path);
} // namespace CSV

// Where an export went, or why it stopped.
struct ExportResult
{
    bool ok = false;
    QString folder; // the folder written into
    QString error;  // one line for the user when !ok
};

namespace ExportFile {
// Writes `text` as UTF-8 to `path` through a temporary file; the error, or empty on success.
QString write(const QString &path, const QString &text);
// Makes `parent`/`name` with its parents; the folder's path, or empty when it could not be made.
QString makeFolder(const QString &parent, const QString &name);
} // namespace ExportFile
