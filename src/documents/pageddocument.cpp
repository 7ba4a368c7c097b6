#include "pageddocument.h"

#include "doctemplates.h"
#include "longtable.h"
#include "pdfpages.h"
#include "pdfwrite.h"
#include "pointimages.h"
#include "printengine.h"

#include <QtCore/QBuffer>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QFontDatabase>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtGui/QTextBlock>
#include <QtGui/QTextDocument>
#include <QtGui/QTextFrame>
#include <QtGui/QTextLayout>
#include <QtGui/QTextList>
#include <QtGui/QTextTable>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
constexpr double kLetterW = 612, kLetterH = 792;
constexpr double kSheetDpi = 300;
constexpr double kMaxSheetPixels = 80e6; // keeps a huge sheet's picture within memory

// Device units per point of the painter's device.
double deviceScale(const QPainter &painter)
{
    const QPaintDevice *dev = painter.device();
    return dev && dev->logicalDpiY() > 0 ? dev->logicalDpiY() / 72.0 : 1.0;
}

// A font of `pt` points for a painter already scaled by `scale`: QPainter resolves
// point sizes against the device, which the scale would otherwise apply twice.
QFont pageFont(double pt, double scale, bool bold = false)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(pt / scale);
    font.setBold(bold);
    return font;
}
} // namespace

// A piece of the laid-out text that a break may not cross: one line, or one
// table row with the lines of its cells (for the rare row that must be cut).
struct PagedDocument::Unit
{
    double top = 0, bottom = 0;
    bool row = false;
    QList<QPair<double, double>> lines; // row only
    double headTop = -1;                // a table's first row after its head: where the head starts
};

namespace {
// A table's head rows and how far the table runs below them.
struct TableHead
{
    double top = 0, bottom = 0, tableBottom = 0;
    double height() const { return bottom - top; }
};

// Where a line starts in the document, when it is not its block's first line.
using SplitPoints = QList<QPair<double, int>>; // line top, document position

SplitPoints *g_splits = nullptr; // set while paginate() gathers lines

void blockLines(QAbstractTextDocumentLayout *layout, const QTextBlock &block,
                QList<QPair<double, double>> &out)
{
    const QTextLayout *tl = block.layout();
    if (!tl)
        return;
    const double y = layout->blockBoundingRect(block).top();
    for (int i = 0; i < tl->lineCount(); ++i) {
        const QTextLine line = tl->lineAt(i);
        out.append({y + line.y(), y + line.y() + line.height()});
        if (i > 0 && g_splits)
            g_splits->append({y + line.y(), block.position() + line.textStart()});
    }
}

// Makes the line starting at `pos` the first line of a block of its own with
// no margins between, so the layout stays the same. A page that starts inside
// a block would otherwise carry, hidden above its top, the line before it:
// QTextLayout draws one line more than its clip asks for.
void splitBlockAt(QTextDocument &doc, int pos)
{
    QTextCursor cursor(&doc);
    cursor.setPosition(pos);
    const QTextBlock before = cursor.block();
    if (pos > before.position() && doc.characterAt(pos - 1) == QChar::LineSeparator) {
        cursor.setPosition(pos - 1);
        cursor.deleteChar();
    }
    QTextBlockFormat first = before.blockFormat();
    first.setBottomMargin(0);
    cursor.setBlockFormat(first);
    cursor.insertBlock();
    QTextBlockFormat second = cursor.blockFormat();
    second.setTopMargin(0);
    second.setTextIndent(0);
    cursor.setBlockFormat(second);
    if (QTextList *list = cursor.block().textList())
        list->remove(cursor.block()); // keeps its indent, loses the bullet
}

// Every line inside `frame`, tables included, in document order.
void frameLines(QAbstractTextDocumentLayout *layout, QTextFrame::iterator it,
                QList<QPair<double, double>> &out)
{
    for (; !it.atEnd(); ++it) {
        if (QTextFrame *child = it.currentFrame()) {
            if (auto *table = qobject_cast<QTextTable *>(child)) {
                for (int r = 0; r < table->rows(); ++r)
                    for (int c = 0; c < table->columns(); ++c)
                        if (PrintEngine::cellStartsAt(*table, r, c))
                            frameLines(layout, table->cellAt(r, c).begin(), out);
            } else {
                frameLines(layout, child->begin(), out);
            }
        } else {
            blockLines(layout, it.currentBlock(), out);
        }
    }
}
} // namespace

