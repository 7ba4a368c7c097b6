#include "lineseditor.h"

#include "linecells.h"

#include "calc/money.h"
#include "calc/totals.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

namespace {
constexpr int kAmountWidth = 108;
constexpr int kFreeMinimum = 110;

// Fixes a cell or heading to its column's width; free columns share what is left.
void sizeColumn(QWidget *w, int points)
{
    const FWUI &ui = FWUI::shared();
    if (points > 0) {
        w->setFixedWidth(ui.px(points));
    } else {
        w->setMinimumWidth(ui.px(kFreeMinimum));
        w->setMaximumWidth(QWIDGETSIZE_MAX);
        w->setSizePolicy(QSizePolicy::Ignored, w->sizePolicy().verticalPolicy());
    }
}

QHBoxLayout *columnsLayout(QWidget *w)
{
    auto *row = new QHBoxLayout(w);
    row->setContentsMargins(0, 0, 0, 0);
    return row;
}
} // namespace

// One line of the grid: its cells, its amount, its remove button and, under
// them, the errors of refused amounts.
class LineRow : public QWidget
{
public:
    LineRow(DB &db, const Rec &line, const QList<FD> &fields, const QString &project, QWidget *parent)
        : QWidget(parent)
        , m_fields(fields)
        , m_remove(new QToolButton(this))
        , m_error(new QLabel(this))
    {
        setObjectName(line.id);
        auto *col = new QVBoxLayout(this);
        col->setContentsMargins(0, 0, 0, 0);
        auto *cellsRow = new QWidget(this);
        m_cellsLayout = columnsLayout(cellsRow);
        for (const FD &fd : fields) {
            LineCell *cell = LineCell::make(db, line.id, fd, project, cellsRow);
            m_cellsLayout->addWidget(cell, LinesEditor::columnWidth(fd) > 0 ? 0 : 1);
            m_cells.append(cell);
            connect(cell, &LineCell::errorChanged, this, &LineRow::showErrors);
        }
        if (LinesEditor::hasAmount(fields)) {
            m_amount = new QLabel(cellsRow);
            m_amount->setObjectName(u"amount"_s);
            m_amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            m_cellsLayout->addWidget(m_amount);
        }
        m_remove->setObjectName(u"remove"_s);
        m_remove->setAutoRaise(true);
        m_remove->setToolTip(u"Remove line"_s);
        m_cellsLayout->addWidget(m_remove);
        const QString id = line.id;
        connect(m_remove, &QToolButton::clicked, this, [&db, id] { db.remove(id); });
        col->addWidget(cellsRow);
        m_error->setObjectName(u"error"_s);
        m_error->setWordWrap(true);
        m_error->hide();
        col->addWidget(m_error);
        restyle();
        refresh(line);
    }

    void refresh(const Rec &line)
    {
        for (LineCell *cell : m_cells)
            cell->refresh(line);
        if (m_amount)
            m_amount->setText(Money::fmt(LinesEditor::amountOf(line, m_fields)));
    }

    void restyle()
    {
        const FWUI &ui = FWUI::shared();
        m_cellsLayout->setSpacing(ui.px(6));
        for (LineCell *cell : m_cells) {
            sizeColumn(cell, LinesEditor::columnWidth(cell->field()));
            cell->restyle();
        }
        if (m_amount) {
            sizeColumn(m_amount, kAmountWidth);
            m_amount->setFont(ui.font(12.5, QFont::Medium));
        }
        m_remove->setIcon(Icons::icon(u"minus.circle.fill"_s, QColor(0xe5, 0x48, 0x4d), ui.px(16)));
        m_remove->setIconSize(QSize(ui.px(16), ui.px(16)));
        m_remove->setFixedWidth(ui.px(24));
        m_error->setFont(ui.font(10.5));
        QPalette p = m_error->palette();
        p.setColor(QPalette::WindowText, QColor(0xe5, 0x48, 0x4d));
        m_error->setPalette(p);
    }

private:
    void showErrors()
    {
        QStringList errors;
        for (LineCell *cell : m_cells)
            if (!cell->error().isEmpty())
                errors << cell->field().label + u": "_s + cell->error();
        m_error->setText(errors.join(u'\n'));
        m_error->setVisible(!errors.isEmpty());
    }

    QList<FD> m_fields;
    QList<LineCell *> m_cells;
    QHBoxLayout *m_cellsLayout = nullptr;
    QLabel *m_amount = nullptr;
    QToolButton *m_remove;
    QLabel *m_error;
};

