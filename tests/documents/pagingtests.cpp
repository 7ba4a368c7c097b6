// The paged engine, judged by the text of each page of the PDFs it writes.
#include "documents/doctemplates.h"
#include "documents/printengine.h"
#include "pdfcheck.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QImage>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextTable>

using namespace Qt::StringLiterals;

namespace {
// Numbered words, enough to fill several pages as running text.
QString words(const QString &prefix, int n)
{
    QStringList w;
    for (int i = 1; i <= n; ++i)
        w << prefix + u"%1"_s.arg(i, 4, 10, QChar(u'0'));
    return w.join(u' ');
}

// A table whose rows hold 1 to 4 lines; every word of row n is tagged with n.
// Its head row ("Row", "Lines") is marked as one when `head` is set.
QString variedTable(int rows, bool head = false)
{
    QString html = u"<table width='100%' border=1 cellspacing=0 cellpadding=4 "
                   u"style='border-collapse:collapse'>"_s +
                   (head ? u"<thead>"_s : QString()) +
                   u"<tr style='background:#e8e8ee'><th align=left>Row</th><th align=left>Lines</th></tr>"_s +
                   (head ? u"</thead>"_s : QString());
    for (int r = 1; r <= rows; ++r) {
        QStringList lines;
        for (int k = 0; k <= r % 4; ++k)
            lines << u"r%1k%2"_s.arg(r, 3, 10, QChar(u'0')).arg(k);
        html += u"<tr><td>r%1</td><td>%2</td></tr>"_s.arg(r, 3, 10, QChar(u'0')).arg(lines.join(u"<br>"_s));
    }
    return html + u"</table>"_s;
}

// The page on which every word starting with `prefix` stands, or -1 when they
// are split over pages or missing.
int pageOf(const QList<QStringList> &pages, const QString &prefix, int expected)
{
    int page = -1, seen = 0;
    for (int p = 0; p < pages.size(); ++p)
        for (const QString &w : pages.at(p))
            if (w.startsWith(prefix)) {
                if (page >= 0 && page != p)
                    return -1;
                page = p;
                ++seen;
            }
    return seen == expected ? page : -1;
}
} // namespace

