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
    QHeaderView *h = header();
    h->setStretchLastSection(false);
    h->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // The header's own metrics, as its painting elides with them.
    const QFontMetrics head = h->fontMetrics();
    const int headGaps = FWUI::shared().px(8) + FWUI::shared().px(4);
    m_natural.clear();
    m_rigid.clear();
    for (int c = 0; c < m->columnCount(); ++c) {
        h->setSectionResizeMode(c, QHeaderView::Fixed);
        const FD *fd = c < m->columns().size() ? &m->columns().at(c) : nullptr;
        // What must never be cut: amounts first, then numbers, dates and status words.
        const bool rigid = !fd || fd->key == u"number" || fd->key == u"status" || fd->key == u"stage" ||
                           fd->type.kind == FT::money || fd->type.kind == FT::number ||
                           fd->type.kind == FT::percent || fd->type.kind == FT::date ||
                           fd->type.kind == FT::time;
        const QString heading = m->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
        // The advance leaves out the headings' letter spacing, which their eliding counts.
        int width = head.horizontalAdvance(heading) +
                    int(std::ceil(h->font().letterSpacing() * heading.size())) + headGaps;
        for (int r = 0; r < m->rowCount(); ++r)
            width = std::max(width, RecordCellDelegate::wholeWidth(m->index(r, c)));
        m_natural.append(width);
        m_rigid.append(rigid);
    }
    placeColumns();
}

void RecordListView::placeColumns()
{
    if (m_natural.size() != header()->count())
        return;
    const QList<int> widths = shareWidths(m_natural, m_rigid, viewport()->width(), FWUI::shared().px(60));
    int total = 0;
    for (int c = 0; c < widths.size(); ++c) {
        header()->resizeSection(c, widths[c]);
        total += widths[c];
    }
    setHorizontalScrollBarPolicy(total > viewport()->width() + 1 ? Qt::ScrollBarAsNeeded
                                                                 : Qt::ScrollBarAlwaysOff);
}

void RecordListView::resizeEvent(QResizeEvent *e)
{
    QTreeView::resizeEvent(e);
    placeColumns();
}

QList<int> RecordListView::shareWidths(const QList<int> &natural, const QList<bool> &rigid, int available,
                                       int least)
{
    QList<int> widths = natural;
    QList<int> flexible;
    int rest = available;
    for (int c = 0; c < natural.size(); ++c) {
        if (rigid.value(c))
            rest -= natural[c];
        else
            flexible.append(c);
    }
    // Narrowest first: a column that needs less than an even share keeps its
    // width, and what it leaves goes to the wider ones.
    std::stable_sort(flexible.begin(), flexible.end(), [&](int a, int b) { return natural[a] < natural[b]; });
    for (qsizetype i = 0; i < flexible.size(); ++i) {
        const int c = flexible[i];
        const qsizetype left = flexible.size() - i;
        // The widest takes whatever remains, so the list ends at the view's edge.
        widths[c] = i + 1 == flexible.size()
                        ? std::max(least, rest)
                        : std::max(least, std::min(natural[c], int(std::max(0, rest) / left)));
        rest -= widths[c];
    }
    return widths;
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

QFont RecordCellDelegate::fontOf(int kind)
{
    const FWUI &ui = FWUI::shared();
    switch (RecordListModel::CellKind(kind)) {
    case RecordListModel::Project: return ui.font(12);
    case RecordListModel::Number: return ui.font(12, QFont::Bold);
    case RecordListModel::Money: return ui.font(12.5, QFont::DemiBold);
    case RecordListModel::Pill:
    case RecordListModel::Badge: return ui.font(10, QFont::Black);
    default: return ui.font(12.5);
    }
}

qreal RecordCellDelegate::leftGap()
{
    return FWUI::shared().s(8);
}

qreal RecordCellDelegate::rightGap()
{
    return FWUI::shared().s(4);
}

int RecordCellDelegate::wholeWidth(const QModelIndex &index)
{
    const FWUI &ui = FWUI::shared();
    const int kind = index.data(RecordListModel::KindRole).toInt();
    QString text = index.data(Qt::DisplayRole).toString();
    if (kind == RecordListModel::Pill)
        text = StatusPill::shown(text);
    if (text.isEmpty())
        return 0;
    const QFontMetricsF fm(fontOf(kind));
    qreal inner = fm.horizontalAdvance(QString(text).replace(u'\n', u' '));
    if (kind == RecordListModel::Pill || kind == RecordListModel::Badge)
        inner += ui.s(16); // the capsule's ends
    return int(std::ceil(leftGap() + inner + rightGap())) + 1;
}

void RecordCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    const QRectF cell = QRectF(option.rect).adjusted(leftGap(), 0, -rightGap(), 0);
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
    const QFont font = fontOf(kind);
    const QColor colour = kind == RecordListModel::Project ? t.dim : t.text;
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
