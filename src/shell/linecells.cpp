#include "linecells.h"

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

namespace {

const QColor kRed(0xFF, 0x3B, 0x30);
const QColor kRemoveRed(0xe5, 0x48, 0x4d);

bool isChoice(const FD &fd)
{
    return fd.type.kind == FT::choice || fd.type.kind == FT::ref || fd.type.kind == FT::refIn;
}

bool isNumeric(const FD &fd)
{
    return fd.type.kind == FT::money || fd.type.kind == FT::number || fd.type.kind == FT::percent;
}

QString placeholderOf(const FD &fd)
{
    switch (fd.type.kind) {
    case FT::money: return u"0.00"_s;
    case FT::number:
    case FT::percent: return u"0"_s;
    case FT::date: return u"yyyy-mm-dd"_s;
    default: return fd.label;
    }
}

// The box of a number or money cell while it is typed in: the stored value
// follows the typing; a refused amount keeps the last good one and says so.
class LineNumberBox : public QLineEdit
{
public:
    LineNumberBox(LinesModel *model, const QModelIndex &index, QWidget *parent)
        : QLineEdit(parent)
        , m_model(model)
        , m_index(index)
        , m_money(model->fieldAt(index.column())->type.kind == FT::money)
        , m_original(model->stored(index))
    {
        setPlaceholderText(placeholderOf(*model->fieldAt(index.column())));
        setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // textEdited fires for the user's typing only, so showing display() never writes.
        connect(this, &QLineEdit::textEdited, this, &LineNumberBox::typed);
        connect(this, &QLineEdit::returnPressed, this, [this] {
            if (m_money && hasError())
                setText(m_model->display(m_index));
        });
        restyle();
        connect(&FWUI::shared(), &FWUI::changed, this, &LineNumberBox::restyle);
    }

protected:
    void focusInEvent(QFocusEvent *e) override
    {
        if (m_money)
            m_original = m_model->stored(m_index);
        QLineEdit::focusInEvent(e);
    }
    void focusOutEvent(QFocusEvent *e) override
    {
        if (m_money && m_index.isValid()) {
            // With an error the message stays up; the box shows the amount kept.
            if (!hasError())
                m_original = m_model->stored(m_index);
            setText(m_model->display(m_index));
        }
        QLineEdit::focusOutEvent(e);
    }

private:
    bool hasError() const { return !m_model->error(m_index).isEmpty(); }

    void restyle() { FieldLook::apply(this, hasError()); }

    void typed(const QString &text)
    {
        if (!m_index.isValid())
            return;
        const QString stored = m_model->stored(m_index);
        const FieldInput::Typed read = m_money ? FieldInput::money(text) : FieldInput::number(text);
        // A number half typed keeps the last one read, without a message.
        if (!m_money) {
            if (read.ok() && read.stored != stored)
                m_model->write(m_index, read.stored);
            return;
        }
        if (read.ok()) {
            setError({});
            if (read.stored != stored)
                m_model->write(m_index, read.stored);
            return;
        }
        if (stored != m_original)
            m_model->write(m_index, m_original);
        const QString kept =
            m_original.isEmpty() ? u"blank"_s : Money::fmt(RecText::parseInt(m_original).value_or(0), true);
        setError(read.error + u" Kept "_s + kept + u'.');
    }

    void setError(const QString &error)
    {
        if (error == m_model->error(m_index))
            return;
        m_model->setError(m_index, error);
        restyle();
    }

    LinesModel *m_model;
    QPersistentModelIndex m_index;
    bool m_money;
    QString m_original; // the value when the box took focus: what a bad entry keeps
};

// A rounded well like the themed boxes, red-edged on an error.
void paintWell(QPainter *p, const QRectF &r, bool error, bool focused)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    const qreal border = error ? ui.s(1.5) : 1.0;
    const QRectF box = r.adjusted(border / 2, border / 2, -border / 2, -border / 2);
    p->setPen(QPen(error ? kRed : focused ? t.accent : t.deep, border));
    p->setBrush(t.well);
    p->drawRoundedRect(box, ui.px(9), ui.px(9));
}

} // namespace

// --- LinesModel ---

