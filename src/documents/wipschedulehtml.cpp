#include "wipschedulehtml.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "pageddocument.h"
#include "pdfout.h"
#include "pdfwrite.h"
#include "workflows/wipschedule.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QImage>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

// Thirteen columns of figures across a landscape page. The schedule takes
// the largest of these sizes at which every amount stays on one line and the
// job's name keeps a readable column; a grand total in the hundreds of
// millions still fits at the smallest.
constexpr double kSizes[] = {8, 7.5, 7, 6.5, 6, 5.5};
// Each cell's padding on both sides and its rule, in points.
constexpr double kCellExtra = 2;
// Kept free at the table's end against rounding in the layout; the room the
// job's column should have to take a size, and the least it gets at the last.
constexpr double kSafety = 2, kJobWanted = 110, kJobLeast = 60;

// The document's type at one size, measured in points as the paged engine
// sets it, so that the job's column gets what the figures leave.
class Measure
{
public:
    explicit Measure(double size)
        : m_size(size)
        , m_device(1, 1, QImage::Format_RGB32)
    {
        m_device.setDotsPerMeterX(2835); // 72 dots an inch: a dot is a point
        m_device.setDotsPerMeterY(2835);
        m_plain.setFamily(u"Helvetica Neue"_s);
        m_plain.setPointSizeF(size);
        m_bold = m_plain;
        m_bold.setBold(true);
    }
    double width(const QString &text, bool bold) const
    {
        return QFontMetricsF(bold ? m_bold : m_plain, &m_device).horizontalAdvance(text);
    }
    // A cell's style at this size. No cell wraps by itself: an amount never
    // breaks at its commas, and a name only where it is broken here. Were the
    // name free to wrap, Qt would widen its column past the page in
    // proportion to the whole name's length.
    QString figureStyle() const
    {
        return u" style='font-size:"_s + QString::number(m_size) + u"pt;white-space:nowrap'"_s;
    }
    QString boldStyle() const
    {
        return u" style='font-size:"_s + QString::number(m_size) + u"pt;font-weight:bold'"_s;
    }

private:
    double m_size;
    QImage m_device;
    QFont m_plain;
    QFont m_bold;
};

// The job's text on at most two lines no wider than `room`, broken between
// words; what a third line would hold is cut short with an ellipsis.
QString jobLines(const QString &text, double room, bool bold, const Measure &m)
{
    QStringList lines{QString()};
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        QString &line = lines.last();
        const QString longer = line.isEmpty() ? word : line + u' ' + word;
        if (!line.isEmpty() && m.width(longer, bold) > room)
            lines.append(word);
        else
            line = longer;
    }
    if (lines.size() > 2) {
        QString rest = QStringList(lines.mid(1)).join(u' ');
        while (rest.size() > 1 && m.width(rest + u'…', bold) > room)
            rest.chop(1);
        lines[1] = rest + u'…';
        lines.resize(2);
    }
    for (QString &line : lines)
        line = PDFOut::esc(line);
    return lines.join(u"<br>"_s);
}

