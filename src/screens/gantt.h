#pragma once
#include "calc/schedule.h"
#include "store/rec.h"

#include <QtCore/QDate>
#include <QtCore/QHash>
#include <QtGui/QStaticText>
#include <QtWidgets/QWidget>

#include <optional>

// The sizes of the chart in points before zoom; rows beside it use the same heights.
namespace GanttSize {
inline constexpr qreal kDay = 16;
inline constexpr qreal kHeader = 30;
inline constexpr qreal kRow = 34;
inline constexpr qreal kLabel = 9;
} // namespace GanttSize

// The days a chart spans: from the earliest start to ten days past the last
// finish, never under 30 days.
struct GanttRange
{
    QDate first;
    int days = 30;

    // The span for `dates`; with none, 30 days from the project's start (or `today`).
    static GanttRange of(const QHash<QString, DateSpan> &dates, const QString &projectStart,
                         const QDate &today);
    // Whole days from `first` to `date`; negative before it, 0 for no date.
    qint64 dayOf(const QDate &date) const;
};

// The bar chart of a schedule, drawn on one canvas: weekends, Monday lines
// with their dates, the today line, one bar per task with its progress and
// name, and the arrows from each predecessor's finish to its follower's start.
class GanttCanvas : public QWidget
{
    Q_OBJECT
public:
    explicit GanttCanvas(QWidget *parent = nullptr);

    // Takes the tasks in row order with their dates, and the range to draw.
    void setSchedule(const QList<Rec> &tasks, const QHash<QString, DateSpan> &dates, const GanttRange &range);
    const GanttRange &range() const { return m_range; }
    int days() const { return m_range.days; }
    int rows() const { return int(m_bars.size()); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    // The bar of row `row` in canvas pixels at the current zoom; empty when it has no dates.
    QRectF barRect(int row) const;
    // Where row `row`'s name is drawn, whole: on its bar when it fits there, else just after
    // it. Empty for a row without dates.
    QRectF labelRect(int row) const;
    // Whether the name of row `row` fits on its bar.
    bool labelOnBar(int row) const;
    // The band of row `row` across the whole chart; -1 is the band of dates at the top.
    QRectF rowBand(int row) const;

    // What a screen reader reads for each row, under these column titles.
    static QStringList columnTitles();
    QList<QStringList> rowTexts() const { return m_texts; }

protected:
    void paintEvent(QPaintEvent *e) override;

private:
    // What one row draws, worked out once per change rather than at each paint.
    struct Bar
    {
        QStaticText name; // laid out once, drawn at every paint
        bool dated = false;
        qint64 startDay = 0;
        qint64 finishDay = 0;
        double progress = 0; // 0..100 after clipping the top
        QList<int> predRows; // rows of this task's predecessors that have dates
    };
    QList<Bar> m_bars;
    QList<QStringList> m_texts;
    GanttRange m_range;
};
