#include "budgetscreen.h"

#include "figurelink.h"
#include "kpitile.h"

#include "calc/money.h"
#include "calc/totals.h"
#include "catalog/moduledef.h"
#include "documents/costhtml.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/numberfield.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtWidgets/QBoxLayout>

using namespace Qt::StringLiterals;

namespace {

enum Col { CodeCol, OriginalCol, ApprovedCol, RevisedCol, PendingCol, ProjectedCol, RemoveCol };

const GridHead &head()
{
    static const GridHead h{{u"Cost code"_s, 0, false}, {u"Original budget"_s, 130}, {u"Approved COs"_s, 115},
                            {u"Revised"_s, 115},        {u"Pending COs"_s, 115},     {u"Projected"_s, 115},
                            {QString(), 28, false}};
    return h;
}

QString codeLabel(const DB &db, const QString &code)
{
    const QString label = db.label(code);
    return label.isEmpty() ? u"Uncoded"_s : label;
}

// The one budget line of a code, when it has exactly one.
QHash<QString, QString> singleLines(const DB &db, const QString &projectId)
{
    QHash<QString, QString> single;
    QHash<QString, int> count;
    db.visit(u"budget_line"_s, {.project = projectId}, [&](const Rec &line) {
        const QString code = line.f.value(u"costCode");
        if (++count[code] == 1)
            single.insert(code, line.id);
        else
            single.remove(code);
    });
    return single;
}

} // namespace