PagedDocument::PagedDocument(const DB &db, PrintSource source, const QString &title,
                             const std::optional<QString> &footer)
    : m_source(std::move(source))
    , m_title(title)
    , m_footer(footer)
{
    switch (m_source.kind) {
    case PrintSource::Kind::Html:
        m_doc = DocTemplates::attributed(db, m_source.html + PDFOut::closingCredit());
        break;
    case PrintSource::Kind::Attributed:
        if (m_source.document)
            m_doc.reset(m_source.document->clone());
        else
            m_doc = std::make_unique<QTextDocument>();
        break;
    case PrintSource::Kind::Pdf: m_pdf = std::make_unique<PdfPages>(m_source.pdfPath); break;
    }
    prepare();
    layout(QSizeF(kLetterW, kLetterH));
}

PagedDocument::PagedDocument(std::unique_ptr<QTextDocument> document, const QString &title,
                             const std::optional<QString> &footer, const QSizeF &pageSize)
    : m_title(title)
    , m_footer(footer)
    , m_doc(document ? std::move(document) : std::make_unique<QTextDocument>())
{
    m_source.kind = PrintSource::Kind::Attributed;
    prepare();
    layout(pageSize);
}

void PagedDocument::prepare()
{
    if (!m_doc)
        return;
    // A null page size keeps Qt from laying the text out when its layout is
    // made, and again for the margin: a long table costs a second per layout.
    m_doc->setPageSize(QSizeF(0, 0));
    PrintEngine::blackOnWhite(*m_doc);
    m_doc->setDocumentMargin(0);
    m_doc->documentLayout()->setPaintDevice(pointDevice());
    PointImages::install(*m_doc);
    for (QTextFrame *frame : m_doc->rootFrame()->childFrames())
        if (auto table = LongTable::take(*m_doc, qobject_cast<QTextTable *>(frame), pointDevice()))
            m_long.push_back(std::move(table));
    // From here on the only edits are the page splits, undone before the next layout.
    m_doc->setUndoRedoEnabled(true);
    m_doc->clearUndoRedoStacks();
}

PagedDocument::~PagedDocument() = default;

QPaintDevice *PagedDocument::pointDevice()
{
    static QPdfWriter *device = [] {
        auto *writer = new QPdfWriter(new QBuffer);
        writer->setResolution(72);
        return writer;
    }();
    return device;
}

QPageLayout PagedDocument::letter(QPageLayout::Orientation orientation)
{
    return QPageLayout(QPageSize(QPageSize::Letter), orientation, QMarginsF(0, 0, 0, 0));
}

void PagedDocument::layout(const QPageLayout &page)
{
    layout(page.fullRect(QPageLayout::Point).size());
}

void PagedDocument::layout(const QSizeF &pageSize)
{
    if (pageSize == m_pageSize && m_doc && !m_doc->pageSize().isNull())
        return; // laid out for this paper already
    m_pageSize = pageSize;
    m_starts = {0};
    m_heads = {{}};
    if (!m_doc)
        return;
    // The blocks split at the last layout's page breaks are joined again, so
    // each paper is laid out from the text as it came.
    if (m_split) {
        m_doc->undo();
        m_split = false;
    }
    m_doc->setPageSize(QSizeF(std::max(1.0, pageSize.width() - 2 * kSide), -1));
    for (const auto &table : m_long)
        table->layout(m_doc->documentLayout());
    paginate();
}

int PagedDocument::pageCount() const
{
    if (m_pdf)
        return std::max(1, m_pdf->pageCount());
    return int(std::max<qsizetype>(1, m_starts.size()));
}

