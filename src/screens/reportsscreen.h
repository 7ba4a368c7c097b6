#pragma once
#include "shell/modulearea.h"

#include "look/chrome.h"
#include "workflows/figures.h"

#include <functional>

class DB;
class Nav;
class FieldPulse;
class FWChromeButton;
class Printable;
class ProjectChart;
class ScreenTitle;
class QComboBox;
class QGridLayout;
class QStackedWidget;
class FWSegment;
class WipScheduleView;

// The work-in-progress table: a head row and a row per project, money right-aligned.
class WipTable : public FWPanel
{
    Q_OBJECT
public:
    explicit WipTable(QWidget *parent = nullptr);
    // Shows these rows; the labels are rebuilt only when the rows differ.
    void setRows(const QList<QStringList> &rows);
    const QList<QStringList> &rows() const { return m_rows; }
    // The label of row `row` (0 the first project) in `column`, or null.
    QWidget *cell(int row, int column) const;
    // The column heads, as in the printed report.
    static QStringList heads();

private:
    QGridLayout *m_grid;
    QList<QStringList> m_rows;
    bool m_shown = false;
};

// The company reports: the chart and work in progress over every project,
// the field pulse, the WIP report as PDF, CSV or print, and one project's report.
class ReportsScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit ReportsScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    void refresh() override;

    // Asks for a file to save: parent, caption, proposed path, name filter; empty when cancelled.
    using SaveFile = std::function<QString(QWidget *, const QString &, const QString &, const QString &)>;
    // The file chooser of the PDF and CSV buttons; empty means the native dialog. Tests put their own here.
    static SaveFile &saveFileHook();
    // The CSV table of the report: the heads, then a row per project.
    static QList<QStringList> csvRows(const DB &db);

    // Asks for a file and writes the WIP report there as PDF.
    void savePDF();
    // Asks for a file and writes the WIP table there as CSV.
    void saveCSV();
    // Prints the report of the project chosen in the block below.
    void printProjectReport();
    // Chooses the project of the project report.
    void chooseReportProject(const QString &id);
    QString reportProject() const { return m_reportProject; }

    // Brings the report (0) or the WIP schedule (1) to the front; the File menu prints the one in front.
    void showView(int index);
    int view() const;
    // Asks for a file and writes the WIP schedule there as PDF, or as CSV.
    void saveSchedulePDF();
    void saveScheduleCSV();
    WipScheduleView *schedule() const { return m_schedule; }

    ProjectChart *chart() const { return m_chart; }
    WipTable *table() const { return m_table; }
    FieldPulse *pulse() const { return m_pulse; }

private:
    QString ask(const QString &caption, const QString &name, const QString &filter);
    void margins();
    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QVBoxLayout *m_box;
    ProjectChart *m_chart;
    WipTable *m_table;
    FieldPulse *m_pulse;
    FWPanel *m_reportPanel;
    QComboBox *m_projects;
    FWChromeButton *m_printReport;
    Printable *m_printable;
    QWidget *m_reportButtons;
    FWSegment *m_views;
    QStackedWidget *m_stack;
    WipScheduleView *m_schedule;
    QString m_reportProject;
    QStringList m_projectKey;
    std::pair<quint64, QString> m_figuresOf{~quint64(0), {}};
    FiguresCache m_figures;
};
