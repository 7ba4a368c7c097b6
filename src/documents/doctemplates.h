#pragma once
#include "store/rec.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>
#include <optional>

class DB;
class QTextDocument;

// The page shell every generated document goes through, and the fixed
// templates of the rich-text documents.
namespace DocTemplates {

// One template: its key, the name people pick, and its HTML body with placeholders.
struct Template
{
    QString key;
    QString name;
    QString body;
};

// The eight templates, in menu order.
const QList<Template> &all();
// The template of `key`, or nothing.
std::optional<Template> find(const QString &key);

// `body` with {{date}}, {{company}}, {{user}}, {{project}}, {{address}} and
// {{owner}} replaced by escaped values; other placeholders stay as they are.
QString fill(const DB &db, const QString &body, const std::optional<Rec> &project);

// `body` wrapped in the page shell and imported as rich text, with the logo
// mark swapped for the company logo. Never null.
std::unique_ptr<QTextDocument> attributed(const DB &db, const QString &body);

// The wrapped, importer-ready HTML of `body` (the shell plus the fixes Qt's importer needs).
QString shellHTML(const QString &body);

} // namespace DocTemplates
