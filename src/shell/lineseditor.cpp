#include "lineseditor.h"

#include "linecells.h"

#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/tones.h"
#include "store/db.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

using namespace Qt::StringLiterals;

namespace {
constexpr int kAmountWidth = 108;
constexpr int kFreeMinimum = 110;
constexpr int kRemoveWidth = 24;
QColor errorRed()
{
    return FWTones::current().error;
}

// The captions over the columns, as the small captions elsewhere; a long
// label over a narrow column wraps rather than being cut off.
class LinesHeader : public QHeaderView
{
public:
    explicit LinesHeader(QWidget *parent)
        : QHeaderView(Qt::Horizontal, parent)
    {
        setSectionsClickable(false);
        setHighlightSections(false);
        setSectionResizeMode(QHeaderView::Fixed);
        setMinimumSectionSize(0);
        setStyleSheet(u"QHeaderView { background: transparent; border: none; }"_s);
        viewport()->setAutoFillBackground(false);
    }

    static QFont captionFont()
    {
        const FWUI &ui = FWUI::shared();
        QFont f = ui.font(10, QFont::DemiBold);
        f.setLetterSpacing(QFont::AbsoluteSpacing, ui.s(0.8));
        return f;
    }

    QSize sizeHint() const override
    {
        const QFontMetrics fm(captionFont());
        int height = fm.height();
        for (int s = 0; model() && s < count(); ++s) {
            const int width = std::max(1, sectionSize(s) - LinesDelegate::gap());
            const QString text = model()->headerData(s, Qt::Horizontal).toString();
            height =
                std::max(height, fm.boundingRect(QRect(0, 0, width, 10000), Qt::TextWordWrap, text).height());
        }
        return {length(), height + FWUI::shared().px(4)};
    }

protected:
    void paintSection(QPainter *p, const QRect &rect, int logical) const override
    {
        auto *lines = static_cast<LinesModel *>(model());
        p->save();
        p->setFont(captionFont());
        p->setPen(FWUI::shared().theme().dim);
        const QRect text = rect.adjusted(0, 0, -LinesDelegate::gap(), -FWUI::shared().px(4));
        const Qt::Alignment across = logical == lines->amountColumn() ? Qt::AlignRight : Qt::AlignLeft;
        p->drawText(text, int(across | Qt::AlignBottom) | Qt::TextWordWrap,
                    model()->headerData(logical, Qt::Horizontal).toString());
        p->restore();
    }
};

} // namespace

// The grid: painted rows as tall as their content, so the editor's own scroll
// area scrolls them; the errors of refused amounts stand under their row.
class LinesGrid : public QTableView
{
public:
    using QTableView::edit;

