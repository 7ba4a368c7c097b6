#pragma once
#include "printsource.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QSizeF>
#include <QtGui/QPageLayout>

#include <memory>
#include <optional>
#include <vector>

class DB;
class LongTable;
class PdfPages;
class QPaintDevice;
class QPainter;
class QTextDocument;
class QTextTable;

// The one paged engine behind printing, the preview and saved PDFs. It lays
// the text out once at the page's text width (in points) and cuts it into
// pages itself: text breaks between lines, and a table row that does not fit
// moves whole to the next page unless it starts within 24 pt of the page top;
// a row taller than a page moves too, and is cut on the page it starts. A
// table's head rows (its QTextTableFormat::headerRowCount, from an HTML
// <thead>) go over with its first row and are drawn again at the top of each
// page it continues on. Long plain tables are set and painted by LongTable
// rather than Qt, which is slow on them. A plan sheet gives one page per page
// of its PDF file.
class PagedDocument
{
public:
    // Page geometry, in points.
    static constexpr double kSide = 42;          // left and right margins
    static constexpr double kTop = 40;           // text starts this far below the page top
    static constexpr double kBottom = 54;        // kept free at the bottom for the footer
    static constexpr double kTitleY = 20;        // continuation title
    static constexpr double kRuleAbove = 37;     // rule above the footer, from the page bottom
    static constexpr double kFooterAbove = 32;   // footer text, from the page bottom
    static constexpr double kKeepRowWithin = 24; // a row starting this close to the top is never moved
    static constexpr int kMaxPages = 2000;

    // Prepares `source` (an HTML source goes through the page shell with the
    // closing credit) and lays it out on US Letter portrait.
    PagedDocument(const DB &db, PrintSource source, const QString &title,
                  const std::optional<QString> &footer = std::nullopt);
    // Pages `document` itself, with no copy: it is made black on white and
    // laid out once, for `pageSize` in points.
    PagedDocument(std::unique_ptr<QTextDocument> document, const QString &title,
                  const std::optional<QString> &footer, const QSizeF &pageSize);
    ~PagedDocument();
    PagedDocument(const PagedDocument &) = delete;
    PagedDocument &operator=(const PagedDocument &) = delete;

    // Lays out again for a paper size in points (width by height as held).
    void layout(const QSizeF &pageSize);
    // Lays out for a page layout's full paper size and orientation.
    void layout(const QPageLayout &page);
    // Text is laid out in points: on this 72-dpi PDF writer's metrics, so font
    // points, HTML sizes and page geometry all share one unit.
    static QPaintDevice *pointDevice();
    // US Letter with no margins, in `orientation`: how saved PDFs are set up.
    static QPageLayout letter(QPageLayout::Orientation orientation = QPageLayout::Portrait);

    QSizeF pageSize() const { return m_pageSize; }
    // Pages in the current layout, at least 1.
    int pageCount() const;
    QString title() const { return m_title; }
    // Whether a plan sheet's first page is wider than tall, so it prints landscape.
    bool prefersLandscape() const;
    // The black-on-white text being paged, its long tables cut down to the
    // rows Qt needs to size their columns; null for a plan sheet.
    const QTextDocument *document() const { return m_doc.get(); }
    // Where each page starts in the laid-out text, in points from its top.
    const QList<double> &pageStarts() const { return m_starts; }

    // Draws page `index` (from 0) with the painter's origin at the page's top
    // left corner in device units; scales itself from the device's resolution.
    void paint(QPainter &painter, int index) const;

private:
    struct Unit;
    void prepare();
    void paginate();
    void breakPages();
    const LongTable *longTable(const QTextTable *table) const;
    void paintText(QPainter &painter, int index) const;
    void paintSlice(QPainter &painter, double start, double end, double y, bool ruleBelow) const;
    void paintSheet(QPainter &painter, int index) const;
    void paintFrame(QPainter &painter, int index) const;

    PrintSource m_source;
    QString m_title;
    std::optional<QString> m_footer;
    QSizeF m_pageSize;
    std::unique_ptr<QTextDocument> m_doc;
    std::unique_ptr<PdfPages> m_pdf;
    std::vector<std::unique_ptr<LongTable>> m_long; // long tables set and painted here, not by Qt
    QList<double> m_starts;                         // one per page, ascending
    QList<QPair<double, double>> m_heads;           // one per page: the head rows drawn above its text
    bool m_split = false; // blocks were split at this layout's page breaks (one undo joins them)
};
