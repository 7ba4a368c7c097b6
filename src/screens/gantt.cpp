#include "gantt.h"

#include "calc/datefmt.h"
#include "look/chrome.h"
#include "look/fwui.h"

#include <QtGui/QAccessible>
#include <QtGui/QLinearGradient>
#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <cmath>

using namespace Qt::StringLiterals;

GanttRange GanttRange::of(const QHash<QString, DateSpan> &dates, const QString &projectStart,
                          const QDate &today)
{
    GanttRange r;
    QDate last;
    for (const DateSpan &span : dates) {
        if (span.start.isValid() && (!r.first.isValid() || span.start < r.first))
            r.first = span.start;
        if (span.finish.isValid() && (!last.isValid() || span.finish > last))
            last = span.finish;
    }
    if (!r.first.isValid())
        r.first = DateFmt::parseIso(QStringView(projectStart).left(10)).value_or(today);
    if (!last.isValid())
        last = r.first.addDays(30);
    r.days = int(std::max<qint64>(30, r.first.daysTo(last) + 10));
    return r;
}

qint64 GanttRange::dayOf(const QDate &date) const
{
    return date.isValid() && first.isValid() ? first.daysTo(date) : 0;
}

namespace {
// One task as a reader hears it, in the order of GanttCanvas::columnTitles().
QStringList rowText(const Rec &t, const QList<Rec> &tasks, const QHash<QString, int> &rowOf,
                    const DateSpan &span)
{
    QStringList preds;
    for (QStringView id : QStringView(t.f.value(u"preds")).split(u',', Qt::SkipEmptyParts))
        if (const auto row = rowOf.constFind(id.toString()); row != rowOf.constEnd())
            preds.append(tasks.at(*row).f.value(u"name"));
    const qint64 days = span.start.isValid() && span.finish.isValid() ? span.start.daysTo(span.finish)
                                                                      : qint64(t.d(u"duration"));
    const qint64 lag = qint64(t.d(u"lag"));
    return {t.f.value(u"name").isEmpty() ? u"Untitled"_s : t.f.value(u"name"),
            span.start.isValid() ? DateFmt::nice(span.start) : u"No date"_s,
            // The finish as the printed schedule gives it.
            span.finish.isValid() ? DateFmt::nice(span.finish) : u"No date"_s,
            days == 1 ? u"1 day"_s : QString::number(days) + u" days"_s,
            preds.isEmpty() ? u"None"_s : preds.join(u", "_s),
            lag == 0 ? u"None"_s : QString::number(lag) + (std::abs(lag) == 1 ? u" day"_s : u" days"_s),
            QString::number(std::lround(std::clamp(t.d(u"progress"), 0.0, 100.0))) + u'%'};
}
} // namespace

QStringList GanttCanvas::columnTitles()
{
    return {u"Task"_s, u"Start"_s, u"Finish"_s, u"Duration"_s, u"Predecessor"_s, u"Lag"_s, u"Progress"_s};
}

QRectF GanttCanvas::rowBand(int row) const
{
    const FWUI &ui = FWUI::shared();
    const qreal header = ui.s(GanttSize::kHeader), rowH = ui.s(GanttSize::kRow);
    if (row < 0)
        return {0, 0, qreal(width()), header};
    return {0, header + row * rowH, qreal(width()), rowH};
}

