#include "buttons.h"

#include "chrome.h"
#include "fwui.h"
#include "icons.h"
#include "tones.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>

FWChromeButton::FWChromeButton(const QString &text, const QString &symbol, QWidget *parent)
    : QAbstractButton(parent)
    , m_symbol(symbol)
{
    setText(text);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    Chrome::followLook(this);
}

bool FWChromeButton::event(QEvent *e)
{
    // A button of a symbol alone says what its tooltip says, unless named otherwise.
    if (e->type() == QEvent::ToolTipChange && text().isEmpty() &&
        (accessibleName().isEmpty() || accessibleName() == property("tipName").toString())) {
        setAccessibleName(toolTip());
        setProperty("tipName", toolTip());
    }
    return QAbstractButton::event(e);
}

void FWChromeButton::setSymbol(const QString &symbol)
{
    m_symbol = symbol;
    updateGeometry();
    update();
}

void FWChromeButton::setProminent(bool prominent)
{
    m_prominent = prominent;
    update();
}

void FWChromeButton::setCompact(bool compact)
{
    m_compact = compact;
    updateGeometry();
    update();
}

QSize FWChromeButton::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(12.5, QFont::DemiBold));
    const bool showText = !(m_compact && !m_symbol.isEmpty()) && !text().isEmpty();
    int w = ui.px(m_compact ? 8 : 12) * 2;
    if (!m_symbol.isEmpty())
        w += ui.px(14) + (showText ? ui.px(6) : 0);
    if (showText)
        w += fm.horizontalAdvance(text());
    return {w, ui.px(m_compact ? 24 : 30)};
}

void FWChromeButton::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool down = isDown() || isChecked();
    const FWTones &tones = FWTones::current();
    if (m_prominent) {
        QLinearGradient g(r.topLeft(), r.bottomLeft());
        g.setColorAt(0, tones.prominentStops[down ? 1 : 0]);
        g.setColorAt(1, tones.prominentStops[down ? 0 : 1]);
        p.setBrush(g);
    } else {
        p.setBrush(Chrome::metal(r, down));
    }
    // The edge sets the button off from what surrounds it; the focus ring is drawn around it.
    p.setPen(QPen(m_hover ? tones.focus : tones.edge, 1));
    const qreal radius = r.height() / 2;
    p.drawRoundedRect(r, radius, radius);

    // Dark ink on the bright accent, the finish's text on metal.
    const QColor ink = m_prominent ? tones.onAccent : (isEnabled() ? t.text : t.dim);
    const bool showText = !(m_compact && !m_symbol.isEmpty()) && !text().isEmpty();
    const QFont f = ui.font(12.5, QFont::DemiBold);
    const int icon = m_symbol.isEmpty() ? 0 : ui.px(14);
    const int gap = icon && showText ? ui.px(6) : 0;
    const int textW = showText ? QFontMetrics(f).horizontalAdvance(text()) : 0;
    int x = (width() - icon - gap - textW) / 2;
    if (icon) {
        p.drawPixmap(x, (height() - icon) / 2, Icons::pixmap(m_symbol, ink, icon));
        x += icon + gap;
    }
    if (showText) {
        p.setFont(f);
        p.setPen(ink);
        p.drawText(QRect(x, 0, textW + 1, height()), Qt::AlignVCenter | Qt::AlignLeft, text());
    }
}

void FWChromeButton::enterEvent(QEnterEvent *e)
{
    m_hover = true;
    update();
    QAbstractButton::enterEvent(e);
}

void FWChromeButton::leaveEvent(QEvent *e)
{
    m_hover = false;
    update();
    QAbstractButton::leaveEvent(e);
}

FWOrbButton::FWOrbButton(const QString &symbol, const QString &tip, QWidget *parent)
    : QAbstractButton(parent)
    , m_symbol(symbol)
{
    setToolTip(tip);
    setAccessibleName(tip);
    setCursor(Qt::PointingHandCursor);
    Chrome::followLook(this);
}

void FWOrbButton::setDiameter(qreal points)
{
    m_diameter = points;
    updateGeometry();
}

QSize FWOrbButton::sizeHint() const
{
    const int d = FWUI::shared().px(m_diameter);
    return {d, d};
}

void FWOrbButton::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal d = std::min(width(), height()) - 1;
    const QRectF r((width() - d) / 2, (height() - d) / 2, d, d);
    QRadialGradient g(r.center() - QPointF(0, d / 4), d * 0.75);
    g.setColorAt(0, isDown() ? t.metalLo : t.metalMid);
    g.setColorAt(1, isDown() ? t.metalMid : t.metalLo);
    p.setBrush(g);
    QColor edge = t.metalHi;
    edge.setAlphaF(0.45);
    p.setPen(QPen(edge, 1));
    p.drawEllipse(r);
    const int icon = int(d * 0.58);
    p.drawPixmap(QPointF(r.center().x() - icon / 2.0, r.center().y() - icon / 2.0),
                 Icons::pixmap(m_symbol, isEnabled() ? t.text : t.dim, icon));
}
