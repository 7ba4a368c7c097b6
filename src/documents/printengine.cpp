#include "printengine.h"

#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextFrame>
#include <QtGui/QTextTable>

#include <algorithm>

namespace PrintEngine {

namespace {
constexpr double kLightText = 0.55; // text paler than this would vanish on paper
constexpr double kPaleFill = 0.8;   // fills darker than this are dropped

bool darkFill(const QTextFormat &format)
{
    return format.hasProperty(QTextFormat::BackgroundBrush) && lum(format.background().color()) < kPaleFill;
}

// Whether a cell shows anything but blanks; a fill with nothing on it is a
// drawing (a schedule's bar), not a backdrop to text, and prints as it is.
bool holdsText(const QTextTableCell &cell)
{
    QTextCursor c = cell.firstCursorPosition();
    c.setPosition(cell.lastCursorPosition().position(), QTextCursor::KeepAnchor);
    const QString text = c.selectedText();
    return std::any_of(text.cbegin(), text.cend(), [](QChar ch) { return !ch.isSpace(); });
}

void cleanTables(QTextFrame *frame)
{
    for (QTextFrame *child : frame->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(child)) {
            QTextTableFormat tf = table->format();
            if (darkFill(tf)) {
                tf.clearBackground();
                table->setFormat(tf);
            }
            for (int r = 0; r < table->rows(); ++r)
                for (int c = 0; c < table->columns(); ++c) {
                    if (!cellStartsAt(*table, r, c))
                        continue; // a spanned cell, reached at its origin
                    QTextTableCell cell = table->cellAt(r, c);
                    QTextCharFormat cf = cell.format();
                    if (darkFill(cf) && holdsText(cell)) {
                        cf.clearBackground();
                        cell.setFormat(cf);
                    }
                }
        }
        cleanTables(child);
    }
}
} // namespace

bool cellStartsAt(const QTextTable &table, int row, int column)
{
    const QTextTableCell cell = table.cellAt(row, column);
    return cell.isValid() && (row == 0 || !(table.cellAt(row - 1, column) == cell)) &&
           (column == 0 || !(table.cellAt(row, column - 1) == cell));
}

double lum(const QColor &colour)
{
    if (!colour.isValid())
        return 0;
    const QColor c = colour.toRgb();
    if (c.alphaF() < 0.05)
        return 0;
    return 0.2126 * c.redF() + 0.7152 * c.greenF() + 0.0722 * c.blueF();
}

void blackOnWhite(QTextDocument &doc)
{
    cleanTables(doc.rootFrame());
    // Edits are gathered first: changing a format merges fragments under a running iterator.
    struct Edit
    {
        int from, to;
        QTextCharFormat format;
    };
    QList<Edit> edits;
    QList<QPair<QTextBlock, QTextBlockFormat>> blocks;
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat bf = block.blockFormat();
        if (darkFill(bf)) {
            bf.clearBackground();
            blocks.append({block, bf});
        }
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment frag = it.fragment();
            QTextCharFormat cf = frag.charFormat();
            bool touched = false;
            if (cf.hasProperty(QTextFormat::ForegroundBrush) && lum(cf.foreground().color()) > kLightText) {
                cf.setForeground(Qt::black);
                touched = true;
            }
            if (darkFill(cf)) {
                cf.clearBackground();
                touched = true;
            }
            if (touched)
                edits.append({frag.position(), frag.position() + frag.length(), cf});
        }
    }
    QTextCursor cursor(&doc);
    for (const auto &[block, format] : blocks)
        QTextCursor(block).setBlockFormat(format);
    for (const Edit &e : edits) {
        cursor.setPosition(e.from);
        cursor.setPosition(e.to, QTextCursor::KeepAnchor);
        cursor.setCharFormat(e.format);
    }
}

} // namespace PrintEngine