GanttCanvas::GanttCanvas(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void GanttCanvas::setSchedule(const QList<Rec> &tasks, const QHash<QString, DateSpan> &dates,
                              const GanttRange &range)
{
    QHash<QString, int> rowOf;
    for (int i = 0; i < tasks.size(); ++i)
        rowOf.insert(tasks[i].id, i);
    QList<Bar> bars;
    bars.reserve(tasks.size());
    m_texts.clear();
    for (const Rec &t : tasks) {
        m_texts.append(rowText(t, tasks, rowOf, dates.value(t.id)));
        Bar b;
        b.name.setText(t.f.value(u"name"));
        b.name.setTextFormat(Qt::PlainText);
        b.name.setPerformanceHint(QStaticText::AggressiveCaching);
        const auto it = dates.constFind(t.id);
        if (it != dates.constEnd() && it->start.isValid() && it->finish.isValid()) {
            b.dated = true;
            b.startDay = range.dayOf(it->start);
            b.finishDay = range.dayOf(it->finish);
        }
        b.progress = std::min(t.d(u"progress"), 100.0);
        for (QStringView id : QStringView(t.f.value(u"preds")).split(u',', Qt::SkipEmptyParts)) {
            const auto row = rowOf.constFind(id.toString());
            if (row != rowOf.constEnd() && dates.contains(id.toString()))
                b.predRows.append(*row);
        }
        bars.append(b);
    }
    const bool resized = bars.size() != m_bars.size() || range.days != m_range.days;
    m_bars = std::move(bars);
    m_range = range;
    // A reader listening to the chart hears that its rows changed.
    if (QAccessible::isActive()) {
        QAccessibleTableModelChangeEvent changed(this, QAccessibleTableModelChangeEvent::ModelReset);
        QAccessible::updateAccessibility(&changed);
    }
    if (resized)
        updateGeometry();
    update();
}

QSize GanttCanvas::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    // Wide enough for the name after the last bar as well as for the days.
    qreal width = ui.s(GanttSize::kDay) * m_range.days;
    for (int r = 0; r < m_bars.size(); ++r)
        if (const QRectF label = labelRect(r); !label.isEmpty())
            width = std::max(width, label.right() + ui.s(6));
    return {int(std::ceil(width)),
            int(std::ceil(ui.s(GanttSize::kHeader) + ui.s(GanttSize::kRow) * m_bars.size()))};
}

bool GanttCanvas::labelOnBar(int row) const
{
    const QRectF bar = barRect(row);
    if (bar.isEmpty())
        return false;
    const FWUI &ui = FWUI::shared();
    const QFontMetricsF fm(ui.font(GanttSize::kLabel));
    return fm.horizontalAdvance(m_bars[row].name.text()) + 2 * ui.s(6) <= bar.width();
}

QRectF GanttCanvas::labelRect(int row) const
{
    const QRectF bar = barRect(row);
    if (bar.isEmpty())
        return {};
    const FWUI &ui = FWUI::shared();
    const QFontMetricsF fm(ui.font(GanttSize::kLabel));
    const qreal width = fm.horizontalAdvance(m_bars[row].name.text());
    const QRectF at(0, bar.center().y() - fm.height() / 2, width, fm.height());
    // Past the bar, clear of the stub of an arrow leaving its end.
    return at.translated(labelOnBar(row) ? bar.left() + ui.s(6) : bar.right() + ui.s(10), 0);
}

QRectF GanttCanvas::barRect(int row) const
{
    if (row < 0 || row >= m_bars.size() || !m_bars[row].dated)
        return {};
    const FWUI &ui = FWUI::shared();
    const qreal day = ui.s(GanttSize::kDay), rowH = ui.s(GanttSize::kRow);
    const Bar &b = m_bars[row];
    const qreal left = b.startDay * day;
    // A task whose start and finish are one date is still one day wide.
    const qreal width = std::max((b.finishDay - b.startDay) * day, day);
    return {left, ui.s(GanttSize::kHeader) + row * rowH + 0.22 * rowH, width, 0.56 * rowH};
}

