#pragma once
#include "store/rec.h"

#include <QtCore/QString>

#include <functional>
#include <memory>

class DB;
class QTextDocument;

// The body files of rich-text documents. A body is one self-contained HTML
// file per record: Qt's own rich-text HTML (fonts, bold, italic, underline,
// alignment, colour, lists, tables) with each picture embedded as a data URL.
namespace DocStore {

// Where the body of `document` lives: "doc-<id>.html" in its company's files folder.
QString bodyPath(const DB &db, const Rec &document);
// Turns the picture resource `name` of a document into a data URL; empty leaves it out.
using PictureEncoder = std::function<QString(const QTextDocument &text, const QString &name)>;
// Writes `text` to `path` through a temporary file; false when it could not be written.
// `encode` may supply pictures already encoded (an editor keeps them); by default each is made a PNG.
bool write(const QString &path, const QTextDocument &text, const PictureEncoder &encode = {});
// Reads a body file; a missing, unreadable or damaged file gives an empty document. Never null.
std::unique_ptr<QTextDocument> read(const QString &path);
// Replaces the body of `document` with the filled template `key` (blank when
// unknown) and, when the title is empty or "Blank document", titles the record
// after the template and saves it.
void applyTemplate(DB &db, Rec &document, const QString &key);

} // namespace DocStore
