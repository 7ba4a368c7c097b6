#include "longtable.h"

#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QPainter>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextTable>

#include <algorithm>
#include <cmath>

namespace {
// Qt lays text out in 64ths of a point and rounds each step; adding up the
// same way keeps two thousand rows from drifting off the places Qt would give them.
qint64 fx(double v)
{
    return std::llround(v * 64);
}

double pt(qint64 v)
{
    return double(v) / 64;
}

// How Qt aligns a paragraph: left when nothing is said, and mirrored in
// right-to-left text unless the alignment is absolute.
Qt::Alignment visualAlignment(Qt::LayoutDirection dir, Qt::Alignment align)
{
    if (!(align & Qt::AlignHorizontal_Mask))
        align |= Qt::AlignLeft;
    if (!(align & Qt::AlignAbsolute) && (align & (Qt::AlignLeft | Qt::AlignRight))) {
        if (dir == Qt::RightToLeft)
            align ^= (Qt::AlignLeft | Qt::AlignRight);
        align |= Qt::AlignAbsolute;
    }
    return align;
}

bool plainCellFormat(const QTextTableCellFormat &f)
{
    static constexpr QTextFormat::Property kSetByHand[] = {
        QTextFormat::TableCellTopPadding,      QTextFormat::TableCellBottomPadding,
        QTextFormat::TableCellLeftPadding,     QTextFormat::TableCellRightPadding,
        QTextFormat::TableCellTopBorderStyle,  QTextFormat::TableCellBottomBorderStyle,
        QTextFormat::TableCellLeftBorderStyle, QTextFormat::TableCellRightBorderStyle,
        QTextFormat::TableCellTopBorder,       QTextFormat::TableCellBottomBorder,
        QTextFormat::TableCellLeftBorder,      QTextFormat::TableCellRightBorder,
        QTextFormat::TableCellTopBorderBrush,  QTextFormat::TableCellBottomBorderBrush,
        QTextFormat::TableCellLeftBorderBrush, QTextFormat::TableCellRightBorderBrush,
    };
    for (QTextFormat::Property p : kSetByHand)
        if (f.hasProperty(p))
            return false;
    return f.tableCellRowSpan() == 1 && f.tableCellColumnSpan() == 1 &&
           f.verticalAlignment() != QTextCharFormat::AlignBaseline;
}

bool plainBlock(const QTextBlock &block)
{
    const QTextBlockFormat bf = block.blockFormat();
    return bf.topMargin() == 0 && bf.bottomMargin() == 0 && bf.leftMargin() == 0 && bf.rightMargin() == 0 &&
           bf.textIndent() == 0 && bf.indent() == 0 && !block.textList() &&
           bf.lineHeightType() == QTextBlockFormat::SingleHeight &&
           !block.text().contains(QChar::ObjectReplacementCharacter);
}

QTextBlock firstBlock(const QTextTable &table, int row, int column)
{
    return table.cellAt(row, column).firstCursorPosition().block();
}
} // namespace

LongTable::~LongTable() = default;