bool PagedDocument::prefersLandscape() const
{
    if (!m_pdf || !m_pdf->isValid())
        return false;
    const QSizeF size = m_pdf->pageSize(0);
    return size.width() > size.height();
}

void PagedDocument::paginate()
{
    SplitPoints splits;
    g_splits = &splits;
    breakPages();
    g_splits = nullptr;
    // Blocks that run over a break are split there, then the breaks are taken again.
    QList<int> at;
    for (const auto &[top, pos] : splits)
        for (qsizetype i = 1; i < m_starts.size(); ++i)
            if (std::abs(m_starts.at(i) - top) < 0.01)
                at.append(pos);
    if (at.isEmpty())
        return;
    std::sort(at.begin(), at.end(), std::greater<>());
    at.erase(std::unique(at.begin(), at.end()), at.end());
    // One edit block, so that one undo takes every split back.
    QTextCursor edit(m_doc.get());
    edit.beginEditBlock();
    for (int pos : at)
        splitBlockAt(*m_doc, pos);
    edit.endEditBlock();
    m_split = true;
    breakPages();
}

const LongTable *PagedDocument::longTable(const QTextTable *table) const
{
    if (!table)
        return nullptr;
    for (const auto &own : m_long)
        if (own->table() == table)
            return own.get();
    return nullptr;
}

void PagedDocument::breakPages()
{
    m_starts = {0};
    m_heads = {{}};
    QAbstractTextDocumentLayout *layout = m_doc->documentLayout();
    (void)m_doc->size(); // finishes the layout
    QList<Unit> units;
    QList<TableHead> heads;
    // Notes a table's first `headRows` rows as its head, and marks the row after them.
    const auto noteHead = [&heads](QList<Unit> &rows, int headRows) {
        if (headRows <= 0 || headRows >= rows.size())
            return;
        heads.append({rows.first().top, rows.at(headRows - 1).bottom, rows.last().bottom});
        rows[headRows].headTop = rows.first().top;
    };
    for (auto it = m_doc->rootFrame()->begin(); !it.atEnd(); ++it) {
        QTextFrame *frame = it.currentFrame();
        auto *table = qobject_cast<QTextTable *>(frame);
        if (const LongTable *own = longTable(table)) {
            QList<Unit> rows;
            for (const LongTable::RowSpan &row : own->rowSpans())
                rows.append({row.top, row.bottom, true, row.lines});
            noteHead(rows, table->format().headerRowCount());
            units += rows;
            continue;
        }
        if (!table) {
            QList<QPair<double, double>> lines;
            if (frame)
                frameLines(layout, frame->begin(), lines);
            else
                blockLines(layout, it.currentBlock(), lines);
            for (const auto &[top, bottom] : lines)
                units.append({top, bottom, false, {}});
            continue;
        }
        // A row runs from its top border to the next row's; its cells' content
        // starts one border and one padding below that.
        const QTextTableFormat tf = table->format();
        const double border = tf.border() > 0 ? tf.border() : 0;
        QList<Unit> rows;
        int headRows = 0; // of those with text
        for (int r = 0; r < table->rows(); ++r) {
            Unit row{1e300, -1e300, true, {}};
            double pad = tf.cellPadding();
            for (int c = 0; c < table->columns(); ++c) {
                if (!PrintEngine::cellStartsAt(*table, r, c))
                    continue;
                const QTextTableCell cell = table->cellAt(r, c);
                const QTextTableCellFormat cf = cell.format().toTableCellFormat();
                if (cf.hasProperty(QTextFormat::TableCellTopPadding))
                    pad = std::max(pad, cf.topPadding());
                const qsizetype first = row.lines.size();
                frameLines(layout, cell.begin(), row.lines);
                if (row.lines.size() > first) {
                    row.top = std::min(row.top, row.lines.at(first).first);
                    row.bottom = std::max(row.bottom, row.lines.last().second);
                }
            }
            if (row.lines.isEmpty())
                continue;
            row.top -= pad + border;
            row.bottom += pad + border;
            if (!rows.isEmpty())
                rows.last().bottom = std::max(rows.last().bottom, row.top);
            rows.append(row);
            if (r < tf.headerRowCount())
                headRows = int(rows.size());
        }
        noteHead(rows, headRows);
        units += rows;
    }

    const double height = m_pageSize.height() - kTop - kBottom;
    if (height <= 1)
        return;
    // The head repeated on a page starting at `top`: that of the table it
    // starts in below the head, unless the head would take a third of the page.
    const auto headAt = [&](double top) -> const TableHead * {
        for (const TableHead &head : heads)
            if (top > head.bottom - 0.01 && top < head.tableBottom - 0.01 && head.height() < height / 3)
                return &head;
        return nullptr;
    };
    const auto room = [&](double top) {
        const TableHead *head = headAt(top);
        return head ? height - head->height() : height;
    };
    double pageTop = 0;
    for (const Unit &u : units) {
        while (u.bottom - pageTop > room(pageTop) + 0.01 && m_starts.size() < kMaxPages) {
            // A row taller than a page moves to a page of its own first, and is cut only there.
            const bool movable = u.top > pageTop + 0.01 && (!u.row || u.top - pageTop > kKeepRowWithin);
            double next = pageTop + room(pageTop);
            if (movable) {
                next = u.top;
                // A head never ends a page: it goes over with the table's first row.
                if (u.headTop >= 0 && u.headTop - pageTop > kKeepRowWithin)
                    next = u.headTop;
            } else if (u.row) {
                // Cut the row above the first of its lines that would cross the page's foot.
                double cut = next;
                for (const auto &[top, bottom] : u.lines)
                    if (top < next && bottom > next && top > pageTop + 1)
                        cut = std::min(cut, top);
                next = cut;
            }
            pageTop = next;
            m_starts.append(pageTop);
            const TableHead *head = headAt(pageTop);
            m_heads.append(head ? QPair(head->top, head->bottom) : QPair<double, double>());
        }
        if (m_starts.size() >= kMaxPages)
            break;
    }
}

