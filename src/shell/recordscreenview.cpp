#include "recordscreenview.h"

#include "fieldeditors.h"
#include "recordscreenmodel.h"

#include "look/contrast.h"
#include "look/fwui.h"
#include "look/statuspill.h"
#include "look/tones.h"

#include <QtGui/QPainter>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {

// The column headings in the finish's dim colour; a heading wider than its
// column is shortened with "…" (the style sheet's own drawing would cut it).
class ListHeader : public QHeaderView
{
public:
    explicit ListHeader(QWidget *parent)
        : QHeaderView(Qt::Horizontal, parent)
    {}

    QSize sizeHint() const override { return {length(), fontMetrics().height() + 2 * FWUI::shared().px(6)}; }

protected:
    void paintSection(QPainter *p, const QRect &rect, int logical) const override
    {
        const FWUI &ui = FWUI::shared();
        const QRect text = rect.adjusted(ui.px(8), 0, -ui.px(4), 0);
        const auto align = model()->headerData(logical, orientation(), Qt::TextAlignmentRole);
        p->save();
        p->setFont(font());
        p->setPen(ui.theme().dim);
        p->drawText(text, align.isValid() ? align.toInt() : int(Qt::AlignLeft | Qt::AlignVCenter),
                    fontMetrics().elidedText(model()->headerData(logical, orientation()).toString(),
                                             Qt::ElideRight, text.width()));
        p->restore();
    }
};

} // namespace

RecordListView::RecordListView(QWidget *parent)
    : QTreeView(parent)
{
    setHeader(new ListHeader(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setItemsExpandable(false);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new RecordCellDelegate(this));
    header()->setSectionsMovable(false);
    header()->setHighlightSections(false);
    viewport()->setAutoFillBackground(false);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        restyle();
        fitColumns();
    });
}

void RecordListView::restyle()
{
    const FWUI &ui = FWUI::shared();
    QFont head = ui.font(10, QFont::Black);
    head.setLetterSpacing(QFont::AbsoluteSpacing, ui.s(1));
    header()->setFont(head);
    header()->setStyleSheet(u"QHeaderView { background: transparent; border: none; }"_s);
    setStyleSheet(u"QTreeView { background: transparent; border: none; }"_s);
    FieldLook::thinScrollBar(verticalScrollBar());
}

void RecordListView::fitColumns()
{
    auto *m = qobject_cast<RecordListModel *>(model());
    if (!m)
        return;
    const FWUI &ui = FWUI::shared();
    QHeaderView *h = header();
    h->setStretchLastSection(false);
    h->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (int i = 0; i < m->columnCount(); ++i) {
        const bool number = i < m->columns().size() && m->columns().at(i).key == u"number";
        const bool badge = i >= m->columns().size();
        if (number || badge) {
            h->setSectionResizeMode(i, QHeaderView::Fixed);
            h->resizeSection(i, ui.px(number ? 44 : 110));
        } else {
            h->setSectionResizeMode(i, QHeaderView::Stretch);
        }
    }
}

void RecordListView::drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    const FWUI &ui = FWUI::shared();
    const QRectF r = QRectF(option.rect).adjusted(ui.s(2), ui.s(1), -ui.s(2), -ui.s(1));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (selectionModel() && selectionModel()->isRowSelected(index.row(), index.parent())) {
        QColor fill = ui.theme().accent;
        fill.setAlphaF(0.35);
        painter->setBrush(fill);
        painter->setPen(QPen(ui.theme().accent, 1));
        painter->drawRoundedRect(r, ui.s(8), ui.s(8));
    } else if (index.row() % 2 == 1) {
        QColor band = ui.theme().raised;
        band.setAlphaF(0.25);
        painter->setBrush(band);
        painter->setPen(Qt::NoPen);
        painter->drawRoundedRect(r, ui.s(8), ui.s(8));
    }
    painter->restore();
    const QHeaderView *h = header();
    for (int c = 0; c < h->count(); ++c) {
        QStyleOptionViewItem cell = option;
        cell.rect =
            QRect(h->sectionViewportPosition(c), option.rect.y(), h->sectionSize(c), option.rect.height());
        itemDelegate()->paint(painter, cell, model()->index(index.row(), c, index.parent()));
    }
}

void RecordCellDelegate::paintCapsule(QPainter *p, const QRectF &cell, const QString &text, QColor fill)
{
    if (text.isEmpty())
        return;
    const FWUI &ui = FWUI::shared();
    const QFont font = ui.font(10, QFont::Black);
    const qreal w = std::min<qreal>(QFontMetricsF(font).horizontalAdvance(text) + ui.s(16), cell.width());
    // In a column too narrow for it the capsule keeps its ends and shortens the word.
    const QString shown =
        QFontMetricsF(font).elidedText(text, Qt::ElideRight, std::max<qreal>(0, w - ui.s(12)));
    const qreal hgt = ui.s(18);
    const QRectF r(cell.left() + 0.5, cell.center().y() - hgt / 2 + 0.5, w - 1, hgt - 1);
    // White words need the capsule dark enough under them, whatever colour it was given.
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    p->setBrush(Contrast::reaching(fill, Qt::white, Contrast::kText));
    p->setPen(Qt::NoPen);
    p->drawRoundedRect(r, r.height() / 2, r.height() / 2);
    p->setPen(Qt::white);
    p->setFont(font);
    p->drawText(r, Qt::AlignCenter, shown);
    p->restore();
}

void RecordCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    const QRectF cell = QRectF(option.rect).adjusted(ui.s(8), 0, -ui.s(4), 0);
    const QString text = index.data(Qt::DisplayRole).toString();
    const auto kind = RecordListModel::CellKind(index.data(RecordListModel::KindRole).toInt());
    switch (kind) {
    case RecordListModel::Pill: {
        const QColor fill = FWTones::current().pillFill[int(StatusPill::tone(text))];
        paintCapsule(painter, cell, StatusPill::shown(text), fill);
        return;
    }
    case RecordListModel::Badge:
        paintCapsule(painter, cell, text, index.data(RecordListModel::ColourRole).value<QColor>());
        return;
    default: break;
    }
    QFont font = ui.font(12.5);
    QColor colour = t.text;
    if (kind == RecordListModel::Project) {
        font = ui.font(12);
        colour = t.dim;
    } else if (kind == RecordListModel::Number) {
        font = ui.font(12, QFont::Bold);
    } else if (kind == RecordListModel::Money) {
        font = ui.font(12.5, QFont::DemiBold);
    }
    // The number column is narrow; its right gap goes so that a four-digit number shows whole.
    const QRectF room = kind == RecordListModel::Number ? cell.adjusted(0, 0, ui.s(3), 0) : cell;
    painter->save();
    painter->setFont(font);
    painter->setPen(colour);
    const QString line = QString(text).replace(u'\n', u' ');
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(font).elidedText(line, Qt::ElideRight, int(room.width())));
    painter->restore();
}

QSize RecordCellDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {FWUI::shared().px(60), FWUI::shared().px(30)};
}
