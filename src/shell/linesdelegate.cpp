#include "linecellparts.h"

#include "fieldeditors.h"

#include "calc/fieldinput.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QSet>
#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>

using namespace Qt::StringLiterals;

using namespace LineCells;

// --- LinesDelegate ---

LinesDelegate::LinesDelegate(LinesModel *model, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
{}

int LinesDelegate::boxHeight()
{
    // As tall as a themed box at this zoom, so an editor opens exactly over its
    // cell; measured once per zoom, since every cell asks as it paints.
    static double zoom = 0;
    static int height = 0;
    const FWUI &ui = FWUI::shared();
    if (zoom != ui.zoom() || height == 0) {
        QLineEdit probe;
        FieldLook::apply(&probe);
        zoom = ui.zoom();
        height = std::max(probe.sizeHint().height(), QFontMetrics(ui.font(12.5)).height() + ui.px(10));
    }
    return height;
}

int LinesDelegate::gap()
{
    return FWUI::shared().px(6);
}

QSize LinesDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {FWUI::shared().px(110), boxHeight() + gap()};
}

void LinesDelegate::paint(QPainter *p, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    // The box takes the top of the row, less the gap to the next column; the
    // errors of the row are drawn by the grid below the boxes.
    const QRect box(option.rect.left(), option.rect.top(), option.rect.width() - gap(), boxHeight());
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    p->setFont(ui.font(12.5));
    const int pad = ui.px(8);
    if (index.column() == m_model->removeColumn()) {
        const int size = ui.px(16);
        const QPixmap icon = Icons::pixmap(u"minus.circle.fill"_s, kRemoveRed, size);
        p->drawPixmap(
            QRect(box.left() + (box.width() - size) / 2, box.top() + (box.height() - size) / 2, size, size),
            icon);
    } else if (index.column() == m_model->amountColumn()) {
        p->setFont(ui.font(12.5, QFont::Medium));
        p->setPen(t.text);
        p->drawText(box, Qt::AlignRight | Qt::AlignVCenter, index.data().toString());
    } else if (const FD *fd = m_model->fieldAt(index.column())) {
        const bool focused = option.state & QStyle::State_HasFocus;
        if (fd->type.kind == FT::boolean) {
            const bool on = m_model->stored(index) == u"1"_s;
            const QRectF track(box.left(), box.center().y() - ui.s(10), ui.s(36), ui.s(20));
            p->setPen(focused ? QPen(t.accent, ui.s(1.5)) : Qt::NoPen);
            p->setBrush(on ? t.accent : t.deep);
            p->drawRoundedRect(track, track.height() / 2, track.height() / 2);
            const qreal knob = track.height() - ui.s(4);
            p->setPen(Qt::NoPen);
            p->setBrush(Qt::white);
            p->drawEllipse(QRectF(on ? track.right() - ui.s(2) - knob : track.left() + ui.s(2),
                                  track.top() + ui.s(2), knob, knob));
        } else {
            const QString error = index.data(LinesModel::ErrorRole).toString();
            paintWell(p, box, !error.isEmpty(), focused);
            QRect text = box.adjusted(pad, 0, -pad, 0);
            if (isChoice(*fd)) {
                const int size = ui.px(10);
                p->drawPixmap(QRect(text.right() - size, box.center().y() - size / 2, size, size),
                              Icons::pixmap(u"chevron.up.chevron.down"_s, t.dim, size));
                text.setRight(text.right() - size - ui.px(4));
            }
            QString shown = index.data().toString();
            QColor colour = t.text;
            if (shown.isEmpty()) {
                shown = index.data(LinesModel::PlaceholderRole).toString();
                colour = t.dim;
                colour.setAlphaF(0.7);
            }
            p->setPen(colour);
            const auto align = index.data(Qt::TextAlignmentRole).value<Qt::Alignment>();
            p->drawText(text, int(align), p->fontMetrics().elidedText(shown, Qt::ElideRight, text.width()));
        }
    }
    p->restore();
}

QWidget *LinesDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                     const QModelIndex &index) const
{
    const FD *fd = m_model->fieldAt(index.column());
    if (!fd || fd->type.kind == FT::boolean)
        return nullptr;
    if (isNumeric(*fd))
        return new LineNumberBox(m_model, index, parent);
    const TextBinding value =
        TextBinding::of(recBinding(m_model->db(), index.data(LinesModel::IdRole).toString(), fd->key));
    if (isChoice(*fd)) {
        auto *choice = new ThemedChoice(value, m_model->options(index.column()), parent);
        // A pick is stored by the choice itself; the cell then goes back to being painted.
        auto *self = const_cast<LinesDelegate *>(this);
        connect(choice, &QComboBox::activated, self, [self, choice] {
            Q_EMIT self->commitData(choice);
            Q_EMIT self->closeEditor(choice);
        });
        if (m_openChoices)
            QMetaObject::invokeMethod(choice, &QComboBox::showPopup, Qt::QueuedConnection);
        return choice;
    }
    return new ThemedTextField(value, placeholderOf(*fd), false, parent);
}

void LinesDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    // Only as the editor opens: a refresh while the user types leaves the caret alone.
    if (editor->hasFocus())
        return;
    if (auto *box = qobject_cast<QLineEdit *>(editor)) {
        const QString shown =
            qobject_cast<ThemedTextField *>(editor) ? m_model->stored(index) : m_model->display(index);
        if (box->text() != shown)
            box->setText(shown);
    } else if (auto *choice = qobject_cast<ThemedChoice *>(editor)) {
        choice->refresh();
    }
}

void LinesDelegate::setModelData(QWidget *, QAbstractItemModel *, const QModelIndex &) const
{
    // Every editor of the grid has written as the user worked; closing it stores nothing more.
}

void LinesDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                         const QModelIndex &) const
{
    editor->setGeometry(option.rect.left(), option.rect.top(), option.rect.width() - gap(), boxHeight());
}

void LinesDelegate::act(const QModelIndex &index)
{
    const FD *fd = m_model->fieldAt(index.column());
    if (index.column() == m_model->removeColumn())
        m_model->removeLine(index.row());
    else if (fd && fd->type.kind == FT::boolean)
        m_model->write(index, m_model->stored(index) == u"1"_s ? u"0"_s : u"1"_s);
}

bool LinesDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    // The keyboard's way to the remove button and a switch: Space on the cell.
    const FD *fd = m_model->fieldAt(index.column());
    const bool action = index.column() == m_model->removeColumn() || (fd && fd->type.kind == FT::boolean);
    if (action && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space) {
        act(index);
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

qint64 lineAmountOf(const Rec &line, const QList<FD> &fields)
{
    auto holds = [&](QStringView key) {
        return std::any_of(fields.begin(), fields.end(), [&](const FD &fd) { return fd.key == key; });
    };
    const double qty = holds(u"qtyPer") ? line.d(u"qtyPer") : line.d(u"qty");
    const qint64 unit = holds(u"unitPrice") ? line.i(u"unitPrice") : line.i(u"unitCost");
    return Calc::lineAmount({qty, unit});
}