void PagedDocument::paint(QPainter &painter, int index) const
{
    if (index < 0 || index >= pageCount())
        return;
    painter.save();
    const double scale = deviceScale(painter);
    painter.scale(scale, scale);
    painter.fillRect(QRectF(QPointF(0, 0), m_pageSize), Qt::white);
    if (m_pdf)
        paintSheet(painter, index);
    else if (m_doc)
        paintText(painter, index);
    paintFrame(painter, index);
    painter.restore();
}

void PagedDocument::paintText(QPainter &painter, int index) const
{
    const auto [headTop, headBottom] = m_heads.value(index);
    const double head = headBottom - headTop;
    const double start = m_starts.value(index);
    const double end = index + 1 < m_starts.size() ? m_starts.at(index + 1)
                                                   : start + m_pageSize.height() - kTop - kBottom - head;
    paintSlice(painter, start, end, kTop + head, true);
    // The head goes on last and shows no rule below it: the page's first row brings its own.
    if (head > 0)
        paintSlice(painter, headTop, headBottom, kTop, false);
}

// Draws the laid-out text from `start` to `end` with `start` at `y` on the page.
void PagedDocument::paintSlice(QPainter &painter, double start, double end, double y, bool ruleBelow) const
{
    painter.save();
    painter.translate(kSide, y - start);
    // The painter clip keeps the page's own slice, a point wider so the rule
    // between two rows shows on both pages; the layout clip, a hair inside the
    // slice, keeps the lines touching its edges out of this page's text.
    const QRectF slice(-kSide, start, m_pageSize.width(), end - start);
    const QRectF wider = slice.adjusted(0, -1, 0, ruleBelow ? 1 : 0);
    painter.setClipRect(wider);
    // Qt draws the page's slice less the long tables, which are drawn here;
    // each of its pieces is clipped to itself, since Qt would also draw the
    // rows it still holds of those tables.
    QAbstractTextDocumentLayout *layout = m_doc->documentLayout();
    QList<QPair<double, double>> spans = {{start, end}};
    for (const auto &table : m_long) {
        QList<QPair<double, double>> rest;
        for (const auto &[top, bottom] : spans) {
            if (table->top() > top)
                rest.append({top, std::min(bottom, table->top())});
            if (table->bottom() < bottom)
                rest.append({std::max(top, table->bottom()), bottom});
        }
        spans = rest;
    }
    for (const auto &[top, bottom] : spans) {
        const bool first = top == start, last = bottom == end;
        QAbstractTextDocumentLayout::PaintContext ctx;
        ctx.clip = QRectF(-kSide, top, m_pageSize.width(), bottom - top)
                       .adjusted(0, first ? 0.5 : 0, 0, last ? -0.5 : 0);
        if (!(ctx.clip.height() > 0))
            continue; // an empty clip would draw everything
        ctx.palette.setColor(QPalette::Text, Qt::black);
        painter.setClipRect(QRectF(-kSide, first ? top - 1 : top, m_pageSize.width(),
                                   bottom - top + (first ? 1 : 0) + (last && ruleBelow ? 1 : 0)));
        layout->draw(&painter, ctx);
    }
    painter.setClipRect(wider);
    painter.setPen(Qt::black);
    for (const auto &table : m_long)
        table->paint(painter, start, end);
    painter.restore();
}