std::unique_ptr<LongTable> LongTable::take(QTextDocument &doc, QTextTable *table, QPaintDevice *device)
{
    if (!table || table->parentFrame() != doc.rootFrame())
        return nullptr;
    const int rows = table->rows(), cols = table->columns();
    if (rows < kMinRows || cols < 1)
        return nullptr;
    // A collapsed 1-px grid with no spacing: the list logs' table.
    const QTextTableFormat tf = table->format();
    const QTextFrameFormat::BorderStyle style = tf.borderStyle();
    if (cols < 2 || !tf.borderCollapse() || tf.border() != 1 || tf.cellSpacing() != 0 ||
        tf.hasProperty(QTextFormat::BackgroundBrush) ||
        (style != QTextFrameFormat::BorderStyle_Solid && style != QTextFrameFormat::BorderStyle_Outset &&
         style != QTextFrameFormat::BorderStyle_Inset))
        return nullptr;

    // One paragraph per cell, in reading order: as many blocks inside as cells
    // (an empty last cell's paragraph starts at the table's closing mark).
    QList<QTextBlock> blocks;
    blocks.reserve(qsizetype(rows) * cols);
    const int end = table->lastPosition();
    for (QTextBlock b = doc.findBlock(table->firstPosition()); b.isValid() && b.position() <= end;
         b = b.next()) {
        if (blocks.size() == qsizetype(rows) * cols || !plainBlock(b))
            return nullptr;
        blocks.append(b);
    }
    if (blocks.size() != qsizetype(rows) * cols)
        return nullptr;

    std::unique_ptr<LongTable> t(new LongTable);
    t->m_table = table;
    t->m_border = tf.border();
    t->m_pad = tf.cellPadding();
    // Outset rules are lit from the top left, inset ones from the bottom right.
    const QColor rule =
        tf.borderBrush().style() == Qt::NoBrush ? QColor(Qt::black) : tf.borderBrush().color();
    t->m_topLeftRule = style == QTextFrameFormat::BorderStyle_Outset ? rule.lighter() : rule;
    t->m_bottomRightRule = style == QTextFrameFormat::BorderStyle_Inset ? rule.lighter() : rule;
    const QTextOption docOption = doc.defaultTextOption();
    QList<double> widest(cols, -1), longestWord(cols, -1);
    QList<int> widestRow(cols, 0), longestWordRow(cols, 0);
    t->m_rows.resize(size_t(rows));
    for (int r = 0; r < rows; ++r) {
        Row &row = t->m_rows[r];
        row.cells.resize(size_t(cols));
        for (int c = 0; c < cols; ++c) {
            const QTextTableCellFormat cf = table->cellAt(r, c).format().toTableCellFormat();
            if (!plainCellFormat(cf))
                return nullptr;
            const QTextBlock &block = blocks.at(qsizetype(r) * cols + c);
            Cell &cell = row.cells[c];
            if (cf.hasProperty(QTextFormat::BackgroundBrush))
                cell.fill = cf.background();
            cell.valign = cf.verticalAlignment() == QTextCharFormat::AlignMiddle   ? 1
                          : cf.verticalAlignment() == QTextCharFormat::AlignBottom ? 2
                                                                                   : 0;
            // The paragraph's own font sizes an empty cell, as it does in Qt.
            cell.text = std::make_unique<QTextLayout>(block.text(), block.charFormat().font(), device);
            cell.text->setFormats(block.textFormats());
            QTextOption option = docOption;
            const QTextBlockFormat bf = block.blockFormat();
            const Qt::LayoutDirection dir = block.textDirection();
            option.setTextDirection(dir);
            option.setTabs(bf.tabPositions());
            option.setAlignment(visualAlignment(
                dir, bf.hasProperty(QTextFormat::BlockAlignment) ? bf.alignment() : docOption.alignment()));
            if (bf.nonBreakableLines())
                option.setWrapMode(QTextOption::ManualWrap);
            cell.text->setTextOption(option);
            // Qt sizes a column by its widest cell and its longest unbreakable word.
            QTextLayout &tl = *cell.text;
            tl.beginLayout();
            for (QTextLine line = tl.createLine(); line.isValid(); line = tl.createLine())
                line.setLineWidth(1e6);
            tl.endLayout();
            if (tl.maximumWidth() > widest.at(c)) {
                widest[c] = tl.maximumWidth();
                widestRow[c] = r;
            }
            if (tl.minimumWidth() > longestWord.at(c)) {
                longestWord[c] = tl.minimumWidth();
                longestWordRow[c] = r;
            }
        }
    }

    // Qt keeps the header, a body row and the rows that set a column's width.
    QList<int> kept = {0, 1};
    kept += widestRow;
    kept += longestWordRow;
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    t->m_kept = kept;
    const bool undo = doc.isUndoRedoEnabled();
    doc.setUndoRedoEnabled(false);
    for (qsizetype k = kept.size() - 1; k >= 0; --k) {
        const int from = kept.at(k) + 1;
        const int to = k + 1 < kept.size() ? kept.at(k + 1) : rows;
        if (to > from)
            table->removeRows(from, to - from);
    }
    // Each cell of the last kept row ends in an empty paragraph, as tall as
    // the rows Qt no longer holds: the row, whichever cell is tallest, and so
    // the table grow by just that.
    const int lastKept = int(kept.size()) - 1;
    for (int c = 0; c < cols; ++c) {
        QTextCursor cursor = table->cellAt(lastKept, c).lastCursorPosition();
        QTextBlockFormat spacer;
        spacer.setLineHeight(0, QTextBlockFormat::FixedHeight);
        cursor.insertBlock(spacer, QTextCharFormat());
        t->m_spacers.append(cursor.block());
    }
    t->m_lost = 0;
    doc.setUndoRedoEnabled(undo);
    return t;
}

