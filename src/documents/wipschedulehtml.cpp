#include "wipschedulehtml.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "pageddocument.h"
#include "pdfout.h"
#include "pdfwrite.h"
#include "workflows/wipschedule.h"

using namespace Qt::StringLiterals;

namespace {

// Thirteen columns of figures across a landscape page: a small size keeps
// every amount on one line, a grand total in the hundreds of millions too,
// with room left for the job's name.
const QString kBold = u" style='font-size:5.5pt;font-weight:bold'"_s;
// An amount never breaks at its commas, nor a name but where it is broken here.
const QString kFigure = u" style='font-size:5.5pt;white-space:nowrap'"_s;
// The job's column is set on at most two lines of this many characters, so
// that the figures keep the width they need and a row stays short.
constexpr qsizetype kJobLine = 34;

// The job's text on lines of at most kJobLine characters, broken between
// words; a third line's worth is cut short with an ellipsis.
QString jobLines(const QString &text)
{
    QStringList lines{QString()};
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        QString &line = lines.last();
        if (!line.isEmpty() && line.size() + 1 + word.size() > kJobLine)
            lines.append(word);
        else
            line += (line.isEmpty() ? QString() : u" "_s) + word;
    }
    if (lines.size() > 2) {
        lines[1] = QStringList(lines.mid(1)).join(u' ').left(kJobLine - 1) + u'…';
        lines.resize(2);
    }
    for (QString &line : lines)
        line = PDFOut::esc(line);
    return lines.join(u"<br>"_s);
}

QString cell(const QString &text, bool right, bool bold, const QString &attributes = {})
{
    // The weight goes on a span of its own: a bare <b> falls back to the body size.
    const QString body = bold ? u"<span"_s + kBold + u'>' + text + u"</span>"_s : text;
    // Figures stand level with the first line of a name set on two.
    return u"<td valign=top"_s + attributes + u" align="_s + (right ? u"right"_s : u"left"_s) + kFigure +
           u'>' + body + u"</td>"_s;
}

QString open(const QString &background = {})
{
    return background.isEmpty() ? u"<tr>"_s : u"<tr style='background:"_s + background + u"'>"_s;
}

// A line of the table: the job (number and name in one column, to leave the
// width to the figures), then the figures. No cell wraps by itself: Qt
// would give the slack to the figures and squeeze the names to a word a
// line. A total's label is bold; its figures are not, as bold ones would
// not fit, and its shaded band sets it apart.
QString row(const QString &job, const WipLine &l, bool total, const QString &background = {})
{
    const QStringList cells = PrintReports::wipScheduleCells(l);
    QString out = open(background) + cell(jobLines(job), false, total);
    for (int k = 2; k < cells.size(); ++k)
        out += cell(PDFOut::esc(cells.at(k)), true, false);
    return out + u"</tr>"_s;
}

// A line across the whole table: a section's title, or its "None".
QString across(const QString &text, int columns, bool bold, const QString &background = {})
{
    return open(background) +
           cell(PDFOut::esc(text), false, bold, u" colspan="_s + QString::number(columns)) + u"</tr>"_s;
}

} // namespace

namespace PrintReports {

QStringList wipScheduleHeads()
{
    return {u"Job"_s,
            u"Project"_s,
            u"Contract"_s,
            u"Estimated cost"_s,
            u"Est. gross profit"_s,
            u"Cost to date"_s,
            u"Cost to complete"_s,
            u"% complete"_s,
            u"Earned revenue"_s,
            u"Gross profit to date"_s,
            u"Loss provision"_s,
            u"Billed to date"_s,
            u"Over billings"_s,
            u"Under billings"_s,
            u"Backlog"_s};
}

QStringList wipScheduleCells(const WipLine &l)
{
    const auto m = [](qint64 cents) { return Money::fmt(cents, false); };
    return {l.number,
            l.name,
            m(l.contract),
            m(l.estimatedCost),
            m(l.estimatedProfit),
            m(l.costToDate),
            m(l.costToComplete),
            WipSchedule::percentText(l.percentTenths) + u'%',
            m(l.earned),
            m(l.profitToDate),
            m(l.lossProvision),
            m(l.billed),
            m(l.overBilled),
            m(l.underBilled),
            m(l.backlog)};
}

QString wipScheduleHTML(const DB &db, const WipSchedule &s)
{
    QStringList heads = wipScheduleHeads().mid(1);
    const int columns = int(heads.size());
    QString out = PDFOut::header(db, kWipScheduleTitle, std::nullopt);
    out += u"<p style='font-size:9pt;color:#444'>As of "_s + PDFOut::esc(DateFmt::nice(DateFmt::today())) +
           u". Amounts in dollars.</p>"_s;
    out += u"<p style='font-size:7pt;color:#444'>"_s + PDFOut::esc(WipSchedule::methodNote()) + u"</p>"_s;

    out += u"<table width='100%' border=1 cellspacing=0 cellpadding=1 style='border-collapse:collapse'>"_s
           u"<tr style='background:#e8e8ee'>"_s;
    heads[0] = u"Job"_s;
    for (int k = 0; k < columns; ++k) {
        out += u"<th align="_s + (k > 0 ? u"right"_s : u"left"_s) + kBold + u'>' + PDFOut::esc(heads.at(k)) +
               u"</th>"_s;
    }
    out += u"</tr>"_s;
    for (const WipSection *section : {&s.inProgress, &s.completed}) {
        out += across(section->title, columns, true);
        for (const WipLine &l : section->lines)
            out += row(QString(l.number + u"  "_s + l.name).trimmed(), l, false);
        if (section->lines.isEmpty())
            out += across(u"None"_s, columns, false);
        out += row(u"Total "_s + section->title.toLower(), section->total, true, u"#f2f2f5"_s);
    }
    out += row(u"Total all contracts"_s, s.total, true, u"#dcdce4"_s);
    return out + u"</table>"_s;
}

PrintSource wipScheduleSource(const DB &db)
{
    PrintSource source = PrintSource::fromHtml(wipScheduleHTML(db, WipSchedule::of(db)));
    source.landscape = true;
    return source;
}

} // namespace PrintReports

namespace PDFOut {

bool wipSchedule(const DB &db, const QString &path)
{
    PagedDocument pages(db, PrintReports::wipScheduleSource(db), PrintReports::kWipScheduleTitle,
                        savedFooter());
    pages.layout(PagedDocument::letter(QPageLayout::Landscape));
    return writePaged(pages, path);
}

} // namespace PDFOut
