// Long tables are set and painted by the paged engine itself; every page must
// come out as Qt draws the whole table, pixel for pixel.
#include "documents/doctemplates.h"
#include "documents/pageddocument.h"
#include "documents/pdfwrite.h"
#include "documents/printengine.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QBuffer>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtGui/QTextDocument>
#include <QtGui/QTextFrame>
#include <QtGui/QTextTable>

using namespace Qt::StringLiterals;

namespace {
constexpr double kDpi = 150;

// A list log's table: a tinted header, the grid, a right-aligned amount,
// left empty now and then.
QString logTable(int rows, const QString &extraCell = {})
{
    QString html = u"<p>Log</p><table width='100%' border=1 cellspacing=0 cellpadding=4 "
                   u"style='border-collapse:collapse'><tr style='background:#e8e8ee'><th align=left>Date</th>"
                   u"<th align=left>Worker</th><th align=right>Amount</th></tr>"_s;
    for (int r = 1; r <= rows; ++r)
        html += u"<tr><td>Jun %1, 2026</td><td>%2</td><td align=right>%3</td></tr>"_s.arg(r % 28 + 1)
                    .arg(r % 7 ? u"Ann Smith"_s : u"Maximilian Fitzgerald-Ackerly"_s)
                    .arg(r % 5 ? QString::number(r * 37) + u".00"_s : QString());
    return html + extraCell + u"</table><p>End of log</p>"_s;
}

// Rows of one to four lines, wrapped and broken by hand, some cells centred
// against their taller neighbours.
QString tallRows(int rows)
{
    QString html = u"<table width='100%' border=1 cellspacing=0 cellpadding=2 "
                   u"style='border-collapse:collapse'><tr><th>Item</th><th>Note</th><th>Qty</th></tr>"_s;
    for (int r = 1; r <= rows; ++r) {
        QStringList lines;
        for (int k = 0; k <= r % 4; ++k)
            lines << u"note %1 line %2"_s.arg(r).arg(k);
        const QString valign = r % 3 ? u"middle"_s : u"bottom"_s;
        html += u"<tr><td valign=%1>item %2</td><td>%3 and a long tail of words that has to wrap inside "
                u"its column at least once</td><td valign=%1 align=right>%4</td></tr>"_s.arg(valign)
                    .arg(r)
                    .arg(lines.join(u"<br>"_s))
                    .arg(r * 3);
    }
    return html + u"</table><p>After the table</p>"_s;
}

// Mixed formatting inside cells, tinted rows, a solid grid, and the widest
// cell and longest word of a column only in the last rows.
QString richRows(int rows)
{
    QString html =
        u"<table width='100%' border=1 cellspacing=0 cellpadding=3 "
        u"style='border-collapse:collapse;border-style:solid'><tr><th>No.</th><th>Text</th></tr>"_s;
    for (int r = 1; r <= rows; ++r) {
        const QString text = r == rows ? u"a closing remark, much the longest of them all, that runs on"_s
                             : r == rows - 1 ? u"Antidisestablishmentarianism"_s
                                             : u"<b>bold</b> and <i>plain</i> words %1"_s.arg(r);
        html += u"<tr%1><td>%2</td><td>%3</td></tr>"_s.arg(r % 2 ? QString() : u" bgcolor='#f0f0f0'"_s)
                    .arg(r)
                    .arg(text);
    }
    return html + u"</table><h2>Next part</h2>"_s;
}

QImage blankPage(const QSizeF &points)
{
    QImage image((points * kDpi / 72).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(qRound(kDpi / 0.0254));
    image.setDotsPerMeterY(qRound(kDpi / 0.0254));
    image.fill(Qt::white);
    return image;
}

// The text area of page `index` as Qt itself draws the whole document.
QImage qtPage(const DB &db, const QString &html, const PagedDocument &pages, int index)
{
    static QBuffer sink;
    static QPdfWriter device(&sink);
    device.setResolution(72);
    const auto doc = DocTemplates::attributed(db, html + PDFOut::closingCredit());
    PrintEngine::blackOnWhite(*doc);
    doc->setDocumentMargin(0);
    doc->documentLayout()->setPaintDevice(&device);
    doc->setPageSize(QSizeF(pages.pageSize().width() - 2 * PagedDocument::kSide, -1));
    const QList<double> &starts = pages.pageStarts();
    const double start = starts.at(index);
    const double end = index + 1 < starts.size()
                           ? starts.at(index + 1)
                           : start + pages.pageSize().height() - PagedDocument::kTop - PagedDocument::kBottom;
    QImage image = blankPage(pages.pageSize());
    QPainter painter(&image);
    painter.scale(kDpi / 72, kDpi / 72);
    painter.translate(PagedDocument::kSide, PagedDocument::kTop - start);
    const QRectF slice(-PagedDocument::kSide, start, pages.pageSize().width(), end - start);
    painter.setClipRect(slice.adjusted(0, -1, 0, 1));
    QAbstractTextDocumentLayout::PaintContext ctx;
    ctx.clip = slice.adjusted(0, 0.5, 0, -0.5);
    ctx.palette.setColor(QPalette::Text, Qt::black);
    doc->documentLayout()->draw(&painter, ctx);
    return image;
}

QImage enginePage(const PagedDocument &pages, int index)
{
    QImage image = blankPage(pages.pageSize());
    QPainter painter(&image);
    pages.paint(painter, index);
    return image;
}

// Pixels that differ within the text area (title and footer left out).
int differences(const QImage &a, const QImage &b, const PagedDocument &pages, int index)
{
    const QList<double> &starts = pages.pageStarts();
    const double height = index + 1 < starts.size()
                              ? starts.at(index + 1) - starts.at(index)
                              : pages.pageSize().height() - PagedDocument::kTop - PagedDocument::kBottom;
    const int top = int((PagedDocument::kTop - 2) * kDpi / 72);
    const int bottom = std::min(a.height(), int((PagedDocument::kTop + height + 2) * kDpi / 72));
    int n = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = 0; x < a.width(); ++x)
            n += a.pixel(x, y) != b.pixel(x, y);
    return n;
}

int tableRows(const PagedDocument &pages)
{
    for (QTextFrame *frame : pages.document()->rootFrame()->childFrames())
        if (auto *table = qobject_cast<QTextTable *>(frame))
            return table->rows();
    return -1;
}
} // namespace

