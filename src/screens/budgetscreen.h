#pragma once
#include "moneygrid.h"

#include "calc/budget.h"

class FWChromeButton;
class KPITile;
class Printable;
class ThemedChoice;
struct PrintJob;

// The budget of the chosen project by cost code, with the contract figures:
// approved change orders revise the budget, pending ones are exposure. The
// original of a code with exactly one budget line is edited in place.
class BudgetScreen : public ProjectScreen
{
    Q_OBJECT
public:
    explicit BudgetScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    // Registers the screen of the module "budget".
    static void registerScreen();
    void refresh() override;
    // "Add Budget Line": a line of the chosen cost code (or none), original 0.
    void addLine();

    // The row key of a code: the code and, when it has exactly one budget line, that line's id.
    static QString rowKey(const QString &code, const QString &singleLine);
    // The key of the total row.
    static QString totalKey();
    // What Print runs: the budget report of the project, named after it.
    static PrintJob printJob(DB &db, const QString &projectId);

    // Parts, for tests.
    MoneyGrid *grid() const { return m_grid; }
    const QList<KPITile *> &tiles() const { return m_tiles; }
    ThemedChoice *codeChoice() const { return m_codes; }
    FWChromeButton *addButton() const { return m_add; }
    // The code a new line gets; empty gives an uncoded line.
    QString addCode;

private:
    MoneyGrid::Cells makeRow(const QString &key, QWidget *row);
    void refreshTiles(const Rec &project, const Calc::BudgetSummary &b);

    QList<KPITile *> m_tiles;
    MoneyGrid *m_grid;
    ThemedChoice *m_codes;
    FWChromeButton *m_add;
    Printable *m_printable;
};
