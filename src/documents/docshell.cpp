// The page shell: wraps a body of the document HTML subset and imports it into
// a QTextDocument, rewriting the few constructs Qt's importer reads differently.
#include "doctemplates.h"
#include "pageddocument.h"
#include "pointimages.h"
#include "printlogo.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextDocumentFragment>
#include <QtGui/QTextLayout>
#include <QtGui/QTextOption>
#include <QtGui/QTextTable>

using namespace Qt::StringLiterals;

namespace DocTemplates {

namespace {
const QString kHead = u"<html><head><style>body{font-family:'Helvetica Neue';font-size:12pt;color:#111} "
                      u"h1{font-size:22pt} h2{font-size:15pt} td,th{font-size:10pt}</style></head><body>"_s;
const QString kTail = u"</body></html>"_s;

// Qt ignores a background on <tr>; it honours bgcolor on each cell of the row.
QString rowBackgrounds(const QString &html)
{
    static const QRegularExpression row(
        u"<tr([^>]*?)\\s*style\\s*=\\s*['\"]\\s*background(?:-color)?\\s*:\\s*([^;'\"]+);?\\s*['\"]([^>]*)>(.*?)</tr>"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression cell(u"<(t[dh])\\b"_s, QRegularExpression::CaseInsensitiveOption);
    QString out;
    out.reserve(html.size() + html.size() / 8);
    qsizetype last = 0;
    for (auto it = row.globalMatch(html); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        out += QStringView(html).mid(last, m.capturedStart() - last);
        QString cells = m.captured(4);
        cells.replace(cell, u"<\\1 bgcolor='"_s + m.captured(2).trimmed() + u"'"_s);
        out += u"<tr"_s + m.captured(1) + m.captured(3) + u'>' + cells + u"</tr>"_s;
        last = m.capturedEnd();
    }
    out += QStringView(html).mid(last);
    return out;
}

constexpr double kLetterTextWidth = 612 - 2 * PagedDocument::kSide;

// Whether a line of a cell of the table `doc` opens with is wider than its
// column: Qt squeezes the columns of a row that cannot fit, and lets the
// logo or the words run over the next cell.
bool overflows(QTextDocument &doc)
{
    const QList<QTextFrame *> frames = doc.rootFrame()->childFrames();
    auto *table = frames.isEmpty() ? nullptr : qobject_cast<QTextTable *>(frames.first());
    if (!table)
        return false;
    QAbstractTextDocumentLayout *layout = doc.documentLayout();
    (void)doc.size(); // finishes the layout
    const double pad = table->format().cellPadding() + std::max(0.0, table->format().border());
    const auto leftOf = [&](int column) {
        return layout->blockBoundingRect(doc.findBlock(table->cellAt(0, column).firstPosition())).left();
    };
    for (int c = 0; c < table->columns(); ++c) {
        const double room =
            (c + 1 < table->columns() ? leftOf(c + 1) - 2 * pad : kLetterTextWidth) - leftOf(c);
        const QTextTableCell cell = table->cellAt(0, c);
        for (QTextBlock b = doc.findBlock(cell.firstPosition());
             b.isValid() && b.position() <= cell.lastPosition(); b = b.next())
            if (const QTextLayout *tl = b.layout())
                for (int k = 0; k < tl->lineCount(); ++k)
                    if (tl->lineAt(k).naturalTextWidth() > room + 0.5)
                        return true;
    }
    return false;
}

// The letterhead's title (first line of the right-hand cell of the table the
// document opens with) becomes a paragraph that never wraps, so the table's
// columns make room for it whole; the job lines under it wrap as before.
void keepTitleWhole(QTextDocument &doc)
{
    const QList<QTextFrame *> frames = doc.rootFrame()->childFrames();
    auto *table = frames.isEmpty() ? nullptr : qobject_cast<QTextTable *>(frames.first());
    if (!table || table->rows() != 1 || table->columns() < 2 || table->firstPosition() > 1)
        return;
    const QTextTableCell cell = table->cellAt(0, table->columns() - 1);
    QTextBlock block = doc.findBlock(cell.firstPosition());
    if (!block.isValid() || !(block.blockFormat().alignment() & Qt::AlignRight) || block.begin().atEnd() ||
        block.begin().fragment().charFormat().fontWeight() < QFont::DemiBold)
        return;
    QTextCursor cursor(block);
    const qsizetype br = block.text().indexOf(QChar::LineSeparator);
    if (br > 0) {
        cursor.setPosition(block.position() + int(br));
        cursor.deleteChar();
        cursor.insertBlock();
        QTextBlockFormat rest = cursor.blockFormat();
        rest.setTopMargin(0);
        rest.setNonBreakableLines(false);
        cursor.setBlockFormat(rest);
        cursor.setPosition(block.position());
    }
    QTextBlockFormat title = cursor.blockFormat();
    title.setNonBreakableLines(true);
    title.setBottomMargin(0);
    cursor.setBlockFormat(title);

    // A title too long to stand whole beside the logo and the company name at
    // Letter's text width is set smaller until the letterhead fits.
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    QTextCursor whole(&doc);
    whole.setPosition(table->firstPosition() - 1);
    whole.setPosition(table->lastPosition() + 1, QTextCursor::KeepAnchor);
    for (int step = 0; step < 12; ++step) {
        QTextDocument probe;
        probe.documentLayout()->setPaintDevice(PagedDocument::pointDevice());
        PointImages::install(probe);
        probe.setDocumentMargin(0);
        probe.setDefaultTextOption(doc.defaultTextOption());
        probe.setTextWidth(kLetterTextWidth);
        QTextCursor(&probe).insertFragment(QTextDocumentFragment(whole));
        if (!overflows(probe))
            return;
        const double pt = cursor.charFormat().fontPointSize();
        if (pt < 10)
            return; // smaller than this a title is no longer a title
        QTextCharFormat smaller;
        smaller.setFontPointSize(pt * 0.92);
        cursor.mergeCharFormat(smaller);
    }
}

// An image straight after a rule would join the rule's block and vanish with it.
QString separateRules(QString html)
{
    static const QRegularExpression ruleThenImage(u"(<hr[^>]*>)(\\s*<img)"_s,
                                                  QRegularExpression::CaseInsensitiveOption);
    return html.replace(ruleThenImage, u"\\1<p>\\2"_s);
}
} // namespace

// Qt reads a margin given in points as none at all. The layout's unit is the
// point (a 72-dpi writer), so the same number in pixels is the size meant.
// Only style attributes are touched, never the text a user typed.
QString marginsInPoints(const QString &html)
{
    static const QRegularExpression style(u"style\\s*=\\s*('[^']*'|\"[^\"]*\")"_s);
    static const QRegularExpression margin(u"(margin(?:-top|-bottom|-left|-right)?\\s*:[^;]*)"_s);
    static const QRegularExpression points(u"(\\d+(?:\\.\\d+)?)pt\\b"_s);
    QString out;
    qsizetype last = 0;
    for (auto it = style.globalMatch(html); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        QString attr = m.captured(0);
        if (attr.contains(u"margin"_s)) {
            QString fixed;
            qsizetype at = 0;
            for (auto d = margin.globalMatch(attr); d.hasNext();) {
                const QRegularExpressionMatch decl = d.next();
                fixed += QStringView(attr).mid(at, decl.capturedStart(0) - at);
                fixed += QString(decl.captured(0)).replace(points, u"\\1px"_s);
                at = decl.capturedEnd(0);
            }
            attr = fixed + QStringView(attr).mid(at);
        }
        out += QStringView(html).mid(last, m.capturedStart(0) - last);
        out += attr;
        last = m.capturedEnd(0);
    }
    return out + QStringView(html).mid(last);
}

QString shellHTML(const QString &body)
{
    return kHead + marginsInPoints(separateRules(rowBackgrounds(body))) + kTail;
}

std::unique_ptr<QTextDocument> attributed(const DB &db, const QString &body)
{
    auto doc = std::make_unique<QTextDocument>();
    // Qt's default may break inside a word, which lets a crowded table squeeze a
    // column below its widest amount and split "$352,784.93" over two lines.
    QTextOption option = doc->defaultTextOption();
    option.setWrapMode(QTextOption::WordWrap);
    doc->setDefaultTextOption(option);
    doc->setHtml(shellHTML(body));
    PrintLogo::attach(db, *doc);
    keepTitleWhole(*doc);
    return doc;
}

} // namespace DocTemplates
