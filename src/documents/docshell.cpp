// The page shell: wraps a body of the document HTML subset and imports it into
// a QTextDocument, rewriting the few constructs Qt's importer reads differently.
#include "doctemplates.h"
#include "printlogo.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QTextDocument>
#include <QtGui/QTextOption>

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

// An image straight after a rule would join the rule's block and vanish with it.
QString separateRules(QString html)
{
    static const QRegularExpression ruleThenImage(u"(<hr[^>]*>)(\\s*<img)"_s,
                                                  QRegularExpression::CaseInsensitiveOption);
    return html.replace(ruleThenImage, u"\\1<p>\\2"_s);
}
} // namespace

QString shellHTML(const QString &body)
{
    return kHead + separateRules(rowBackgrounds(body)) + kTail;
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
    return doc;
}

} // namespace DocTemplates
