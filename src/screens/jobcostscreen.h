#pragma once
#include "moneygrid.h"

#include "calc/budget.h"

class KPITile;
class Printable;
struct PrintJob;

// Budget against committed and actual cost of the chosen project, by cost code.
class JobCostScreen : public ProjectScreen
{
    Q_OBJECT
public:
    explicit JobCostScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    // Registers the screen of the module "jobcost".
    static void registerScreen();
    void refresh() override;

    // What is at risk: the budget less the larger of committed and actual.
    static qint64 variance(const Calc::CostRow &row);
    // Percent spent, one decimal; 0 without a budget.
    static double spentPercent(const Calc::CostRow &row);
    // The bar's fraction: actual over budget; without a budget full when anything was spent.
    static double spentFraction(const Calc::CostRow &row);
    // The key of the total row.
    static QString totalKey();
    // What Print runs: the job-cost report of the project.
    static PrintJob printJob(DB &db, const QString &projectId);

    // Parts, for tests.
    MoneyGrid *grid() const { return m_grid; }
    const QList<KPITile *> &tiles() const { return m_tiles; }

private:
    QList<KPITile *> m_tiles;
    MoneyGrid *m_grid;
    Printable *m_printable;
};
