#pragma once
// The Reports screen's WIP schedule: over/under billing job by job, the
// chart a surety reader looks at first, the table, and its PDF, CSV and print.
#include "look/chrome.h"
#include "projectchart.h"
#include "workflows/breakdown.h"
#include "workflows/wipschedule.h"

#include "documents/printsource.h"

#include <QtWidgets/QWidget>

class DB;
class FWChromeButton;
class LookLabel;
class QChart;
class QChartView;
class QScrollArea;

// The schedule's table, drawn rather than built of labels: two sections,
// each with its total, then the total of all. Over billings show in the
// finish's warning colour, under billings in its accent.
class WipScheduleTable : public QWidget
{
    Q_OBJECT
public:
    explicit WipScheduleTable(QWidget *parent = nullptr);
    void setSchedule(const WipSchedule &schedule);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // What is drawn, row by row: a kind and the cells.
    enum class Kind { Head, Title, Job, Total, Grand };
    struct Row
    {
        Kind kind;
        QStringList cells;
        qint64 over = 0;
        qint64 under = 0;
        QString project = {}; // a job's project id
    };
    const QList<Row> &rows() const { return m_rows; }
    // The colour a cell is drawn in, for a look at the warning and accent rule.
    QColor colourOf(int row, int column) const;
    // The figure a job's cell opens, by the cell's row and column; nothing for others.
    std::optional<FigureRef> figureAt(int row, int column) const;
    // The row and column under a point, or (-1, -1).
    std::pair<int, int> cellAt(const QPoint &pos) const;
    // The cell the keyboard is on (arrows move it, Enter opens it), or (-1, -1).
    std::pair<int, int> current() const { return m_current; }

Q_SIGNALS:
    // A job's figure was clicked, or Enter pressed on it.
    void figureOpened(const FigureRef &ref);

protected:
    void paintEvent(QPaintEvent *) override;
    void resizeEvent(QResizeEvent *) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void measure();
    std::pair<int, int> m_current{-1, -1};
    int othersWidth() const;
    int nameWidth(int total) const;
    QList<Row> m_rows;
    QList<int> m_widths;
    int m_rowHeight = 0;
    int m_headHeight = 0;
};

// The bar chart "Over / under billing by job": over billings rise above the
// line in the warning colour, under billings fall below it in the accent.
class WipBillingChart : public ChartPanel
{
    Q_OBJECT
public:
    explicit WipBillingChart(QWidget *parent = nullptr);
    // Shows the jobs of `schedule`; rebuilt only when the lines differ from the last.
    void setSchedule(const WipSchedule &schedule);
    // The job labels along the bottom and the amounts of the two sets, in dollars.
    QStringList categories() const;
    QList<double> overBars() const;
    QList<double> underBars() const;

private:
    void rebuild() override;
    QList<WipLine> m_lines;
    bool m_built = false;
};

// The whole view: the method, the buttons, the chart and the table.
class WipScheduleView : public QWidget
{
    Q_OBJECT
public:
    explicit WipScheduleView(const DB &db, QWidget *parent = nullptr);
    // Shows a schedule worked out by the screen (which caches the figures).
    void setSchedule(const WipSchedule &schedule);
    const WipSchedule &schedule() const { return m_schedule; }
    // The print job of the schedule, for the File menu and the Print button.
    static PrintJob job(const DB &db);

    WipScheduleTable *table() const { return m_table; }
    WipBillingChart *chart() const { return m_chart; }
    FWChromeButton *pdfButton() const { return m_pdf; }
    FWChromeButton *csvButton() const { return m_csv; }
    // PDF, CSV and Print, for the screen to place beside its view switch.
    QWidget *buttons() const { return m_buttons; }

Q_SIGNALS:
    // The PDF or CSV button was pressed; the screen asks for the file.
    void pdfRequested();
    void csvRequested();

private:
    void margins();
    void fitTable();
    const DB &m_db;
    WipSchedule m_schedule;
    QWidget *m_content;
    LookLabel *m_note;
    LookLabel *m_marks; // what the marks on rows mean, when any row has one
    FWChromeButton *m_pdf;
    FWChromeButton *m_csv;
    WipBillingChart *m_chart;
    FWPanel *m_tablePanel;
    WipScheduleTable *m_table;
    QScrollArea *m_tableArea;
    QWidget *m_buttons;
};
