#pragma once
#include "calc/schedule.h"
#include "store/rec.h"

#include <QtWidgets/QWidget>

class DB;
class GanttCanvas;
class Printable;
class PrintButton;
class ScreenTitle;
class ThemedDate;
class QLabel;
class QMenu;
class QScrollArea;
class QVBoxLayout;
struct ModuleDef;
struct PrintJob;

// One project's schedule: the title with its count and finish, the task rows
// beside the chart, and the buttons to add a task, save a PDF and print.
class GanttView : public QWidget
{
    Q_OBJECT
public:
    GanttView(DB &db, const Rec &project, const ModuleDef &m, QWidget *parent = nullptr);
    ~GanttView() override;

    // Re-reads the tasks: rows are rebuilt only when the tasks themselves come or go.
    void refresh();
    QString projectID() const { return m_project.id; }

    // Adds "New task" after the last of `tasks`, or from the project's start when there are none.
    static Rec addTask(DB &db, const Rec &project, const QList<Rec> &tasks);
    // Adds `predID` to the task's predecessors, or takes its first occurrence out.
    static void togglePred(DB &db, const Rec &task, const QString &predID);
    // The printable schedule of the project.
    static QString scheduleHTML(const DB &db, const Rec &project);
    // "<name> · <n> tasks · finish <date>", from the project's worked-out dates.
    static QString subtitle(const Rec &project, const QHash<QString, DateSpan> &dates);
    // The After menu's face: the names of the task's predecessors that still exist.
    static QString afterText(const DB &db, const Rec &task);

    GanttCanvas *canvas() const { return m_canvas; }
    ScreenTitle *title() const { return m_title; }
    // The After menu of row `row`, filled as it would be when opened.
    QMenu *afterMenu(int row);
    // The row widgets below the heading, in task order.
    QList<QWidget *> rowWidgets() const { return m_rows; }
    // The hint shown under the heading while the project has no tasks.
    QLabel *emptyHint() const { return m_empty; }

private:
    QWidget *makeRow(const Rec &task);
    // The start box of `task`: its own date, or the `worked` one the schedule gives it, marked so.
    static void suggestStart(ThemedDate *start, const Rec &task, const QDate &worked, const QString &after);
    void fillAfterMenu(QMenu *menu, const QString &taskID);
    void savePDF();
    PrintJob printJob() const;

    DB &m_db;
    Rec m_project;
    const ModuleDef &m_m;
    ScreenTitle *m_title;
    PrintButton *m_print;
    Printable *m_printable;
    QScrollArea *m_scroll;
    QWidget *m_column;
    QVBoxLayout *m_rowBox;
    QWidget *m_heading;
    QWidget *m_afterHead = nullptr;
    int m_afterW = 0;
    QLabel *m_empty;
    GanttCanvas *m_canvas;
    QList<QWidget *> m_rows;
    QStringList m_rowIDs;
    QHash<QString, DateSpan> m_dates; // the worked-out dates of the last refresh
};