void PagedDocument::paintSheet(QPainter &painter, int index) const
{
    if (!m_pdf->isValid())
        return;
    const double w = m_pageSize.width(), h = m_pageSize.height();
    painter.setPen(Qt::black);
    painter.setFont(pageFont(10, deviceScale(painter), true));
    QString caption = m_source.caption;
    if (m_pdf->pageCount() >= 2)
        caption += u"  (sheet page %1 of %2)"_s.arg(index + 1).arg(m_pdf->pageCount());
    painter.drawText(QRectF(kSide, 22, w - 2 * kSide, 16), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     caption);

    const QSizeF sheet = m_pdf->pageSize(index);
    if (!(sheet.width() > 0 && sheet.height() > 0))
        return;
    const QRectF area(kSide, kTop, w - 2 * kSide, h - kTop - kBottom);
    const double k = std::min(area.width() / sheet.width(), area.height() / sheet.height());
    const QRectF target(area.left() + (area.width() - sheet.width() * k) / 2, area.top(), sheet.width() * k,
                        sheet.height() * k);
    // Drawn as a picture at print resolution: the vector route loses text and transparency.
    double dpi = kSheetDpi * k;
    const double pixels = (sheet.width() * dpi / 72) * (sheet.height() * dpi / 72);
    if (pixels > kMaxSheetPixels)
        dpi *= std::sqrt(kMaxSheetPixels / pixels);
    const QImage image = m_pdf->render(index, dpi);
    if (!image.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, image);
    }
    painter.setPen(QPen(QColor::fromRgbF(0.6, 0.6, 0.6), 0.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(target.adjusted(-0.5, -0.5, 0.5, 0.5));
}

void PagedDocument::paintFrame(QPainter &painter, int index) const
{
    const double w = m_pageSize.width(), h = m_pageSize.height();
    const double scale = deviceScale(painter);
    const QColor grey = QColor::fromRgbF(0.35, 0.35, 0.35);
    painter.setFont(pageFont(7.5, scale));
    painter.setPen(grey);
    const auto flags = Qt::AlignTop | Qt::TextSingleLine;
    if (index >= 1 && !m_pdf)
        painter.drawText(QRectF(kSide, kTitleY, w - 2 * kSide, 12), flags | Qt::AlignLeft, m_title);
    painter.fillRect(QRectF(kSide, h - kRuleAbove, w - 2 * kSide, 0.5), QColor::fromRgbF(0.7, 0.7, 0.7));
    const QRectF line(kSide, h - kFooterAbove, w - 2 * kSide, 12);
    if (m_footer)
        painter.drawText(line, flags | Qt::AlignLeft, *m_footer);
    painter.drawText(line, flags | Qt::AlignRight, u"Page %1 of %2"_s.arg(index + 1).arg(pageCount()));
}
