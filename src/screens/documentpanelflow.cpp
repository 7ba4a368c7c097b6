#include "documentpanelflow.h"

FlowLayout::FlowLayout(QWidget *parent)
    : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout()
{
    while (QLayoutItem *item = takeAt(0))
        delete item;
}

void FlowLayout::addItem(QLayoutItem *item)
{
    m_items.append(item);
}

int FlowLayout::count() const
{
    return int(m_items.size());
}

QLayoutItem *FlowLayout::itemAt(int i) const
{
    return m_items.value(i);
}

QLayoutItem *FlowLayout::takeAt(int i)
{
    return i >= 0 && i < m_items.size() ? m_items.takeAt(i) : nullptr;
}

Qt::Orientations FlowLayout::expandingDirections() const
{
    return {};
}

bool FlowLayout::hasHeightForWidth() const
{
    return true;
}

int FlowLayout::heightForWidth(int width) const
{
    return place(QRect(0, 0, width, 0), false);
}

void FlowLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    place(rect, true);
}

QSize FlowLayout::sizeHint() const
{
    return minimumSize();
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const QLayoutItem *item : m_items)
        size = size.expandedTo(item->minimumSize());
    return size;
}

int FlowLayout::place(const QRect &rect, bool apply) const
{
    const int gap = spacing() >= 0 ? spacing() : 4;
    int x = rect.x();
    int y = rect.y();
    int rowHeight = 0;
    for (QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize hint = item->sizeHint();
        if (x > rect.x() && x + hint.width() > rect.right() + 1) {
            x = rect.x();
            y += rowHeight + gap;
            rowHeight = 0;
        }
        if (apply)
            item->setGeometry(QRect(QPoint(x, y), hint));
        x += hint.width() + gap;
        rowHeight = qMax(rowHeight, hint.height());
    }
    return y + rowHeight - rect.y();
}