class LongTableTests : public QObject
{
    Q_OBJECT
    DB db;

private Q_SLOTS:
    void initTestCase() { db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s); }

    void pagesLookAsQtDrawsThem_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<bool>("landscape");
        QTest::newRow("list log") << logTable(130) << false;
        QTest::newRow("list log, landscape") << logTable(130) << true;
        QTest::newRow("wrapped, broken and centred cells") << tallRows(60) << false;
        QTest::newRow("rich cells, widest last") << richRows(90) << false;
    }
    void pagesLookAsQtDrawsThem()
    {
        QFETCH(QString, html);
        QFETCH(bool, landscape);
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Log"_s);
        if (landscape)
            pages.layout(PagedDocument::letter(QPageLayout::Landscape));
        QVERIFY(pages.pageCount() >= 3);
        QVERIFY2(tableRows(pages) < 20, "the engine left the long table to Qt");
        for (int index : {0, pages.pageCount() / 2, pages.pageCount() - 1}) {
            const int n = differences(enginePage(pages, index), qtPage(db, html, pages, index), pages, index);
            QVERIFY2(n == 0, qPrintable(u"page %1: %2 pixels differ"_s.arg(index + 1).arg(n)));
        }
    }

    void onlyPlainLongTablesAreTaken_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<int>("rows");
        QTest::newRow("short") << logTable(20) << 21;
        QTest::newRow("spanning cell") << logTable(60, u"<tr><td colspan=3>Total</td></tr>"_s) << 62;
        QTest::newRow("two paragraphs in a cell")
            << logTable(60, u"<tr><td><p>a</p><p>b</p></td><td>x</td><td>1</td></tr>"_s) << 62;
        QTest::newRow("image in a cell")
            << logTable(60, u"<tr><td><img src='file:///none.png' width=9></td><td>x</td><td>1</td></tr>"_s)
            << 62;
    }
    void onlyPlainLongTablesAreTaken()
    {
        QFETCH(QString, html);
        QFETCH(int, rows);
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Log"_s);
        QCOMPARE(tableRows(pages), rows);
    }
};

TRESTLE_TEST(LongTableTests);
#include "longtabletests.moc"