void GanttCanvas::paintEvent(QPaintEvent *e)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &theme = ui.theme();
    const qreal day = ui.s(GanttSize::kDay), header = ui.s(GanttSize::kHeader), rowH = ui.s(GanttSize::kRow);
    const qreal h = height();
    const QRectF dirty = e->rect();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    // The chart's own ground, so the weekends' darker columns read against it.
    p.fillRect(dirty, theme.panel);

    // Grid: only the days inside the part being repainted.
    const QFont label = ui.font(GanttSize::kLabel);
    p.setFont(label);
    const QFontMetricsF fm(label);
    const int firstDay = std::max(0, int(std::floor(dirty.left() / day)) - 6); // a label reaches past its day
    const int lastDay = std::min(m_range.days - 1, int(std::ceil(dirty.right() / day)));
    QColor weekend = theme.well;
    weekend.setAlphaF(0.6f);
    QColor monday = theme.metalLo;
    monday.setAlphaF(0.35f);
    const QLocale c = QLocale::c();
    for (int i = firstDay; i <= lastDay; ++i) {
        const QDate d = m_range.first.addDays(i);
        const int weekday = d.dayOfWeek(); // Monday 1 … Sunday 7
        if (weekday >= 6)
            p.fillRect(QRectF(i * day, 0, day, h), weekend);
        else if (weekday == 1) {
            p.fillRect(QRectF(i * day - 0.3, 0, 0.6, h), monday);
            p.setPen(theme.dim);
            p.drawText(QPointF(i * day + ui.s(3), header / 2 + (fm.ascent() - fm.descent()) / 2),
                       c.toString(d, u"MMM d"_s));
        }
    }

    if (m_range.days > 0)
        p.fillRect(QRectF(m_range.dayOf(DateFmt::today()) * day, 0, ui.s(2), h), theme.accent);

    // Bars of the rows that show, and every arrow that may cross them.
    const int firstRow = std::max(0, int(std::floor((dirty.top() - header) / rowH)));
    const int lastRow = std::min(int(m_bars.size()) - 1, int(std::ceil((dirty.bottom() - header) / rowH)));
    QColor outline(Qt::black);
    outline.setAlphaF(0.5f);
    for (int r = firstRow; r <= lastRow; ++r) {
        const QRectF bar = barRect(r);
        if (bar.isEmpty() || !bar.united(labelRect(r)).intersects(dirty))
            continue;
        const qreal radius = bar.height() / 2;
        QLinearGradient metal(bar.topLeft(), bar.bottomLeft());
        metal.setColorAt(0, theme.metalHi);
        metal.setColorAt(0.5, theme.metalMid);
        metal.setColorAt(1, theme.metalLo);
        p.setPen(Qt::NoPen);
        p.setBrush(metal);
        p.drawRoundedRect(bar, radius, radius);
        const double progress = m_bars[r].progress;
        if (progress > 0) {
            const QRectF done(bar.left(), bar.top(), bar.width() * progress / 100, bar.height());
            QLinearGradient accent(done.topLeft(), done.bottomLeft());
            accent.setColorAt(0, theme.accent);
            accent.setColorAt(1, theme.accent2);
            p.setBrush(accent);
            p.drawRoundedRect(done, radius, radius);
        }
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(outline, 1));
        p.drawRoundedRect(bar, radius, radius);
        // On the bar, dark ink on the metal; past it, the finish's text on the chart's ground.
        p.setPen(labelOnBar(r) ? QColor(Qt::black) : theme.text);
        p.drawStaticText(labelRect(r).topLeft(), m_bars[r].name);
    }

    QColor line = theme.text;
    line.setAlphaF(0.7f);
    const qreal head = ui.s(6), half = ui.s(4);
    for (int r = 0; r < m_bars.size(); ++r) {
        const QRectF to = barRect(r);
        if (to.isEmpty())
            continue;
        for (int pred : m_bars[r].predRows) {
            const QRectF from = barRect(pred);
            if (from.isEmpty())
                continue;
            const qreal px = m_bars[pred].finishDay * day, py = from.center().y();
            const qreal tx = to.left(), ty = to.center().y();
            // Skip arrows that lie wholly outside the repainted part.
            const QRectF span = QRectF(QPointF(std::min(px, tx) - head, std::min(py, ty) - half),
                                       QPointF(std::max(px + head, tx), std::max(py, ty) + half));
            if (!span.intersects(dirty))
                continue;
            QPainterPath path(QPointF(px, py));
            path.lineTo(px + head, py);
            path.lineTo(px + head, ty);
            path.lineTo(tx - ui.s(2), ty);
            p.setPen(QPen(line, 1.5));
            p.setBrush(Qt::NoBrush);
            p.drawPath(path);
            p.setPen(Qt::NoPen);
            p.setBrush(line);
            const QPointF tip[3] = {{tx, ty}, {tx - head, ty - half}, {tx - head, ty + half}};
            p.drawPolygon(tip, 3);
        }
    }
}
