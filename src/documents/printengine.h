#pragma once
#include <QtGui/QColor>

class QTextDocument;
class QTextTable;

// Colour rules shared by every printout.
namespace PrintEngine {
// Relative luminance of `colour` in sRGB (0 to 1); a nearly transparent or invalid colour counts as 0.
double lum(const QColor &colour);
// Makes `doc` print black on white whatever theme it was written in: light
// text becomes black, dark fills (of text, paragraphs and table cells) go,
// and pale fills such as a table's header band stay.
void blackOnWhite(QTextDocument &doc);
// Whether the cell at (`row`, `column`) of `table` starts there rather than
// being covered by a span from above or the left. Unlike QTextTableCell::row()
// and column(), which search the whole table, it costs the same on any size.
bool cellStartsAt(const QTextTable &table, int row, int column);
} // namespace PrintEngine
