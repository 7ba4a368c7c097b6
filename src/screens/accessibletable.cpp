#include "accessibletable.h"

#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;

namespace {
quint64 key(int row, int column)
{
    return (quint64(quint32(row + 1)) << 32) | quint32(column);
}
} // namespace

AccessibleTable::AccessibleTable(QWidget *w, std::function<QString()> name, Source source)
    : QAccessibleWidget(w, QAccessible::Table)
    , m_name(std::move(name))
    , m_source(std::move(source))
{}

AccessibleTable::~AccessibleTable()
{
    for (const QAccessible::Id id : std::as_const(m_cells))
        QAccessible::deleteAccessibleInterface(id);
}

QRect AccessibleTable::rowRect(int row) const
{
    // Rows share the widget's height evenly, the headers counting as one.
    const QRect all = rect();
    const int n = rowCount() + 1;
    const int h = std::max(1, all.height() / n);
    return {all.left(), all.top() + (row + 1) * h, all.width(), h};
}

QString AccessibleTable::text(QAccessible::Text t) const
{
    if (!isValid())
        return {};
    if (t == QAccessible::Name) {
        const QString own = widget()->accessibleName();
        return own.isEmpty() ? m_name() : own;
    }
    if (t == QAccessible::Description) {
        const int rows = rowCount();
        return rows == 1 ? u"1 row"_s : QString::number(rows) + u" rows"_s;
    }
    return QAccessibleWidget::text(t);
}

int AccessibleTable::columnCount() const
{
    return int(m_source().columns.size());
}

int AccessibleTable::rowCount() const
{
    return int(m_source().rows.size());
}

int AccessibleTable::childCount() const
{
    return (rowCount() + 1) * columnCount();
}

QAccessibleInterface *AccessibleTable::cell(int row, int column) const
{
    const AccessibleRows now = m_source();
    if (column < 0 || column >= now.columns.size() || row < -1 || row >= now.rows.size())
        return nullptr;
    const quint64 k = key(row, column);
    if (const auto it = m_cells.constFind(k); it != m_cells.constEnd())
        return QAccessible::accessibleInterface(*it);
    auto *made = new AccessibleTableCell(const_cast<AccessibleTable *>(this), row, column);
    m_cells.insert(k, QAccessible::registerAccessibleInterface(made));
    return made;
}

QAccessibleInterface *AccessibleTable::child(int index) const
{
    const int cols = columnCount();
    if (cols == 0 || index < 0)
        return nullptr;
    return cell(index / cols - 1, index % cols);
}

int AccessibleTable::indexOfChild(const QAccessibleInterface *child) const
{
    if (!child || child->parent() != this)
        return -1;
    const auto *c = static_cast<const AccessibleTableCell *>(child);
    return (c->rowIndex() + 1) * columnCount() + c->columnIndex();
}

QAccessibleInterface *AccessibleTable::childAt(int x, int y) const
{
    const int rows = rowCount();
    const int cols = columnCount();
    if (cols == 0)
        return nullptr;
    for (int row = -1; row < rows; ++row) {
        const QRect band = rowRect(row);
        if (band.contains(x, y))
            return cell(row, std::clamp((x - band.left()) * cols / std::max(1, band.width()), 0, cols - 1));
    }
    return nullptr;
}

void *AccessibleTable::interface_cast(QAccessible::InterfaceType t)
{
    if (t == QAccessible::TableInterface)
        return static_cast<QAccessibleTableInterface *>(this);
    return QAccessibleWidget::interface_cast(t);
}

QAccessibleInterface *AccessibleTable::cellAt(int row, int column) const
{
    return row < 0 ? nullptr : cell(row, column);
}

QString AccessibleTable::columnDescription(int column) const
{
    return m_source().columns.value(column);
}

QString AccessibleTable::rowDescription(int row) const
{
    return m_source().rows.value(row).value(0);
}

// --- AccessibleTableCell ---

AccessibleTableCell::AccessibleTableCell(AccessibleTable *table, int row, int column)
    : m_table(table)
    , m_row(row)
    , m_column(column)
{}

bool AccessibleTableCell::isValid() const
{
    return m_table && m_table->isValid() && m_row < m_table->rowCount() && m_column < m_table->columnCount();
}

QWindow *AccessibleTableCell::window() const
{
    return m_table->window();
}

QString AccessibleTableCell::text(QAccessible::Text t) const
{
    const AccessibleRows now = m_table->rowsNow();
    if (t == QAccessible::Name || t == QAccessible::Value) {
        if (m_row < 0)
            return now.columns.value(m_column);
        return now.rows.value(m_row).value(m_column);
    }
    if (t == QAccessible::Description && m_row >= 0)
        return now.columns.value(m_column);
    return {};
}

QRect AccessibleTableCell::rect() const
{
    const QRect band = m_table->rowRect(m_row);
    const int cols = std::max(1, m_table->columnCount());
    const int w = band.width() / cols;
    return {band.left() + m_column * w, band.top(), w, band.height()};
}

QAccessible::Role AccessibleTableCell::role() const
{
    return m_row < 0 ? QAccessible::ColumnHeader : QAccessible::Cell;
}

QAccessible::State AccessibleTableCell::state() const
{
    QAccessible::State s;
    s.readOnly = true;
    s.invisible = m_table->state().invisible;
    return s;
}

void *AccessibleTableCell::interface_cast(QAccessible::InterfaceType t)
{
    if (t == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface *>(this);
    return nullptr;
}

QList<QAccessibleInterface *> AccessibleTableCell::columnHeaderCells() const
{
    if (m_row < 0)
        return {};
    if (QAccessibleInterface *h = m_table->cell(-1, m_column))
        return {h};
    return {};
}
