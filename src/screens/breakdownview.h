#pragma once
// The breakdown window: what a figure is made of, row by row, with the rule
// applied to each and a total equal to the figure. A row opens its record in
// the main window (this window stays as it was) or, for a figure made of
// figures, the sub-figure here, with Back to return.
#include "workflows/breakdown.h"

#include <QtWidgets/QWidget>

#include <functional>

class DB;
class FWChromeButton;
class LookLabel;
class Nav;
class QTableView;
class BreakdownModel;

class BreakdownView : public QWidget
{
    Q_OBJECT
public:
    BreakdownView(DB &db, Nav &nav, QWidget *parent = nullptr);

    // Shows `ref`, the figure shown now kept for Back.
    void open(const FigureRef &ref);
    // Returns to the figure shown before, at the row it was left on.
    void back();
    // Opens what row `row` stands for: a sub-figure here, or its record in the main window.
    void activate(int row);
    // Works the figure out again, keeping the current row and the scroll position.
    void refresh();

    const Breakdown &breakdown() const { return m_breakdown; }
    // Why the figure could not be worked out, or empty.
    const QString &problem() const { return m_problem; }
    QTableView *table() const { return m_table; }
    FWChromeButton *backButton() const { return m_back; }
    // Writes the breakdown as a PDF or a CSV file; false when it could not be written.
    bool savePdf(const QString &path) const;
    bool saveCsv(const QString &path) const;

    // The breakdown window of `anchor`'s main window, made on first use, showing `ref`.
    static BreakdownView *show(QWidget *anchor, DB &db, Nav &nav, const FigureRef &ref);
    // Opens the record `id` where it is edited: its module, or its document for a line.
    static bool openRecord(const DB &db, Nav &nav, const QString &id);
    // Asks for a file to save to; tests put their own answer here.
    static std::function<QString(QWidget *, const QString &caption, const QString &proposed,
                                 const QString &filter)> &
    askHook();

private:
    void fill();
    void restyle();
    QString ask(const QString &caption, const QString &name, const QString &filter);
    struct Place
    {
        FigureRef ref;
        int row = 0;
        int scroll = 0;
    };
    DB &m_db;
    Nav &m_nav;
    FigureRef m_ref;
    Breakdown m_breakdown;
    QString m_problem;
    QList<Place> m_history;
    QStringList m_shownKeys; // each row's identity, to find the user's row again
    bool m_refreshQueued = false;
    LookLabel *m_title;
    LookLabel *m_scope;
    LookLabel *m_rule;
    LookLabel *m_total;
    FWChromeButton *m_back;
    BreakdownModel *m_model;
    QTableView *m_table;
};
