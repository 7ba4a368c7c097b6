#include "linecells.h"

#include "fieldeditors.h"
#include "linekinds.h"

#include "calc/fieldinput.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/tones.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QSet>
#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>

using namespace Qt::StringLiterals;

using namespace LineKinds;

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