    LinesGrid(LinesModel *model, QWidget *parent)
        : QTableView(parent)
        , m_model(model)
        , m_delegate(new LinesDelegate(model, this))
    {
        setHorizontalHeader(new LinesHeader(this));
        setModel(model);
        setItemDelegate(m_delegate);
        verticalHeader()->hide();
        verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        verticalHeader()->setMinimumSectionSize(0);
        setShowGrid(false);
        setFrameShape(QFrame::NoFrame);
        setSelectionMode(QAbstractItemView::NoSelection);
        // A click (see mousePressEvent) or a keystroke opens the cell's editor at
        // once; Tab walks the cells. Not on every change of the current cell: a
        // line removed under it would open another line's editor and take the focus.
        setEditTriggers(QAbstractItemView::SelectedClicked | QAbstractItemView::DoubleClicked |
                        QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
        setTabKeyNavigation(true);
        // A click gives the focus to the editor it opens, never to the grid.
        setFocusPolicy(Qt::TabFocus);
        setWordWrap(false);
        setCornerButtonEnabled(false);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        viewport()->setAutoFillBackground(false);
        setStyleSheet(u"QTableView { background: transparent; border: none; }"_s);

        auto rowsChanged = [this] {
            sizeRows();
            fitHeight();
        };
        connect(model, &QAbstractItemModel::rowsInserted, this, rowsChanged);
        connect(model, &QAbstractItemModel::rowsRemoved, this, rowsChanged);
        connect(model, &QAbstractItemModel::layoutChanged, this, rowsChanged);
        connect(model, &LinesModel::errorsChanged, this, [this](int row) {
            sizeRow(row);
            fitHeight();
        });
        restyle();
    }

    void restyle()
    {
        verticalHeader()->setDefaultSectionSize(LinesDelegate::boxHeight() + LinesDelegate::gap());
        fitColumns();
        sizeRows();
        fitHeight();
        viewport()->update();
        horizontalHeader()->viewport()->update();
    }

protected:
    void resizeEvent(QResizeEvent *e) override
    {
        QTableView::resizeEvent(e);
        fitColumns();
        sizeRows();
        fitHeight();
    }

    void paintEvent(QPaintEvent *e) override
    {
        QTableView::paintEvent(e);
        const FWUI &ui = FWUI::shared();
        QPainter p(viewport());
        p.setFont(ui.font(10.5));
        p.setPen(errorRed());
        const int icon = ui.px(11);
        const int top = std::max(0, rowAt(e->rect().top()));
        int bottom = rowAt(e->rect().bottom());
        if (bottom < 0)
            bottom = m_model->rowCount() - 1;
        for (int r = top; r <= bottom; ++r) {
            const QString errors = m_model->rowErrors(r);
            if (errors.isEmpty())
                continue;
            const int y = rowViewportPosition(r) + LinesDelegate::boxHeight() + ui.px(3);
            const int x = -horizontalOffset();
            p.drawPixmap(x, y + ui.px(2),
                         Icons::pixmap(u"exclamationmark.triangle.fill"_s, errorRed(), icon));
            p.drawText(QRect(x + icon + ui.px(4), y, errorWidth(), 10000), Qt::TextWordWrap | Qt::AlignTop,
                       errors);
        }
    }

    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override
    {
        // A choice opened by a click shows its list at once, like the record editor's.
        m_delegate->setOpenChoices(m_mouse);
        const bool opened = QTableView::edit(index, trigger, event);
        m_delegate->setOpenChoices(false);
        // The grid does not scroll itself; the editor's scroll area brings the open cell into view.
        QWidget *focus = QApplication::focusWidget();
        if (opened && focus && viewport()->isAncestorOf(focus))
            for (QWidget *w = parentWidget(); w; w = w->parentWidget())
                if (auto *area = qobject_cast<QScrollArea *>(w)) {
                    area->ensureWidgetVisible(focus, 0, FWUI::shared().px(24));
                    break;
                }
        return opened;
    }

    void mousePressEvent(QMouseEvent *e) override
    {
        // The remove button and a switch act without taking the focus or moving
        // the current cell, so the box being typed in stays open, as a button would.
        const QModelIndex index = indexAt(e->position().toPoint());
        if (isAction(index) && e->button() == Qt::LeftButton) {
            m_pressed = index;
            e->accept();
            return;
        }
        m_mouse = true;
        QTableView::mousePressEvent(e);
        if (index.isValid() && index == currentIndex() && (index.flags() & Qt::ItemIsEditable) &&
            state() != EditingState)
            edit(index);
        m_mouse = false;
    }

    void mouseReleaseEvent(QMouseEvent *e) override
    {
        if (m_pressed.isValid()) {
            const QModelIndex pressed = m_pressed;
            m_pressed = QPersistentModelIndex();
            const QRect cell = visualRect(pressed);
            const QRect box(cell.left(), cell.top(), cell.width() - LinesDelegate::gap(),
                            LinesDelegate::boxHeight());
            if (box.contains(e->position().toPoint()))
                m_delegate->act(pressed);
            e->accept();
            return;
        }
        m_mouse = true;
        QTableView::mouseReleaseEvent(e);
        m_mouse = false;
    }

    void mouseDoubleClickEvent(QMouseEvent *e) override
    {
        if (isAction(indexAt(e->position().toPoint())))
            return mousePressEvent(e);
        QTableView::mouseDoubleClickEvent(e);
    }

    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override
    {
        // Tab and Backtab walk the cells that take input, row after row.
        const int fields = int(m_model->fields().size());
        if ((action != MoveNext && action != MovePrevious) || fields == 0)
            return QTableView::moveCursor(action, modifiers);
        const QModelIndex current = currentIndex();
        int row = current.isValid() ? current.row() : 0;
        int column = current.isValid() ? std::min(current.column(), fields) : -1;
        column += action == MoveNext ? 1 : -1;
        if (column >= fields) {
            column = 0;
            ++row;
        } else if (column < 0) {
            column = fields - 1;
            --row;
        }
        return row >= 0 && row < m_model->rowCount() ? m_model->index(row, column) : QModelIndex();
    }

private:
    bool isAction(const QModelIndex &index) const
    {
        if (!index.isValid())
            return false;
        const FD *fd = m_model->fieldAt(index.column());
        return index.column() == m_model->removeColumn() || (fd && fd->type.kind == FT::boolean);
    }

    int errorWidth() const
    {
        const FWUI &ui = FWUI::shared();
        return std::max(ui.px(170), viewport()->width() - ui.px(15));
    }

    void fitColumns()
    {
        const FWUI &ui = FWUI::shared();
        const int gap = LinesDelegate::gap();
        QList<int> widths;
        int fixed = 0;
        int free = 0;
        for (int c = 0; c < m_model->columnCount(); ++c) {
            int points = kRemoveWidth;
            if (const FD *fd = m_model->fieldAt(c))
                points = LinesEditor::columnWidth(*fd);
            else if (c == m_model->amountColumn())
                points = kAmountWidth;
            widths.append(points > 0 ? ui.px(points) + gap : 0);
            fixed += widths.last();
            free += points > 0 ? 0 : 1;
        }
        // Free columns share what is left, but never shrink below a readable width.
        const int share =
            free > 0 ? std::max(ui.px(kFreeMinimum) + gap, (viewport()->width() - fixed) / free) : 0;
        QHeaderView *head = horizontalHeader();
        for (int c = 0; c < widths.size(); ++c) {
            const int width = widths.at(c) > 0 ? widths.at(c) : share;
            if (head->sectionSize(c) != width)
                head->resizeSection(c, width);
        }
        updateGeometries();
    }

    void sizeRow(int row)
    {
        const FWUI &ui = FWUI::shared();
        int height = LinesDelegate::boxHeight() + LinesDelegate::gap();
        const QString errors = m_model->rowErrors(row);
        if (!errors.isEmpty())
            height += QFontMetrics(ui.font(10.5))
                          .boundingRect(QRect(0, 0, errorWidth(), 10000), Qt::TextWordWrap, errors)
                          .height() +
                      ui.px(3);
        if (rowHeight(row) != height)
            setRowHeight(row, height);
    }

    void sizeRows()
    {
        const int plain = LinesDelegate::boxHeight() + LinesDelegate::gap();
        for (int r = 0; r < m_model->rowCount(); ++r) {
            if (!m_model->rowErrors(r).isEmpty())
                sizeRow(r);
            else if (rowHeight(r) != plain)
                setRowHeight(r, plain);
        }
    }

    void fitHeight()
    {
        int height = horizontalHeader()->sizeHint().height() + verticalHeader()->length() + 2 * frameWidth();
        if (horizontalHeader()->length() > viewport()->width())
            height += horizontalScrollBar()->sizeHint().height();
        if (height != this->height())
            setFixedHeight(height);
    }

    LinesModel *m_model;
    LinesDelegate *m_delegate;
    bool m_mouse = false;
    QPersistentModelIndex m_pressed;
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
    , m_model(new LinesModel(db, kind, parentId, fields, this))
    , m_grid(new LinesGrid(m_model, this))
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    auto *heading = new QHBoxLayout;
    heading->addWidget(new FWCaption(kind == u"bid"_s ? u"Bids received"_s : u"Line items"_s, this));
    heading->addStretch(1);
    heading->addWidget(m_add);
    col->addLayout(heading);
    col->addWidget(m_empty);
    m_grid->setAccessibleName(u"Lines"_s);
    col->addWidget(m_grid);
    m_add->setObjectName(u"add"_s);
    connect(m_add, &QAbstractButton::clicked, this, &LinesEditor::add);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &LinesEditor::restyle);
    refresh();
}

