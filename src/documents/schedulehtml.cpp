#include "schedulehtml.h"

#include "calc/datefmt.h"
#include "calc/schedule.h"
#include "pdfout.h"
#include "printreports.h"
#include "store/db.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// The chart row of one task: its name and kChartCells cells, the bar shaded.
QString chartRow(const QString &name, int from, int to)
{
    QString out = u"<tr><td width='28%' style='font-size:7.5pt'>"_s + PDFOut::esc(name) + u"</td>"_s;
    for (int cell = 0; cell < PrintReports::kChartCells; ++cell)
        out += cell >= from && cell < to ? u"<td bgcolor='#555555' style='font-size:6pt'>&nbsp;</td>"_s
                                         : u"<td style='font-size:6pt'>&nbsp;</td>"_s;
    return out + u"</tr>"_s;
}

} // namespace

namespace PrintReports {

QString scheduleHTML(const DB &db, const Rec &project)
{
    const QList<Rec> tasks = db.list(u"task"_s, {.project = project.id});
    const QHash<QString, DateSpan> dates = scheduleDates(db, project.id);

    QString out = PDFOut::header(db, u"Schedule"_s, project) + dateLine();
    QList<QStringList> rows;
    for (const Rec &task : tasks) {
        QStringList preds;
        for (const QString &id : task.f.value(u"preds"_s).split(u',', Qt::SkipEmptyParts))
            preds.append(db.label(id));
        const DateSpan span = dates.value(task.id);
        const bool dated = dates.contains(task.id);
        rows.append({task.f.value(u"name"_s), dated ? DateFmt::nice(span.start) : QString(),
                     dated ? DateFmt::nice(span.finish) : QString(), task.f.value(u"duration"_s),
                     preds.join(u", "_s), task.f.value(u"progress"_s)});
    }
    out += PDFOut::table({u"Task"_s, u"Start"_s, u"Finish"_s, u"Days"_s, u"Depends on"_s, u"% done"_s}, rows);

    QDate first, last;
    for (const Rec &task : tasks) {
        const auto it = dates.constFind(task.id);
        if (it == dates.constEnd())
            continue;
        if (!first.isValid() || it->start < first)
            first = it->start;
        if (!last.isValid() || it->finish > last)
            last = it->finish;
    }
    if (!first.isValid())
        return out;

    out += u"<h3>Gantt chart</h3><p style='font-size:8pt'>"_s + PDFOut::esc(DateFmt::nice(first)) + u" – "_s +
           PDFOut::esc(DateFmt::nice(last)) + u"</p>"_s;
    out += u"<table width='100%' cellspacing=0 cellpadding=1 border=1 style='border-collapse:collapse'>"_s;
    // Whole days scale the same as seconds; a schedule that is one single
    // moment shows every bar in the first cell.
    const double span = double(first.daysTo(last));
    for (const Rec &task : tasks) {
        const auto it = dates.constFind(task.id);
        int from = 0, to = 0;
        if (it != dates.constEnd()) {
            if (span > 0) {
                from = int(std::trunc(double(first.daysTo(it->start)) * kChartCells / span));
                to = int(std::ceil(double(first.daysTo(it->finish)) * kChartCells / span));
            } else {
                to = 1;
            }
        }
        out += chartRow(task.f.value(u"name"_s), from, to);
    }
    return out + u"</table>"_s;
}

} // namespace PrintReports
