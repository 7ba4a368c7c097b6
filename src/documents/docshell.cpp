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
    return doc;
}

} // namespace DocTemplates
