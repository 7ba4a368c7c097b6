#pragma once
#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>

class QTextDocument;

// The program's own Word writer: a QTextDocument as an Office Open XML
// (.docx) package with paragraphs, headings, character formats, alignment,
// lists, bordered tables and pictures.
namespace DocxWriter {
// The package's parts by their path inside the zip.
QMap<QString, QByteArray> parts(const QTextDocument &doc);
// The parts zipped into a .docx file's bytes; empty when zipping failed.
QByteArray package(const QTextDocument &doc);
// Writes the .docx to `path` through a temporary file; false on any failure.
bool write(const QTextDocument &doc, const QString &path);
} // namespace DocxWriter
