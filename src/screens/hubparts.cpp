#include "hubparts.h"

#include "look/fwui.h"
#include "look/icons.h"
#include "shell/fieldeditors.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>

#include <algorithm>

LookLabel::LookLabel(const QString &text, qreal points, QFont::Weight weight, bool dim, QWidget *parent)
    : QLabel(text, parent)
    , m_points(points)
    , m_weight(weight)
    , m_dim(dim)
{
    // Inside a clickable row the inherited role would be the button's text colour.
    setForegroundRole(QPalette::WindowText);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &LookLabel::restyle);
}

void LookLabel::setDim(bool dim)
{
    if (dim == m_dim)
        return;
    m_dim = dim;
    restyle();
}

void LookLabel::restyle()
{
    const FWUI &ui = FWUI::shared();
    setFont(ui.font(m_points, m_weight));
    QPalette p = palette();
    p.setColor(QPalette::WindowText, m_dim ? ui.theme().dim : ui.theme().text);
    setPalette(p);
}

ReflowGrid::ReflowGrid(qreal minWidth, QWidget *parent)
    : QWidget(parent)
    , m_minWidth(minWidth)
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        m_columns = 0;
        relayout(columnsFor(width()));
    });
}

void ReflowGrid::setWidgets(const QList<QWidget *> &widgets)
{
    for (QWidget *w : std::as_const(m_widgets)) {
        m_grid->removeWidget(w);
        w->deleteLater();
    }
    m_widgets = widgets;
    for (QWidget *w : widgets)
        w->setParent(this);
    m_columns = 0;
    relayout(columnsFor(width()));
    for (QWidget *w : widgets)
        w->show();
}

int ReflowGrid::columnsFor(int width) const
{
    const FWUI &ui = FWUI::shared();
    const int spacing = ui.px(12);
    const int cell = ui.px(m_minWidth);
    const int n = std::max(1, int(m_widgets.size()));
    const int fit = std::clamp((width + spacing) / (cell + spacing), 1, n);
    // The rows that many columns need, filled as evenly as they allow: five in
    // rows of four would leave one alone, so they go three and two.
    const int rows = (n + fit - 1) / fit;
    return (n + rows - 1) / rows;
}

void ReflowGrid::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    relayout(columnsFor(width()));
}

void ReflowGrid::relayout(int columns)
{
    const int spacing = FWUI::shared().px(12);
    m_grid->setSpacing(spacing);
    if (columns == m_columns)
        return;
    for (QWidget *w : std::as_const(m_widgets))
        m_grid->removeWidget(w);
    for (int c = 0; c < m_grid->columnCount(); ++c)
        m_grid->setColumnStretch(c, 0);
    for (qsizetype i = 0; i < m_widgets.size(); ++i)
        m_grid->addWidget(m_widgets.at(i), int(i / columns), int(i % columns));
    for (int c = 0; c < columns; ++c)
        m_grid->setColumnStretch(c, 1);
    m_columns = columns;
    updateGeometry();
}

ClickRow::ClickRow(QWidget *parent)
    : QAbstractButton(parent)
{
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
}

QSize ClickRow::sizeHint() const
{
    return layout() ? layout()->sizeHint() : QSize(40, 20);
}

QSize ClickRow::minimumSizeHint() const
{
    return layout() ? layout()->minimumSize() : QSize(0, 0);
}

void ClickRow::paintEvent(QPaintEvent *)
{
    if (!m_hover && !isDown() && !hasFocus())
        return;
    const FWUI &ui = FWUI::shared();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor fill = ui.theme().accent;
    fill.setAlphaF(isDown() ? 0.22 : 0.12);
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), ui.s(8), ui.s(8));
}

void ClickRow::enterEvent(QEnterEvent *event)
{
    m_hover = true;
    update();
    QAbstractButton::enterEvent(event);
}

void ClickRow::leaveEvent(QEvent *event)
{
    m_hover = false;
    update();
    QAbstractButton::leaveEvent(event);
}

namespace HubParts {

QScrollArea *scroller(QWidget *content, QWidget *parent)
{
    auto *area = new QScrollArea(parent);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->viewport()->setAutoFillBackground(false);
    // Tab goes straight to the cards inside; focusing one scrolls it into view.
    area->setFocusPolicy(Qt::NoFocus);
    FieldLook::thinScrollBars(area);
    content->setAutoFillBackground(false);
    area->setWidget(content);
    return area;
}

QWidget *heading(const QString &symbol, LookLabel *title, QWidget *parent)
{
    auto *row = new QWidget(parent);
    auto *box = new QHBoxLayout(row);
    box->setContentsMargins(0, 0, 0, 0);
    auto *icon = new QLabel(row);
    auto paint = [icon, symbol] {
        const FWUI &ui = FWUI::shared();
        icon->setPixmap(Icons::pixmap(symbol, ui.theme().accent, ui.px(16)));
    };
    paint();
    QObject::connect(&FWUI::shared(), &FWUI::changed, icon, paint);
    title->setParent(row);
    box->addWidget(icon);
    box->addWidget(title, 1);
    return row;
}

} // namespace HubParts
