// The WIP schedule table's figures: each job's cell opens its breakdown, by a
// click or by Enter on the cell the arrow keys have reached.
#include "wipscheduleview.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>

using namespace Qt::StringLiterals;

std::optional<FigureRef> WipScheduleTable::figureAt(int row, int column) const
{
    // The figures of the table's columns, in order; the number, the name and % complete open nothing.
    static const QString figures[] = {{},
                                      {},
                                      u"wip.contract"_s,
                                      u"wip.estimatedcost"_s,
                                      u"wip.grossprofit"_s,
                                      u"wip.costtodate"_s,
                                      u"wip.costtocomplete"_s,
                                      {},
                                      u"wip.earned"_s,
                                      u"wip.profittodate"_s,
                                      u"wip.lossprovision"_s,
                                      u"wip.billed"_s,
                                      u"wip.overbilled"_s,
                                      u"wip.underbilled"_s,
                                      u"wip.backlog"_s};
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= int(std::size(figures)))
        return std::nullopt;
    const Row &r = m_rows.at(row);
    if (r.kind != Kind::Job || r.project.isEmpty() || figures[column].isEmpty())
        return std::nullopt;
    return FigureRef{figures[column], r.project, {}};
}

std::pair<int, int> WipScheduleTable::cellAt(const QPoint &pos) const
{
    int y = 0, row = -1;
    for (int i = 0; i < m_rows.size(); ++i) {
        const int height = m_rows.at(i).kind == Kind::Head ? m_headHeight : m_rowHeight;
        if (pos.y() >= y && pos.y() < y + height) {
            row = i;
            break;
        }
        y += height;
    }
    int x = 0;
    for (int c = 0; c < m_widths.size(); ++c) {
        if (pos.x() >= x && pos.x() < x + m_widths.at(c))
            return row < 0 ? std::pair{-1, -1} : std::pair{row, c};
        x += m_widths.at(c);
    }
    return {-1, -1};
}

void WipScheduleTable::mouseReleaseEvent(QMouseEvent *event)
{
    const auto [row, column] = cellAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton)
        if (const std::optional<FigureRef> ref = figureAt(row, column)) {
            m_current = {row, column};
            update();
            Q_EMIT figureOpened(*ref);
            return;
        }
    QWidget::mouseReleaseEvent(event);
}

void WipScheduleTable::keyPressEvent(QKeyEvent *event)
{
    // The keyboard walks the jobs' figures only: the cells that open something.
    auto step = [this](int dr, int dc) {
        auto [row, column] = m_current.first < 0 ? std::pair{0, 1} : m_current;
        for (int guard = 0; guard < 400; ++guard) {
            row += dr;
            column += dc;
            if (row < 0 || row >= m_rows.size() || column < 0 || column >= m_widths.size())
                return;
            if (figureAt(row, column)) {
                m_current = {row, column};
                update();
                return;
            }
        }
    };
    switch (event->key()) {
    case Qt::Key_Left: step(0, -1); return;
    case Qt::Key_Right: step(0, 1); return;
    case Qt::Key_Up: step(-1, 0); return;
    case Qt::Key_Down: step(1, 0); return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (const std::optional<FigureRef> ref = figureAt(m_current.first, m_current.second)) {
            Q_EMIT figureOpened(*ref);
            return;
        }
        break;
    default: break;
    }
    QWidget::keyPressEvent(event);
}
