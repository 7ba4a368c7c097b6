#pragma once
// Builders of the document HTML: the one small HTML subset every printed
// document starts as. Pure text; nothing here prints or writes a file.
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <optional>

class DB;

namespace PDFOut {

// Record text made safe between tags: "&", "<" and ">" escaped, in that order; quotes kept.
QString esc(const QString &text);
// The letterhead: company (and its logo mark) on the left, title and job on the right.
QString header(const DB &db, const QString &title, const std::optional<Rec> &project);
// A bordered table; `right` holds right-aligned column indexes, `pt` an optional font size.
QString table(const QStringList &heads, const QList<QStringList> &rows, const QSet<int> &right = {},
              std::optional<double> pt = std::nullopt);
// A ratio as printf's "%.1f%%" gives it (C locale, halves to even on the binary value).
QString percent(double value);

// The document body of one record: header, field table, lines, module extra, photos.
QString recordHTML(const DB &db, const ModuleDef &def, const Rec &rec);
// The print job title and default file name of a record.
QString recordTitle(const ModuleDef &def, const Rec &rec);
// The legal text of a lien waiver, as it follows the waiver's field table.
QString waiverHTML(const DB &db, const Rec &waiver);
// The client proposal of an estimate, markup folded into the line prices.
QString proposalHTML(const DB &db, const Rec &estimate);

} // namespace PDFOut