LinesModel::LinesModel(DB &db, const QString &kind, const QString &parentId, const QList<FD> &fields,
                       QObject *parent)
    : QAbstractTableModel(parent)
    , m_db(db)
    , m_kind(kind)
    , m_parent(parentId)
    , m_fields(fields)
    , m_amount(std::any_of(fields.begin(), fields.end(),
                           [](const FD &fd) { return fd.key == u"qty"_s || fd.key == u"qtyPer"_s; }))
{}

const FD *LinesModel::fieldAt(int column) const
{
    return column >= 0 && column < m_fields.size() ? &m_fields.at(column) : nullptr;
}

QStringList LinesModel::lineIds() const
{
    QStringList out;
    out.reserve(m_lines.size());
    for (const Rec &line : m_lines)
        out.append(line.id);
    return out;
}

int LinesModel::rowOf(const QString &id) const
{
    for (int r = 0; r < m_lines.size(); ++r)
        if (m_lines.at(r).id == id)
            return r;
    return -1;
}

const QList<std::pair<QString, QString>> &LinesModel::options(int column) const
{
    static const QList<std::pair<QString, QString>> none;
    const auto it = m_options.constFind(column);
    return it == m_options.cend() ? none : *it;
}

void LinesModel::refresh(const QString &project)
{
    // The options are read once per refresh for the column, not once per cell.
    bool optionsChanged = !m_loaded || project != m_project;
    m_project = project;
    for (int c = 0; c < m_fields.size(); ++c) {
        if (!isChoice(m_fields.at(c)))
            continue;
        auto options = FieldInput::options(m_db, m_fields.at(c), m_project);
        if (!m_loaded || options != m_options.value(c)) {
            QHash<QString, QString> labels;
            for (const auto &[value, label] : options)
                labels.insert(value, label);
            m_labels.insert(c, labels);
            m_options.insert(c, std::move(options));
            optionsChanged = true;
        }
    }
    m_loaded = true;

    const QList<Rec> lines = m_db.list(m_kind, {.parent = m_parent});
    QSet<QString> now;
    for (const Rec &line : lines)
        now.insert(line.id);
    // Lines gone: their rows go, the others stay where they are.
    for (int r = int(m_lines.size()) - 1; r >= 0; --r) {
        if (now.contains(m_lines.at(r).id))
            continue;
        beginRemoveRows({}, r, r);
        m_errors.remove(m_lines.at(r).id);
        m_lines.removeAt(r);
        endRemoveRows();
    }
    // New lines: inserted at their place.
    QSet<QString> had;
    for (const Rec &line : std::as_const(m_lines))
        had.insert(line.id);
    for (int j = 0; j < lines.size(); ++j) {
        if (had.contains(lines.at(j).id))
            continue;
        const int at = std::min(j, int(m_lines.size()));
        beginInsertRows({}, at, at);
        m_lines.insert(at, lines.at(j));
        endInsertRows();
    }
    // A changed sort order moves rows; open editors follow their line.
    bool sameOrder = true;
    for (int r = 0; r < lines.size() && sameOrder; ++r)
        sameOrder = m_lines.at(r).id == lines.at(r).id;
    if (!sameOrder) {
        Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
        QHash<QString, int> newRow;
        for (int r = 0; r < lines.size(); ++r)
            newRow.insert(lines.at(r).id, r);
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        after.reserve(before.size());
        for (const QModelIndex &i : before)
            after.append(index(newRow.value(m_lines.at(i.row()).id), i.column()));
        m_lines = lines;
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
        return;
    }
    // Changed lines repaint their row; a whole-row change leaves an open editor's text alone.
    for (int r = 0; r < lines.size(); ++r) {
        const Rec &line = lines.at(r);
        if (m_lines.at(r).updated == line.updated && m_lines.at(r).f == line.f)
            continue;
        m_lines[r] = line;
        if (!optionsChanged)
            Q_EMIT dataChanged(index(r, 0), index(r, columnCount() - 1));
    }
    if (optionsChanged && !m_lines.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

QString LinesModel::stored(const QModelIndex &index) const
{
    const FD *fd = fieldAt(index.column());
    if (!index.isValid() || !fd)
        return {};
    // The store, not the copy: a write made a moment ago is not refreshed in yet.
    return recBinding(m_db, m_lines.at(index.row()).id, fd->key).get();
}

void LinesModel::write(const QModelIndex &index, const QString &value)
{
    const FD *fd = fieldAt(index.column());
    if (!index.isValid() || !fd)
        return;
    recBinding(m_db, m_lines.at(index.row()).id, fd->key).set(value);
}

QString LinesModel::display(const QModelIndex &index) const
{
    const FD *fd = fieldAt(index.column());
    if (!index.isValid())
        return {};
    const Rec &line = m_lines.at(index.row());
    if (index.column() == amountColumn())
        return Money::fmt(lineAmountOf(line, m_fields));
    if (!fd)
        return {};
    const QString value = line.f.value(fd->key);
    if (isChoice(*fd)) {
        const auto labels = m_labels.constFind(index.column());
        if (labels == m_labels.cend() || !labels->contains(value))
            return u"Choose…"_s;
        const QString label = labels->value(value);
        return label.isEmpty() ? u"—"_s : label;
    }
    if (fd->type.kind == FT::money && !value.isEmpty())
        return Money::fmt(RecText::parseInt(value).value_or(0), false);
    return value;
}

QString LinesModel::error(const QModelIndex &index) const
{
    const FD *fd = fieldAt(index.column());
    if (!index.isValid() || !fd)
        return {};
    return m_errors.value(m_lines.at(index.row()).id).value(fd->key);
}

void LinesModel::setError(const QModelIndex &index, const QString &error)
{
    const FD *fd = fieldAt(index.column());
    if (!index.isValid() || !fd || this->error(index) == error)
        return;
    const QString id = m_lines.at(index.row()).id;
    if (error.isEmpty()) {
        m_errors[id].remove(fd->key);
        if (m_errors[id].isEmpty())
            m_errors.remove(id);
    } else {
        m_errors[id].insert(fd->key, error);
    }
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    Q_EMIT errorsChanged(index.row());
}

QString LinesModel::rowErrors(int row) const
{
    const auto errors = m_errors.constFind(m_lines.at(row).id);
    if (errors == m_errors.cend())
        return {};
    QStringList out;
    for (const FD &fd : m_fields)
        if (const QString e = errors->value(fd.key); !e.isEmpty())
            out << fd.label + u": "_s + e;
    return out.join(u'\n');
}

void LinesModel::removeLine(int row)
{
    if (row >= 0 && row < m_lines.size())
        m_db.remove(m_lines.at(row).id);
}

int LinesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

int LinesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : removeColumn() + 1;
}

QVariant LinesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_lines.size())
        return {};
    switch (role) {
    case Qt::DisplayRole: return display(index);
    case Qt::EditRole: return fieldAt(index.column()) ? QVariant(stored(index)) : QVariant();
    case IdRole: return m_lines.at(index.row()).id;
    case ErrorRole: return error(index);
    case PlaceholderRole:
        if (const FD *fd = fieldAt(index.column()))
            return placeholderOf(*fd);
        return {};
    case Qt::ToolTipRole:
        return index.column() == removeColumn() ? QVariant(u"Remove line"_s) : QVariant(display(index));
    case Qt::AccessibleTextRole:
        // The remove column draws only a symbol; a reader hears which line it takes away.
        if (index.column() == removeColumn())
            return QVariant(u"Remove line "_s + QString::number(index.row() + 1));
        return {};
    case Qt::TextAlignmentRole: {
        const FD *fd = fieldAt(index.column());
        const bool right = index.column() == amountColumn() || (fd && isNumeric(*fd));
        return QVariant::fromValue(Qt::Alignment(right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    default: return {};
    }
}

QVariant LinesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    if (const FD *fd = fieldAt(section))
        return fd->label.toUpper();
    return section == amountColumn() ? QVariant(u"AMOUNT"_s) : QVariant(QString());
}

Qt::ItemFlags LinesModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const FD *fd = fieldAt(index.column());
    if (!fd)
        return Qt::ItemIsEnabled;
    if (fd->type.kind == FT::boolean)
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

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