QString cell(const QString &text, bool right, bool bold, const Measure &m, const QString &attributes = {})
{
    // The weight goes on a span of its own: a bare <b> falls back to the body size.
    const QString body = bold ? u"<span"_s + m.boldStyle() + u'>' + text + u"</span>"_s : text;
    return u"<td"_s + attributes + u" align="_s + (right ? u"right"_s : u"left"_s) + m.figureStyle() + u'>' +
           body + u"</td>"_s;
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
QString row(const QString &job, const WipLine &l, bool total, double room, const Measure &m,
            const QString &background = {})
{
    const QStringList cells = PrintReports::wipScheduleCells(l);
    QString out = open(background) + cell(jobLines(job, room, total, m), false, total, m);
    for (int k = 2; k < cells.size(); ++k)
        out += cell(PDFOut::esc(cells.at(k)), true, false, m);
    return out + u"</tr>"_s;
}

// A line across the whole table: a section's title, or its "None".
QString across(const QString &text, int columns, bool bold, const Measure &m, const QString &background = {})
{
    return open(background) +
           cell(PDFOut::esc(text), false, bold, m, u" colspan="_s + QString::number(columns)) + u"</tr>"_s;
}

// The room the job's column has at the size of `m` once every figure and
// head word has its whole width.
double jobRoom(const QStringList &heads, const QList<QStringList> &cells, const Measure &m)
{
    const qsizetype columns = heads.size();
    QList<double> widest(columns, 0);
    for (qsizetype k = 1; k < columns; ++k)
        for (const QString &word : heads.at(k).split(u' '))
            widest[k] = std::max(widest[k], m.width(word, true));
    for (const QStringList &line : cells)
        for (qsizetype k = 1; k < columns; ++k)
            widest[k] = std::max(widest[k], m.width(line.at(k + 1), false));
    double room = PagedDocument::letter(QPageLayout::Landscape).fullRect(QPageLayout::Point).width() -
                  2 * PagedDocument::kSide - kCellExtra - kSafety;
    for (qsizetype k = 1; k < columns; ++k)
        room -= widest.at(k) + kCellExtra;
    return room;
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
    // A job whose outcome cannot be estimated has no percent and no gross profit to show.
    const bool marked = l.mark != WipLine::Mark::None;
    return {l.number,
            marked ? WipSchedule::markText(l.mark) + u" · "_s + l.name : l.name,
            m(l.contract),
            m(l.estimatedCost),
            marked ? u"—"_s : m(l.estimatedProfit),
            m(l.costToDate),
            m(l.costToComplete),
            marked ? u"—"_s : WipSchedule::percentText(l.percentTenths) + u'%',
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
    // One paragraph with little space below: every line of the page goes to the jobs.
    out += u"<p style='font-size:9pt;color:#444;margin-top:4pt;margin-bottom:6pt'>As of "_s +
           PDFOut::esc(DateFmt::nice(DateFmt::today())) +
           u". Amounts in dollars.<br><span style='font-size:6.5pt'>"_s +
           PDFOut::esc(WipSchedule::methodNote()) + u"</span></p>"_s;
    QString marks;
    for (const QString &note : s.markNotes())
        marks += u"<p style='font-size:6.5pt;color:#444;margin-top:2pt'>"_s + PDFOut::esc(note) + u"</p>"_s;

    // The figures keep their whole width (the widest amount, or the longest
    // word of the head); the job's column has the rest of the line.
    QList<QStringList> cells{wipScheduleCells(s.total)};
    for (const WipSection *section : {&s.inProgress, &s.completed}) {
        cells.append(wipScheduleCells(section->total));
        for (const WipLine &l : section->lines)
            cells.append(wipScheduleCells(l));
    }
    heads[0] = u"Job"_s;
    std::optional<Measure> chosen;
    double room = 0;
    for (const double size : kSizes) {
        chosen.emplace(size);
        room = jobRoom(heads, cells, *chosen);
        if (room >= kJobWanted)
            break;
    }
    const Measure &m = *chosen;
    room = std::max(room, kJobLeast);

    out += u"<table width='100%' border=1 cellspacing=0 cellpadding=0.5 style='border-collapse:collapse'>"_s
           u"<thead><tr style='background:#e8e8ee'>"_s;
    for (int k = 0; k < columns; ++k) {
        out += u"<th align="_s + (k > 0 ? u"right"_s : u"left"_s) + m.boldStyle() + u'>' +
               PDFOut::esc(heads.at(k)) + u"</th>"_s;
    }
    // A head row: the paged engine repeats it on every page the table runs on to.
    out += u"</tr></thead>"_s;

    for (const WipSection *section : {&s.inProgress, &s.completed}) {
        out += across(section->title, columns, true, m);
        for (const WipLine &l : section->lines)
            out += row(QString(l.number + u"  "_s + PrintReports::wipScheduleCells(l).at(1)).trimmed(), l,
                       false, room, m);
        if (section->lines.isEmpty())
            out += across(u"None"_s, columns, false, m);
        out += row(u"Total "_s + section->title.toLower(), section->total, true, room, m, u"#f2f2f5"_s);
    }
    out += row(u"Total all contracts"_s, s.total, true, room, m, u"#dcdce4"_s);
    return out + u"</table>"_s + marks;
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
