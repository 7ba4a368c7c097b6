#include "pdfout.h"

#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>

#include <charconv>

using namespace Qt::StringLiterals;

namespace {

// Whether the company's logo file loads as a picture: the logo folder beside
// the stored files first, then the company's own stored files.
bool hasLogo(const DB &db, const Rec &company)
{
    const QString name = QFileInfo(company.f.value(u"logo"_s)).fileName();
    if (name.isEmpty())
        return false;
    const QString logoDir = QFileInfo(db.filesRoot()).absoluteDir().filePath(u"Logo"_s);
    for (const QString &path : {QDir(logoDir).filePath(name), db.fileURL(name, company.id)}) {
        if (!QFileInfo::exists(path))
            continue;
        const QImage image(path);
        if (!image.isNull() && image.width() > 0 && image.height() > 0)
            return true;
    }
    return false;
}

// The shortest text of a double that reads back the same, always with a decimal part.
QString doubleText(double value)
{
    QString s = QString::number(value, 'g', QLocale::FloatingPointShortest);
    if (!s.contains(u'.') && !s.contains(u'e') && !s.contains(u'n') && !s.contains(u'i'))
        s += u".0"_s;
    return s;
}

} // namespace

namespace PDFOut {

QString esc(const QString &text)
{
    QString out = text;
    out.replace(u'&', u"&amp;"_s);
    out.replace(u'<', u"&lt;"_s);
    out.replace(u'>', u"&gt;"_s);
    return out;
}

QString header(const DB &db, const QString &title, const std::optional<Rec> &project)
{
    const Rec company = db.company().value_or(Rec());
    const Rec job = project.value_or(Rec());
    QString out = u"<table width='100%'><tr>"_s;
    if (hasLogo(db, company))
        out += u"<td width=90 valign=top>TLLOGOMARK</td>"_s;
    out += u"<td><b style='font-size:15pt'>"_s + esc(company.f.value(u"name"_s)) +
           u"</b><br><span style='font-size:9pt;color:#555'>"_s + esc(company.f.value(u"address"_s)) + u' ' +
           esc(company.f.value(u"phone"_s)) + u"</span></td>"_s;
    out += u"<td align=right><b style='font-size:17pt'>"_s + esc(title) +
           u"</b><br><span style='font-size:9pt'>"_s;
    out += esc(job.f.value(u"number"_s)) + u' ' + esc(job.f.value(u"name"_s)) + u"<br>"_s +
           esc(job.f.value(u"address"_s)) + u"</span></td></tr></table><hr>"_s;
    return out;
}

QString table(const QStringList &heads, const QList<QStringList> &rows, const QSet<int> &right,
              std::optional<double> pt)
{
    const QString style = pt ? QString(u" style='font-size:"_s + doubleText(*pt) + u"pt'"_s) : QString();
    const auto align = [&](int index) { return right.contains(index) ? u"right"_s : u"left"_s; };
    QString out = u"<table width='100%' border=1 cellspacing=0 cellpadding="_s + (pt ? u"2"_s : u"4"_s) +
                  u" style='border-collapse:collapse'><tr style='background:#e8e8ee'>"_s;
    for (int k = 0; k < heads.size(); ++k)
        out += u"<th align="_s + align(k) + style + u'>' + esc(heads.at(k)) + u"</th>"_s;
    out += u"</tr>"_s;
    for (const QStringList &row : rows) {
        out += u"<tr>"_s;
        for (int k = 0; k < row.size(); ++k)
            out += u"<td align="_s + align(k) + style + u'>' + esc(row.at(k)) + u"</td>"_s;
        out += u"</tr>"_s;
    }
    out += u"</table>"_s;
    return out;
}

QString percent(double value)
{
    // Not QString::asprintf, which rounds halves away from zero, and not the
    // process locale's decimal point.
    char buf[400];
    auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 1);
    return QString::fromLatin1(buf, ec == std::errc() ? ptr - buf : 0) + u'%';
}

} // namespace PDFOut