void LongTable::layout(QAbstractTextDocumentLayout *layout)
{
    if (m_rows.empty())
        return;
    const int cols = int(m_rows.front().cells.size());
    const qsizetype kept = m_kept.size();

    // Columns as Qt made them, read off the header's paragraphs: where each
    // cell's text starts and how wide its lines may run.
    QList<qint64> textLeft(cols), textWidth(cols);
    bool leading = false;
    // Qt wraps anywhere in a table too wide for its words; the header shows which.
    QTextOption::WrapMode wrap = m_table->document()->defaultTextOption().wrapMode();
    for (int c = 0; c < cols; ++c) {
        const QTextBlock block = firstBlock(*m_table, 0, c);
        const QTextLayout *tl = block.layout();
        if (!tl || tl->lineCount() == 0)
            return;
        textLeft[c] = fx(layout->blockBoundingRect(block).left());
        textWidth[c] = fx(tl->lineAt(0).width());
        leading = tl->lineAt(0).leadingIncluded();
        if (tl->textOption().wrapMode() != QTextOption::ManualWrap)
            wrap = tl->textOption().wrapMode();
    }
    // Cells abut in a collapsed grid, so the step from one column's text to
    // the next is its text width and the inset (padding and half a rule) twice.
    const qint64 inset = (textLeft.at(1) - textLeft.at(0) - textWidth.at(0)) / 2;
    // Qt sets padding and rules in device pixels of a 96-dpi screen; the rule is one of them.
    const double scale = pt(inset) / (m_pad + 0.5);
    m_rule = scale;
    m_cellLeft.resize(cols);
    m_cellWidth.resize(cols);
    m_textLeft.resize(cols);
    m_textWidth.resize(cols);
    for (int c = 0; c < cols; ++c) {
        m_cellLeft[c] = pt(textLeft.at(c) - inset);
        m_cellWidth[c] = pt(textWidth.at(c) + 2 * inset);
        m_textLeft[c] = pt(textLeft.at(c));
        m_textWidth[c] = pt(textWidth.at(c));
    }

    // Every cell at its column's width, in 64ths as Qt counts; a row is as
    // tall as its tallest cell with the insets, rounded to a whole point.
    QList<qint64> heights(qsizetype(m_rows.size()));
    for (size_t r = 0; r < m_rows.size(); ++r) {
        Row &row = m_rows[r];
        qint64 tallest = 0;
        QList<qint64> cellHeights(cols);
        for (int c = 0; c < cols; ++c) {
            QTextLayout &tl = *row.cells[size_t(c)].text;
            if (QTextOption option = tl.textOption();
                option.wrapMode() != QTextOption::ManualWrap && option.wrapMode() != wrap) {
                option.setWrapMode(wrap);
                tl.setTextOption(option);
            }
            qint64 y = 0;
            tl.beginLayout();
            for (QTextLine line = tl.createLine(); line.isValid(); line = tl.createLine()) {
                line.setLeadingIncluded(leading);
                line.setLineWidth(m_textWidth.at(c));
                line.setPosition(QPointF(0, pt(y)));
                y += fx(line.height());
            }
            tl.endLayout();
            cellHeights[c] = y;
            tallest = std::max(tallest, y);
        }
        const qint64 height = (tallest + 2 * inset + 32) & ~qint64(63);
        heights[qsizetype(r)] = height;
        row.height = pt(height);
        for (int c = 0; c < cols; ++c) {
            Cell &cell = row.cells[size_t(c)];
            const qint64 free = height - cellHeights.at(c) - 2 * inset;
            cell.offset = pt(inset + (cell.valign == 1 ? free / 2 : cell.valign == 2 ? free : 0));
        }
    }

    // The kept rows' tops, from Qt's own placing of their first cells.
    const auto rowTop = [&](int keptIndex) {
        const Row &row = m_rows.at(size_t(m_kept.at(keptIndex)));
        return fx(layout->blockBoundingRect(firstBlock(*m_table, keptIndex, 0)).top()) -
               fx(row.cells.front().offset);
    };
    const qint64 top = rowTop(0);
    const qint64 gap = rowTop(1) - top - heights.at(m_kept.at(0));
    qint64 y = top;
    for (size_t r = 0; r < m_rows.size(); ++r) {
        m_rows[r].top = pt(y);
        y += heights.at(qsizetype(r)) + (r + 1 < m_rows.size() ? gap : 0);
    }
    qint64 keptBottom = top;
    for (qsizetype k = 0; k < kept; ++k)
        keptBottom += heights.at(m_kept.at(k)) + (k + 1 < kept ? gap : 0);
    const double lost = pt(y - keptBottom);

    if (lost == m_lost)
        return;
    // A fixed line height is given in those screen pixels too.
    QTextBlockFormat spacer;
    spacer.setLineHeight(lost / scale, QTextBlockFormat::FixedHeight);
    QTextDocument *doc = m_table->document();
    const bool undo = doc->isUndoRedoEnabled();
    doc->setUndoRedoEnabled(false);
    for (const QTextBlock &block : std::as_const(m_spacers))
        QTextCursor(block).setBlockFormat(spacer);
    doc->setUndoRedoEnabled(undo);
    m_lost = lost;
}