class PagingTests : public QObject
{
    Q_OBJECT
    DB db;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase() { db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s); }

    void rowsNeverSplit()
    {
        PagedDocument pages(db, PrintSource::fromHtml(variedTable(200)), u"Log"_s);
        const auto text = PdfCheck::written(pages, dir, u"rows.pdf"_s);
        QVERIFY(text.size() >= 4);
        QCOMPARE(text.size(), pages.pageCount());
        int last = 0;
        for (int r = 1; r <= 200; ++r) {
            const QString tag = u"r%1"_s.arg(r, 3, 10, QChar(u'0'));
            const int page = pageOf(text, tag, 1 + (r % 4) + 1);
            QVERIFY2(page >= 0, qPrintable(tag + u" is split or missing"_s));
            QVERIFY(page >= last);
            last = page;
        }
    }

    void headRowsRepeat_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("head");
        QTest::addColumn<int>("linesBefore");
        QTest::newRow("table set by Qt") << 30 << true << 0;
        QTest::newRow("long table set by the engine") << 200 << true << 0;
        QTest::newRow("text above the table") << 30 << true << 25;
        QTest::newRow("head row not marked: page 1 only") << 30 << false << 0;
        // Lines above that bring the head near the foot of page 1 (one of them to its very foot).
        for (int n = 26; n <= 31; ++n)
            QTest::addRow("head near the page foot, %d lines above", n) << 30 << true << n;
    }

    void headRowsRepeat()
    {
        QFETCH(int, rows);
        QFETCH(bool, head);
        QFETCH(int, linesBefore);
        QString html;
        for (int i = 1; i <= linesBefore; ++i)
            html += u"<p>a%1</p>"_s.arg(i, 4, 10, QChar(u'0'));
        html += variedTable(rows, head);
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Log"_s);
        const QString name = u"heads.pdf"_s;
        const auto text = PdfCheck::written(pages, dir, name);
        QVERIFY(text.size() >= 2);
        QCOMPARE(text.size(), pages.pageCount());
        static const QRegularExpression rowWord(u"^r\\d{3}$"_s);
        int headed = 0, seen = 0;
        for (int p = 0; p < text.size(); ++p) {
            const QStringList &w = text.at(p);
            const auto firstRow = std::find_if(w.cbegin(), w.cend(),
                                               [](const QString &x) { return rowWord.match(x).hasMatch(); });
            // A head never ends a page: the table's first row stands on the page with it.
            if (w.contains(u"Lines"_s))
                QVERIFY2(firstRow != w.cend(), qPrintable(u"page %1 ends with the head"_s.arg(p + 1)));
            if (firstRow == w.cend())
                continue;
            const qsizetype at = firstRow - w.cbegin();
            if (w.count(u"Lines"_s) == 1 && w.indexOf(u"Row"_s) < at && w.indexOf(u"Lines"_s) < at)
                ++headed;
            else
                QVERIFY2(w.count(u"Lines"_s) == 0, qPrintable(u"page %1: head misplaced"_s.arg(p + 1)));
            ++seen;
        }
        QVERIFY(seen >= 2);
        QCOMPARE(headed, head ? seen : 1);
        for (int r = 1; r <= rows; ++r) {
            const QString tag = u"r%1"_s.arg(r, 3, 10, QChar(u'0'));
            QVERIFY2(pageOf(text, tag, 1 + (r % 4) + 1) >= 0, qPrintable(tag + u" is split or missing"_s));
        }
        // The rows below a repeated head still end above the footer's band.
        const PdfPages pdf(dir.filePath(name));
        for (int p = 0; p < pdf.pageCount(); ++p) {
            const QImage page = pdf.render(p, 72).convertToFormat(QImage::Format_RGB32);
            for (int y = page.height() - int(PagedDocument::kBottom) + 2;
                 y < page.height() - int(PagedDocument::kRuleAbove) - 2; ++y)
                for (int x = 0; x < page.width(); ++x)
                    QVERIFY2(QColor(page.pixel(x, y)).lightness() > 250,
                             qPrintable(u"ink at %1,%2 of page %3"_s.arg(x).arg(y).arg(p + 1)));
        }
    }

    void runningTextBreaksBetweenLines()
    {
        // Every word once and in order: no line lost at a break and none printed on two pages.
        const QString html = u"<p>"_s + words(u"a"_s, 900) + u"</p>"_s + variedTable(30) + u"<p>"_s +
                             words(u"z"_s, 900) + u"</p>"_s;
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Doc"_s);
        const auto text = PdfCheck::written(pages, dir);
        QVERIFY(text.size() >= 3);
        QStringList all;
        for (const QStringList &page : text)
            for (const QString &w : page)
                if ((w.startsWith(u'a') || w.startsWith(u'z')) && w.size() == 5)
                    all << w;
        QCOMPARE(all, QString(words(u"a"_s, 900) + u' ' + words(u"z"_s, 900)).split(u' '));
    }

    void longTablePrintsEachRowOnce()
    {
        // A list log's one big table: every cell once and in order, and no page
        // repeating, hidden or not, the last line of the page before it.
        const int rows = 2000;
        QString html =
            u"<p>Log</p><table width='100%' border=1 cellspacing=0 cellpadding=4 "
            u"style='border-collapse:collapse'><tr style='background:#e8e8ee'><th align=left>Key</th>"
            u"<th align=right>Value</th></tr>"_s;
        QStringList expected;
        for (int r = 1; r <= rows; ++r) {
            const QString key = u"k%1"_s.arg(r, 4, 10, QChar(u'0'));
            const QString value = u"v%1"_s.arg(r, 4, 10, QChar(u'0'));
            html += u"<tr><td>"_s + key + u"</td><td align=right>"_s + value + u"</td></tr>"_s;
            expected << key << value;
        }
        html += u"</table><p>End</p>"_s;
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Log"_s);
        const auto text = PdfCheck::written(pages, dir, u"long.pdf"_s);
        QVERIFY(text.size() >= 40);
        QCOMPARE(text.size(), pages.pageCount());
        static const QRegularExpression cellWord(u"^[kv]\\d{4}$"_s);
        QStringList all;
        QString lastOfPrevious;
        for (int p = 0; p < text.size(); ++p) {
            QStringList mine;
            for (const QString &w : text.at(p))
                if (cellWord.match(w).hasMatch())
                    mine << w;
            QVERIFY2(!mine.isEmpty(), qPrintable(u"page %1 has no rows"_s.arg(p + 1)));
            QVERIFY2(lastOfPrevious.isEmpty() || !mine.contains(lastOfPrevious),
                     qPrintable(u"page %1 repeats %2"_s.arg(p + 1).arg(lastOfPrevious)));
            lastOfPrevious = mine.last();
            all += mine;
        }
        QCOMPARE(all.size(), expected.size());
        QCOMPARE(all, expected);
    }

    void tallRowMovesThenIsCut_data()
    {
        QTest::addColumn<int>("linesBefore");
        QTest::addColumn<int>("firstPage"); // where the row's first line prints
        QTest::newRow("row at the page top: cut where it stands") << 0 << 0;
        QTest::newRow("row within 24 pt of the top: cut where it stands") << 1 << 0;
        QTest::newRow("row lower down: moves, then is cut") << 8 << 1;
    }
    void tallRowMovesThenIsCut()
    {
        QFETCH(int, linesBefore);
        QFETCH(int, firstPage);
        QString html;
        for (int i = 0; i < linesBefore; ++i)
            html += u"<p>before%1</p>"_s.arg(i);
        QStringList lines;
        for (int i = 0; i < 90; ++i)
            lines << u"tall%1"_s.arg(i, 2, 10, QChar(u'0'));
        html += u"<table border=1 cellpadding=2><tr><td>"_s + lines.join(u"<br>"_s) + u"</td></tr></table>"_s;
        PagedDocument pages(db, PrintSource::fromHtml(html), u"Doc"_s);
        const auto text = PdfCheck::written(pages, dir);
        QVERIFY(text.size() >= 2 + firstPage);
        QVERIFY(text.at(firstPage).contains(u"tall00"_s));
        if (firstPage > 0)
            QVERIFY(text.at(0).contains(u"before0"_s));
        QStringList seen;
        for (const QStringList &page : text)
            for (const QString &w : page)
                if (w.startsWith(u"tall"_s))
                    seen << w;
        QCOMPARE(seen, lines);
        // The cut page is filled: the row runs on over the next page.
        QVERIFY(text.at(firstPage + 1).contains(lines.last()));
    }

    void emptyTextHasOnePageWithFooter()
    {
        auto doc = std::make_shared<QTextDocument>();
        PagedDocument pages(db, PrintSource::fromDocument(doc), u"Empty"_s, PDFOut::savedFooter());
        const auto text = PdfCheck::written(pages, dir);
        QCOMPARE(text.size(), 1);
        const QString joined = text.at(0).join(u' ');
        QVERIFY(joined.contains(u"Page 1 of 1"_s));
        QVERIFY(joined.contains(PDFOut::kMakerAddress.toString()));
    }

    void continuationTitleFromPageTwo()
    {
        PagedDocument pages(db, PrintSource::fromHtml(u"<p>"_s + words(u"w"_s, 1500) + u"</p>"_s),
                            u"Zebracontinued"_s);
        const auto text = PdfCheck::written(pages, dir);
        QVERIFY(text.size() >= 2);
        QVERIFY(!text.at(0).contains(u"Zebracontinued"_s));
        for (int p = 1; p < text.size(); ++p)
            QVERIFY(text.at(p).contains(u"Zebracontinued"_s));
        QVERIFY(text.last().contains(u"Page"_s));
        QCOMPARE(text.last().mid(text.last().lastIndexOf(u"Page"_s)).join(u' '),
                 u"Page %1 of %1"_s.arg(text.size()));
    }

    // Laying out for one paper and then another gives the pages a fresh layout
    // for the second paper gives: no line breaks are left where the first paper's pages broke.
    void relayoutLeavesTheTextAsItWas_data()
    {
        QTest::addColumn<QPageLayout>("paper");
        const QMarginsF none(0, 0, 0, 0);
        QTest::newRow("A4") << QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, none);
        QTest::newRow("Letter landscape") << PagedDocument::letter(QPageLayout::Landscape);
        QTest::newRow("Legal") << QPageLayout(QPageSize(QPageSize::Legal), QPageLayout::Portrait, none);
    }
    void relayoutLeavesTheTextAsItWas()
    {
        QFETCH(QPageLayout, paper);
        const QString html = u"<h2>Scope</h2><p>"_s + words(u"a"_s, 700) + u"</p><ul><li>"_s +
                             words(u"b"_s, 300) + u"</li></ul>"_s + variedTable(40) + u"<p>"_s +
                             words(u"c"_s, 900) + u"</p>"_s;
        const auto pageLines = [&](const PagedDocument &pages, const QString &name) {
            const QString path = dir.filePath(name);
            PDFOut::writePaged(pages, path);
            const PdfPages pdf(path);
            QStringList out;
            for (int i = 0; i < pdf.pageCount(); ++i)
                out << pdf.text(i);
            return out;
        };
        PagedDocument fresh(db, PrintSource::fromHtml(html), u"Doc"_s);
        fresh.layout(paper);
        const QStringList want = pageLines(fresh, u"fresh.pdf"_s);
        QVERIFY(want.size() >= 3);

        PagedDocument again(db, PrintSource::fromHtml(html), u"Doc"_s); // laid out for Letter first
        const QStringList letter = pageLines(again, u"letter.pdf"_s);
        again.layout(paper);
        const QStringList got = pageLines(again, u"again.pdf"_s);
        QCOMPARE(got.size(), want.size());
        for (qsizetype i = 0; i < want.size(); ++i)
            QCOMPARE(got.at(i), want.at(i));
        // And back: Letter's pages come out as they first did.
        again.layout(PagedDocument::letter());
        QCOMPARE(pageLines(again, u"back.pdf"_s), letter);
    }

    void landscapeRepaginates()
    {
        PagedDocument pages(db, PrintSource::fromHtml(variedTable(120)), u"Log"_s);
        const int portrait = pages.pageCount();
        pages.layout(PagedDocument::letter(QPageLayout::Landscape));
        QCOMPARE(pages.pageSize(), QSizeF(792, 612));
        QVERIFY(pages.pageCount() > portrait);
        const QString path = dir.filePath(u"wide.pdf"_s);
        QVERIFY(PDFOut::writePaged(pages, path));
        const PdfPages pdf(path);
        QCOMPARE(pdf.pageCount(), pages.pageCount());
        QCOMPARE(pdf.pageSize(0).toSize(), QSize(792, 612));
    }

    void coloursPrintBlackOnWhite()
    {
        const auto doc = DocTemplates::attributed(
            db,
            u"<table border=1><tr style='background:#e8e8ee'><th>Head</th></tr><tr><td bgcolor='#202040'>"
            u"<span style='color:#ffffff'>Night</span></td></tr><tr><td bgcolor='#555555'>&nbsp;</td></tr>"
            u"</table><p><span style='color:rgba(255,255,255,0.01)'>ghost</span></p>"_s);
        PrintEngine::blackOnWhite(*doc);
        auto *table = qobject_cast<QTextTable *>(doc->rootFrame()->childFrames().value(0));
        QVERIFY(table);
        QCOMPARE(table->cellAt(0, 0).format().background().color(), QColor(u"#e8e8ee"_s));
        QCOMPARE(table->cellAt(1, 0).format().background().style(), Qt::NoBrush);
        // A dark cell with nothing on it is a chart's bar and keeps its fill.
        QCOMPARE(table->cellAt(2, 0).format().background().color(), QColor(u"#555555"_s));
        QTextCursor night = doc->find(u"Night"_s);
        QCOMPARE(night.charFormat().foreground().color(), QColor(Qt::black));
        // Nearly transparent counts as dark: the text keeps its colour.
        QCOMPARE(PrintEngine::lum(QColor(255, 255, 255, 5)), 0.0);
        QCOMPARE(doc->find(u"ghost"_s).charFormat().foreground().color().alpha() < 10, true);
    }

    void shellHonoursTheSubset()
    {
        const auto doc = DocTemplates::attributed(
            db, u"<table width='100%' border=1 cellspacing=0 cellpadding=2 style='border-collapse:collapse'>"
                u"<tr><td style='font-size:9.0pt' width=90>Small&nbsp;cell</td></tr></table><hr>"
                u"<img src='file:///nonexistent.png' width=300><p>after</p>"_s);
        QVERIFY(doc->find(u"Small"_s).block().text().contains(QChar(0xa0)));
        QCOMPARE(doc->find(u"Small"_s).charFormat().fontPointSize(), 9.0);
        bool image = false;
        for (QTextBlock b = doc->begin(); b.isValid(); b = b.next())
            for (auto it = b.begin(); !it.atEnd(); ++it)
                if (it.fragment().charFormat().isImageFormat()) {
                    image = true;
                    QCOMPARE(it.fragment().charFormat().toImageFormat().width(), 300.0);
                    QVERIFY(!b.blockFormat().hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth));
                }
        QVERIFY(image);
    }

    // A margin in points is kept (Qt alone reads it as none), after a table too,
    // while the same words in the text are left as typed.
    void marginsInPointsAreKept_data()
    {
        QTest::addColumn<QString>("before");
        QTest::newRow("after a table") << u"<table border=1><tr><td>x</td></tr></table>"_s;
        QTest::newRow("after a paragraph") << u"<p>x</p>"_s;
    }

    void marginsInPointsAreKept()
    {
        QFETCH(QString, before);
        const auto top = [&](const QString &style) {
            const auto doc = DocTemplates::attributed(db, before + u"<p style='"_s + style +
                                                              u"'>credit margin:18pt</p>"_s);
            doc->setTextWidth(400);
            const QTextCursor at = doc->find(u"credit"_s);
            return std::pair{doc->documentLayout()->blockBoundingRect(at.block()).top(), at.block().text()};
        };
        const auto [plain, text] = top(u"font-size:8pt"_s);
        const auto [spaced, same] = top(u"font-size:8pt;margin-top:40pt"_s);
        QVERIFY2(spaced - plain > 20, qPrintable(u"%1 → %2"_s.arg(plain).arg(spaced)));
        QCOMPARE(same, u"credit margin:18pt"_s);
    }

    void planSheetPages()
    {
        // A two-page landscape sheet made by the engine itself, then printed as a sheet.
        PagedDocument sheet(db, PrintSource::fromHtml(u"<p>"_s + words(u"s"_s, 900) + u"</p>"_s), u"S"_s);
        sheet.layout(PagedDocument::letter(QPageLayout::Landscape));
        const QString sheetPath = dir.filePath(u"sheet.pdf"_s);
        QVERIFY(PDFOut::writePaged(sheet, sheetPath));
        PagedDocument pages(db, PrintSource::fromPdf(sheetPath, u"A-101 Floor plan"_s), u"Plan sheet"_s);
        QVERIFY(pages.prefersLandscape());
        pages.layout(PagedDocument::letter(QPageLayout::Landscape));
        const auto text = PdfCheck::written(pages, dir, u"printed-sheet.pdf"_s);
        QCOMPARE(text.size(), 2);
        QVERIFY(text.at(0).join(u' ').contains(u"A-101 Floor plan (sheet page 1 of 2)"_s));
        QVERIFY(!text.at(1).contains(u"Plan"_s)); // a sheet has its caption, not the title
    }

    void damagedSheetPrintsFooterOnly()
    {
        const QString path = dir.filePath(u"broken.pdf"_s);
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4\n garbage \x01\x02 trailer");
        f.close();
        PagedDocument pages(db, PrintSource::fromPdf(path, u"Broken"_s), u"Plan sheet"_s, u"foot"_s);
        QVERIFY(!pages.prefersLandscape());
        const auto text = PdfCheck::written(pages, dir, u"broken-out.pdf"_s);
        QCOMPARE(text.size(), 1);
        QCOMPARE(text.at(0).join(u' '), u"foot Page 1 of 1"_s);
    }
};

TRESTLE_TEST(PagingTests);
#include "pagingtests.moc"
