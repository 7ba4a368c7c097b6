#include "jobcostscreen.h"

#include "figurelink.h"
#include "kpitile.h"

#include "calc/money.h"
#include "catalog/moduledef.h"
#include "documents/costhtml.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "shell/nav.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/totalsbox.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

enum Col { CodeCol, SpentCol, BudgetCol, CommittedCol, ActualCol, VarianceCol };

const GridHead &head()
{
    static const GridHead h{{u"Cost code"_s, 0, false}, {u"Spent"_s, 150, false}, {u"Budget"_s, 120},
                            {u"Committed"_s, 120},      {u"Actual"_s, 120},       {u"Variance"_s, 120}};
    return h;
}

// The bar and the percentage of the "Spent" column.
class SpentCell : public QWidget
{
public:
    explicit SpentCell(QWidget *parent)
        : QWidget(parent)
        , bar(new GlowBar(this))
        , label(new QLabel(this))
    {
        auto *h = new QHBoxLayout(this);
        h->setContentsMargins(0, 0, 0, 0);
        h->addWidget(bar, 1);
        h->addWidget(label);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        restyle();
        connect(&FWUI::shared(), &FWUI::changed, this, [this] { restyle(); });
    }
    void restyle()
    {
        label->setFont(TotalsBox::monoFont(11));
        label->setFixedWidth(FWUI::shared().px(52));
    }
    GlowBar *bar;
    QLabel *label;
};

} // namespace

JobCostScreen::JobCostScreen(const ScreenContext &ctx, QWidget *parent)
    : ProjectScreen(ctx, u" · committed = issued POs · actual = costs + labor + equipment hours"_s,
                    new PrintButton(printJob(ctx.db, {})), parent)
    , m_grid(new MoneyGrid(head(), this))
{
    m_grid->setAccessibleName(u"Job cost by code"_s);
    m_tiles = addTiles({{u"Revised budget"_s, u"chart.bar"_s},
                        {u"Committed"_s, u"cart"_s},
                        {u"Actual cost"_s, u"creditcard"_s},
                        {u"Variance"_s, u"plusminus"_s}});
    const QStringList figures{u"jobcost.budget"_s, u"jobcost.committed"_s, u"jobcost.actual"_s,
                              u"jobcost.variance"_s};
    for (int i = 0; i < figures.size(); ++i)
        FigureLink::attach(m_tiles[i], m_db, m_nav, FigureLink::ofProject(m_db, m_nav, figures[i]));
    auto *panel = new FWPanel(this);
    auto *col = new QVBoxLayout(panel);
    col->addWidget(m_grid);
    body()->addWidget(panel);
    body()->addStretch(1);
    m_printable = new Printable(this, 1, printJob(m_db, {}));
    auto restyle = [col] {
        const FWUI &ui = FWUI::shared();
        col->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void JobCostScreen::registerScreen()
{
    ModuleArea::registerScreen(u"jobcost"_s, [](const ScreenContext &ctx) { return new JobCostScreen(ctx); });
}

qint64 JobCostScreen::variance(const Calc::CostRow &row)
{
    return Calc::variance(row);
}

double JobCostScreen::spentPercent(const Calc::CostRow &row)
{
    if (row.budget == 0)
        return 0;
    return std::round(double(row.actual) / double(row.budget) * 100.0 * 10.0) / 10.0;
}

double JobCostScreen::spentFraction(const Calc::CostRow &row)
{
    if (row.budget == 0)
        return row.actual > 0 ? 1.0 : 0.0;
    return double(row.actual) / double(row.budget);
}

QString JobCostScreen::totalKey()
{
    return u"\x1e"_s + u"TOTAL"_s;
}

PrintJob JobCostScreen::printJob(DB &db, const QString &projectId)
{
    const std::optional<Rec> p = db.get(projectId);
    return PrintJob{u"Job Cost "_s + (p ? p->f.value(u"name") : QString()),
                    [db = &db, projectId]() -> std::optional<PrintSource> {
                        const std::optional<Rec> p = db->get(projectId);
                        if (!p)
                            return std::nullopt;
                        return PrintSource::fromHtml(PrintReports::reportHTML(*db, *p));
                    }};
}

void JobCostScreen::refresh()
{
    const std::optional<Rec> p = syncProject(m_printable, &printJob);
    if (!p)
        return;
    const Calc::JobCost jc = jobCost(m_db, p->id);
    m_tiles[0]->setValue(Money::fmt(jc.total.budget));
    m_tiles[1]->setValue(Money::fmt(jc.total.committed));
    m_tiles[2]->setValue(Money::fmt(jc.total.actual));
    m_tiles[3]->setValue(Money::fmt(variance(jc.total)));
    m_tiles[3]->setWarn(variance(jc.total) < 0);

    QStringList keys = jc.order;
    keys.append(totalKey());
    m_grid->sync(keys, [this](const QString &key, QWidget *row) {
        const bool total = key == totalKey();
        MoneyGrid::Cells cells{MoneyGrid::text(row, total), new SpentCell(row)};
        static const QString figures[] = {u"jobcost.budget"_s, u"jobcost.committed"_s, u"jobcost.actual"_s,
                                          u"jobcost.variance"_s};
        for (int c = BudgetCol; c <= VarianceCol; ++c) {
            auto *cell = new MoneyCell(row);
            FigureLink::attach(cell, m_db, m_nav,
                               FigureLink::ofProject(m_db, m_nav, figures[c - BudgetCol],
                                                     total ? QString() : FigureLink::codeSubject(key)));
            cells.append(cell);
        }
        return cells;
    });
    for (const QString &key : keys) {
        const bool total = key == totalKey();
        const Calc::CostRow r = total ? jc.total : jc.rows.value(key);
        const MoneyGrid::Cells cells = m_grid->cells(key);
        const QString label = m_db.label(key);
        static_cast<QLabel *>(cells.at(CodeCol))
            ->setText(total             ? u"TOTAL"_s
                      : label.isEmpty() ? u"Uncoded"_s
                                        : label);
        auto *spent = static_cast<SpentCell *>(cells.at(SpentCol));
        spent->bar->setFraction(spentFraction(r));
        spent->label->setText(QString::asprintf("%.1f%%", spentPercent(r)));
        static_cast<MoneyCell *>(cells.at(BudgetCol))->set(r.budget, total);
        static_cast<MoneyCell *>(cells.at(CommittedCol))->set(r.committed, total);
        static_cast<MoneyCell *>(cells.at(ActualCol))->set(r.actual, total);
        const qint64 v = variance(r);
        static_cast<MoneyCell *>(cells.at(VarianceCol))
            ->set(v, total, v < 0 ? MoneyCell::red() : MoneyCell::green());
    }
}