LinesEditor::LinesEditor(DB &db, const QString &parentId, const QString &kind, const QList<FD> &fields,
                         QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_parent(parentId)
    , m_kind(kind)
    , m_fields(fields)
    , m_add(new FWChromeButton(kind == u"bid"_s ? u"Add Bid"_s : u"Add Line"_s, u"plus"_s, this))
    , m_empty(new QLabel(u"No lines yet."_s, this))
    , m_header(new QWidget(this))
    , m_rowsLayout(new QVBoxLayout)
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    auto *heading = new QHBoxLayout;
    heading->addWidget(new FWCaption(kind == u"bid"_s ? u"Bids received"_s : u"Line items"_s, this));
    heading->addStretch(1);
    heading->addWidget(m_add);
    col->addLayout(heading);
    col->addWidget(m_empty);
    col->addWidget(m_header);
    col->addLayout(m_rowsLayout);
    m_add->setObjectName(u"add"_s);
    connect(m_add, &QAbstractButton::clicked, this, &LinesEditor::add);

    QHBoxLayout *head = columnsLayout(m_header);
    for (const FD &fd : fields) {
        auto *caption = new FWCaption(fd.label, m_header);
        // A long label over a narrow column wraps rather than being cut off.
        caption->setWordWrap(true);
        caption->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
        head->addWidget(caption, columnWidth(fd) > 0 ? 0 : 1);
    }
    if (hasAmount(fields)) {
        auto *amount = new FWCaption(u"Amount"_s, m_header);
        amount->setAlignment(Qt::AlignRight | Qt::AlignBottom);
        head->addWidget(amount);
    }
    head->addSpacing(0); // the remove column, sized in restyle
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &LinesEditor::restyle);
    refresh();
}

bool LinesEditor::hasAmount(const QList<FD> &fields)
{
    return std::any_of(fields.begin(), fields.end(),
                       [](const FD &fd) { return fd.key == u"qty"_s || fd.key == u"qtyPer"_s; });
}

int LinesEditor::columnWidth(const FD &fd)
{
    if (fd.key == u"unit"_s)
        return 50;
    switch (fd.type.kind) {
    case FT::number:
    case FT::percent: return 70;
    case FT::money: return 108;
    case FT::ref: return 150;
    default: return 0;
    }
}

qint64 LinesEditor::amountOf(const Rec &line, const QList<FD> &fields)
{
    auto holds = [&](QStringView key) {
        return std::any_of(fields.begin(), fields.end(), [&](const FD &fd) { return fd.key == key; });
    };
    const double qty = holds(u"qtyPer") ? line.d(u"qtyPer") : line.d(u"qty");
    const qint64 unit = holds(u"unitPrice") ? line.i(u"unitPrice") : line.i(u"unitCost");
    return Calc::lineAmount({qty, unit});
}

QStringList LinesEditor::lineIds() const
{
    return m_order;
}

void LinesEditor::add()
{
    const std::optional<Rec> owner = m_parent.isEmpty() ? std::nullopt : m_db.get(m_parent);
    if (!owner)
        return;
    Fields f;
    f.insert(u"sort"_s, QString::number(m_db.count(m_kind, {.parent = m_parent}) + 1));
    if (std::any_of(m_fields.begin(), m_fields.end(), [](const FD &fd) { return fd.key == u"qty"_s; }))
        f.insert(u"qty"_s, u"1"_s);
    if (std::any_of(m_fields.begin(), m_fields.end(), [](const FD &fd) { return fd.key == u"qtyPer"_s; }))
        f.insert(u"qtyPer"_s, u"1"_s);
    // The lines of a purchase order start on the order's cost code.
    if (m_kind == u"po_line"_s)
        f.insert(u"costCode"_s, owner->f.value(u"costCode"_s));
    m_db.add(m_kind, owner->project, owner->id, f);
}

void LinesEditor::refresh()
{
    const std::optional<Rec> owner = m_db.get(m_parent);
    setVisible(owner.has_value());
    if (!owner)
        return;
    m_project = owner->project;
    const QList<Rec> lines = m_db.list(m_kind, {.parent = m_parent});
    QStringList order;
    for (const Rec &line : lines) {
        order.append(line.id);
        if (LineRow *row = m_rows.value(line.id))
            row->refresh(line);
        else
            m_rows.insert(line.id, new LineRow(m_db, line, m_fields, m_project, this));
    }
    for (auto it = m_rows.begin(); it != m_rows.end();) {
        if (!order.contains(it.key())) {
            delete it.value();
            it = m_rows.erase(it);
        } else {
            ++it;
        }
    }
    if (order != m_order) {
        // Re-seat the rows in list order; moving a widget keeps its focus and caret.
        for (int i = 0; i < order.size(); ++i) {
            LineRow *row = m_rows.value(order[i]);
            m_rowsLayout->removeWidget(row);
            m_rowsLayout->insertWidget(i, row);
        }
        m_order = order;
    }
    m_empty->setVisible(lines.isEmpty());
    m_header->setVisible(!lines.isEmpty());
}

void LinesEditor::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setSpacing(ui.px(8));
    m_rowsLayout->setSpacing(ui.px(6));
    auto *head = static_cast<QHBoxLayout *>(m_header->layout());
    head->setSpacing(ui.px(6));
    for (int i = 0; i < m_fields.size(); ++i)
        sizeColumn(head->itemAt(i)->widget(), columnWidth(m_fields[i]));
    if (hasAmount(m_fields))
        sizeColumn(head->itemAt(int(m_fields.size()))->widget(), kAmountWidth);
    if (QSpacerItem *remove = head->itemAt(head->count() - 1)->spacerItem())
        remove->changeSize(ui.px(24), 0, QSizePolicy::Fixed, QSizePolicy::Minimum);
    head->invalidate();
    m_empty->setFont(ui.font(12.5));
    QPalette p = m_empty->palette();
    p.setColor(QPalette::WindowText, ui.theme().dim);
    m_empty->setPalette(p);
    for (LineRow *row : std::as_const(m_rows))
        row->restyle();
}
