#pragma once
#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtGui/QBrush>
#include <QtGui/QTextBlock>
#include <QtGui/QTextLayout>

#include <memory>
#include <vector>

class QAbstractTextDocumentLayout;
class QPaintDevice;
class QPainter;
class QTextDocument;
class QTextTable;

// A long plain table that the paged engine sets and paints itself. Qt's own
// table layout and painting look cells up by searching the whole table, so a
// list of thousands of rows costs seconds. Here Qt keeps only the header and
// the few rows that decide each column's width, and so still chooses the
// columns; every row is then set at those widths in time linear in the rows.
// The kept table grows by the height of the rows it lost (an empty paragraph
// of that height in its last row), so everything below it stands where it
// would have.
class LongTable
{
public:
    // Shorter tables are left to Qt: they cost little either way.
    static constexpr int kMinRows = 40;

    // Takes over `table` when it is long, top level, of two columns or more,
    // ruled as a collapsed solid, inset or outset grid of one pixel, without
    // spans, nested frames or images, and with one plain paragraph per cell;
    // null otherwise.
    static std::unique_ptr<LongTable> take(QTextDocument &doc, QTextTable *table, QPaintDevice *device);
    ~LongTable();
    LongTable(const LongTable &) = delete;
    LongTable &operator=(const LongTable &) = delete;

    QTextTable *table() const { return m_table; }

    // Sets every row at the columns Qt gave the kept rows, once the document
    // has a new width, and sizes the kept table to match.
    void layout(QAbstractTextDocumentLayout *layout);

    struct RowSpan
    {
        double top = 0, bottom = 0;         // its lines with padding and border, as any table row is counted
        QList<QPair<double, double>> lines; // every line of its cells
    };
    // The rows, in document points, once laid out.
    QList<RowSpan> rowSpans() const;
    // How far the rows and their rules reach, in document points.
    double top() const;
    double bottom() const;

    // Paints the page slice [`start`, `end`] (document points, the painter
    // translated to the document's origin and clipped a point beyond the
    // slice): rules and fills as far as the clip shows them, and only the
    // lines within the slice, so a page's text holds only its own rows.
    void paint(QPainter &painter, double start, double end) const;

private:
    struct Cell
    {
        std::unique_ptr<QTextLayout> text;
        QBrush fill;
        int valign = 0;    // 0 top, 1 middle, 2 bottom
        double offset = 0; // of its text from the row's top
    };
    struct Row
    {
        std::vector<Cell> cells;
        double top = 0;    // the cell edge, in document points
        double height = 0; // edge to edge
    };

    LongTable() = default;

    QTextTable *m_table = nullptr;
    std::vector<Row> m_rows;
    QList<int> m_kept;                     // rows Qt still holds, ascending
    QList<double> m_cellLeft, m_cellWidth; // each column's cells, edge to edge
    QList<double> m_textLeft, m_textWidth; // and the text inside them
    double m_pad = 0, m_border = 0;        // as the table's format gives them
    double m_rule = 1;                     // a rule's width
    QColor m_topLeftRule, m_bottomRightRule;
    QList<QTextBlock> m_spacers; // one empty paragraph per cell of the last kept row
    double m_lost = 0;           // their height: the rows Qt no longer holds
};