BudgetScreen::BudgetScreen(const ScreenContext &ctx, QWidget *parent)
    : ProjectScreen(ctx, u" · approved change orders revise the budget; pending ones are exposure"_s,
                    new PrintButton(printJob(ctx.db, {})), parent)
    , m_grid(new MoneyGrid(head(), this))
    , m_codes(new ThemedChoice(TextBinding::local(&addCode), {}, this))
    , m_add(new FWChromeButton(u"Add Budget Line"_s, u"plus"_s, this))
{
    m_grid->setAccessibleName(u"Budget lines"_s);
    m_tiles = addTiles({
        {u"Original contract"_s, u"doc.text.fill"_s},
        {u"Revised contract"_s, u"arrow.triangle.branch"_s},
        {u"Revised cost budget"_s, u"chart.bar.fill"_s},
        {u"Projected margin"_s, u"chart.line.uptrend.xyaxis"_s},
        {u"Pending exposure"_s, u"exclamationmark.triangle"_s},
    });
    const QStringList figures{u"contract.original"_s, u"contract.revised"_s, u"budget.revised"_s,
                              u"budget.margin"_s, u"contract.pending"_s};
    for (int i = 0; i < figures.size(); ++i)
        FigureLink::attach(m_tiles[i], m_db, m_nav, FigureLink::ofProject(m_db, m_nav, figures[i]));

    auto *panel = new FWPanel(this);
    auto *col = new QVBoxLayout(panel);
    col->addWidget(m_grid);
    auto *adding = new QHBoxLayout;
    adding->addWidget(new FWCaption(u"Cost code"_s, panel));
    m_codes->setObjectName(u"addCode"_s);
    adding->addWidget(m_codes);
    m_add->setObjectName(u"add"_s);
    connect(m_add, &QAbstractButton::clicked, this, &BudgetScreen::addLine);
    adding->addWidget(m_add);
    adding->addStretch(1);
    col->addLayout(adding);
    body()->addWidget(panel);
    body()->addStretch(1);

    m_printable = new Printable(this, 1, printJob(m_db, {}));
    auto restyle = [this, col, adding] {
        const FWUI &ui = FWUI::shared();
        col->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
        col->setSpacing(ui.px(12));
        adding->setSpacing(ui.px(8));
        m_codes->setMinimumWidth(ui.px(240));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void BudgetScreen::registerScreen()
{
    ModuleArea::registerScreen(u"budget"_s, [](const ScreenContext &ctx) { return new BudgetScreen(ctx); });
}

QString BudgetScreen::rowKey(const QString &code, const QString &singleLine)
{
    return code + u'\x1f' + singleLine;
}

QString BudgetScreen::totalKey()
{
    return u"\x1e"_s + u"TOTAL"_s;
}

PrintJob BudgetScreen::printJob(DB &db, const QString &projectId)
{
    const std::optional<Rec> p = db.get(projectId);
    return PrintJob{u"Budget "_s + (p ? p->f.value(u"name") : QString()),
                    [db = &db, projectId]() -> std::optional<PrintSource> {
                        const std::optional<Rec> p = db->get(projectId);
                        if (!p)
                            return std::nullopt;
                        return PrintSource::fromHtml(PrintReports::budgetHTML(*db, *p, budget(*db, p->id)));
                    }};
}

void BudgetScreen::addLine()
{
    const std::optional<Rec> p = m_nav.project(m_db);
    if (!p)
        return;
    m_db.add(u"budget_line"_s, p->id, QString(),
             {{u"costCode"_s, addCode}, {u"original"_s, u"0"_s}, {u"description"_s, m_db.label(addCode)}});
}

MoneyGrid::Cells BudgetScreen::makeRow(const QString &key, QWidget *row)
{
    const bool total = key == totalKey();
    const QString line = total ? QString() : key.section(u'\x1f', 1);
    const QString subject = total ? QString() : FigureLink::codeSubject(key.section(u'\x1f', 0, 0));
    // Each figure opens into what it is made of (a typed original is a record, not a figure).
    auto figure = [this, row, &subject](const QString &name) {
        auto *cell = new MoneyCell(row);
        FigureLink::attach(cell, m_db, m_nav, FigureLink::ofProject(m_db, m_nav, name, subject));
        return cell;
    };
    MoneyGrid::Cells cells{MoneyGrid::text(row, total)};
    if (line.isEmpty()) {
        cells.append(figure(u"budget.original"_s));
    } else {
        auto *box =
            new NumberField(TextBinding::of(recBinding(m_db, line, u"original"_s)), true, u"0.00"_s, row);
        box->box()->setAlignment(Qt::AlignRight);
        box->setObjectName(u"original"_s);
        cells.append(box);
    }
    for (const QString &name :
         {u"budget.approved"_s, u"budget.revised"_s, u"budget.pending"_s, u"budget.projected"_s})
        cells.append(figure(name));
    if (line.isEmpty()) {
        cells.append(new QWidget(row));
    } else {
        auto *remove = new FWChromeButton(QString(), u"minus.circle"_s, row);
        remove->setCompact(true);
        remove->setObjectName(u"remove"_s);
        remove->setToolTip(u"Remove this budget line"_s);
        // Removing a line asks nothing, like any line of the program.
        connect(remove, &QAbstractButton::clicked, this, [this, line] { m_db.remove(line); });
        cells.append(remove);
    }
    return cells;
}

void BudgetScreen::refresh()
{
    const std::optional<Rec> p = syncProject(m_printable, &printJob);
    if (!p)
        return;

    const Calc::BudgetSummary b = budget(m_db, p->id);
    refreshTiles(*p, b);

    const QHash<QString, QString> single = singleLines(m_db, p->id);
    QStringList keys;
    for (const QString &code : b.order)
        keys.append(rowKey(code, single.value(code)));
    keys.append(totalKey());
    m_grid->sync(keys, [this](const QString &key, QWidget *row) { return makeRow(key, row); });
    for (qsizetype i = 0; i < keys.size(); ++i) {
        const bool total = keys.at(i) == totalKey();
        const Calc::BudgetRow r = total ? b.total : b.rows.value(b.order.at(i));
        const MoneyGrid::Cells cells = m_grid->cells(keys.at(i));
        static_cast<QLabel *>(cells.at(CodeCol))
            ->setText(total ? u"TOTAL"_s : codeLabel(m_db, b.order.at(i)));
        if (auto *box = qobject_cast<NumberField *>(cells.at(OriginalCol)))
            box->refresh();
        else
            static_cast<MoneyCell *>(cells.at(OriginalCol))->set(r.original, total);
        static_cast<MoneyCell *>(cells.at(ApprovedCol))->set(r.approved, total);
        static_cast<MoneyCell *>(cells.at(RevisedCol))->set(r.revised, total);
        static_cast<MoneyCell *>(cells.at(PendingCol))->set(r.pending, total);
        static_cast<MoneyCell *>(cells.at(ProjectedCol))->set(r.projected, total);
    }

    ThemedChoice::Options options{{QString(), u"—"_s}};
    for (const Rec &code : m_db.costCodes())
        options.append({code.id, m_db.label(code.id)});
    m_codes->setOptions(options);
    m_codes->refresh();
}

void BudgetScreen::refreshTiles(const Rec &project, const Calc::BudgetSummary &b)
{
    const Calc::ContractSummary c = contract(m_db, project);
    m_tiles[0]->setValue(Money::fmt(c.original));
    m_tiles[0]->setNote(u"Approved changes "_s + Money::fmt(c.approved));
    m_tiles[1]->setValue(Money::fmt(c.revised));
    m_tiles[2]->setValue(Money::fmt(b.total.revised));
    const qint64 margin = Money::sub(c.revised, b.total.revised);
    m_tiles[3]->setValue(Money::fmt(margin));
    m_tiles[3]->setNote(
        c.revised != 0 ? QString::asprintf("%.1f%%", double(margin) / double(c.revised) * 100.0) : QString());
    m_tiles[4]->setValue(Money::fmt(c.pending));
    m_tiles[4]->setWarn(c.pending != 0);
}