QTableView *LinesEditor::grid() const
{
    return m_grid;
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
    return lineAmountOf(line, fields);
}

QStringList LinesEditor::lineIds() const
{
    return m_model->lineIds();
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
    // The new line's first cell takes the keyboard once the grid shows the line.
    m_focusLine = m_db.add(m_kind, owner->project, owner->id, f).id;
    refresh();
}

void LinesEditor::refresh()
{
    const std::optional<Rec> owner = m_db.get(m_parent);
    setVisible(owner.has_value());
    if (!owner)
        return;
    m_model->refresh(owner->project);
    const bool none = m_model->rowCount() == 0;
    m_empty->setVisible(none);
    m_grid->setVisible(!none);
    const int row = m_focusLine.isEmpty() ? -1 : m_model->rowOf(m_focusLine);
    if (row >= 0) {
        m_focusLine.clear();
        const QModelIndex first = m_model->index(row, 0);
        m_grid->setCurrentIndex(first);
        m_grid->setFocus(Qt::OtherFocusReason);
        static_cast<QAbstractItemView *>(m_grid)->edit(first);
    }
}

void LinesEditor::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setSpacing(ui.px(8));
    m_empty->setFont(ui.font(12.5));
    QPalette p = m_empty->palette();
    p.setColor(QPalette::WindowText, ui.theme().dim);
    m_empty->setPalette(p);
    m_grid->restyle();
}