QList<LongTable::RowSpan> LongTable::rowSpans() const
{
    QList<RowSpan> spans;
    spans.reserve(qsizetype(m_rows.size()));
    for (const Row &row : m_rows) {
        RowSpan span{1e300, -1e300, {}};
        for (const Cell &cell : row.cells) {
            const double y = row.top + cell.offset;
            for (int i = 0; i < cell.text->lineCount(); ++i) {
                const QTextLine line = cell.text->lineAt(i);
                span.lines.append({y + line.y(), y + line.y() + line.height()});
                span.top = std::min(span.top, y + line.y());
                span.bottom = std::max(span.bottom, y + line.y() + line.height());
            }
        }
        if (span.lines.isEmpty())
            continue;
        // Counted as the engine counts any table row: padding and border as set.
        span.top -= m_pad + m_border;
        span.bottom += m_pad + m_border;
        if (!spans.isEmpty())
            spans.last().bottom = std::max(spans.last().bottom, span.top);
        spans.append(span);
    }
    return spans;
}

double LongTable::top() const
{
    return m_rows.empty() ? 0 : m_rows.front().top - std::ceil(m_rule / 2);
}

double LongTable::bottom() const
{
    return m_rows.empty() ? 0 : m_rows.back().top + m_rows.back().height;
}

void LongTable::paint(QPainter &painter, double start, double end) const
{
    if (m_rows.empty() || m_cellLeft.isEmpty())
        return;
    // Each cell draws its own four rules as Qt does: a rule's width apart,
    // starting a whole point outside the cell's top and left edges and
    // ending on its bottom and right ones, so neighbours overlap.
    const double e = m_rule, out = std::ceil(e / 2);
    const qsizetype cols = m_cellLeft.size();
    // Rows whose cells meet the slice, a hair inside it: their rules may show
    // a little beyond it, within the painter's clip, their text only inside.
    const double from = start + 0.5, to = end - 0.5;
    auto first = std::partition_point(m_rows.cbegin(), m_rows.cend(),
                                      [&](const Row &row) { return row.top + row.height <= from; });
    auto last = first;
    while (last != m_rows.cend() && last->top < to)
        ++last;

    painter.save();
    // Qt smooths the rules but not the fills.
    const bool smooth = painter.testRenderHint(QPainter::Antialiasing);
    for (auto it = first; it != last; ++it) {
        const double top = it->top, height = it->height, bottom = top + height;
        // Side rules stop a point short of the foot, but for the table's last row.
        const double side = it + 1 == m_rows.cend() ? height + out : height;
        for (qsizetype c = 0; c < cols; ++c) {
            const Cell &cell = it->cells.at(size_t(c));
            const double left = m_cellLeft.at(c), width = m_cellWidth.at(c), right = left + width;
            if (cell.fill.style() != Qt::NoBrush)
                painter.fillRect(QRectF(left, top, width, height), cell.fill);
            // Drawn, not filled, as Qt draws them: smoothing edges the two ways differs.
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(Qt::NoPen);
            painter.setBrush(m_topLeftRule);
            painter.drawRect(QRectF(left, top - out, width - out, e));
            painter.drawRect(QRectF(left - out, top - out, e, side));
            painter.setBrush(m_bottomRightRule);
            painter.drawRect(QRectF(right - e, top - out, e, side));
            painter.drawRect(QRectF(left, bottom - e, width - out, e));
            painter.setRenderHint(QPainter::Antialiasing, smooth);
            const QPointF origin(m_textLeft.at(c), top + cell.offset);
            for (int i = 0; i < cell.text->lineCount(); ++i) {
                const QTextLine line = cell.text->lineAt(i);
                const double y = origin.y() + line.y();
                if (y + line.height() > from && y < to)
                    line.draw(&painter, origin);
            }
        }
    }
    painter.restore();
}
