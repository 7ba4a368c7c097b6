#include "kpitile.h"

#include "look/fwui.h"
#include "look/icons.h"

#include <QtGui/QAccessible>
#include <QtGui/QPainter>

#include <algorithm>

KPITile::KPITile(const QString &title, const QString &symbol, QWidget *parent)
    : QWidget(parent)
    , m_title(title)
    , m_symbol(symbol)
{
    setAccessibleName(title);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void KPITile::setValue(const QString &value)
{
    if (value == m_value)
        return;
    m_value = value;
    setAccessibleDescription(value);
    // A reader on the tile hears the new figure, which is part of its name.
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
    update();
}

void KPITile::setNote(const QString &note)
{
    if (note == m_note)
        return;
    m_note = note;
    updateGeometry();
    update();
}

void KPITile::setWarn(bool warn)
{
    if (warn == m_warn)
        return;
    m_warn = warn;
    update();
}

QSize KPITile::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(190), ui.px(84)};
}

QSize KPITile::minimumSizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(130), ui.px(84)};
}

void KPITile::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setBrush(t.panel);
    p.setPen(QPen(m_warn ? t.accent2 : t.deep, 1));
    p.drawRoundedRect(box, ui.s(10), ui.s(10));

    const qreal pad = ui.s(12);
    const int icon = ui.px(14);
    const QColor tint = m_warn ? t.accent2 : t.accent;
    p.drawPixmap(QPointF(pad, pad), Icons::pixmap(m_symbol, tint, icon));

    QRectF line(pad + icon + ui.s(6), pad - ui.s(2), width() - 2 * pad - icon - ui.s(6), ui.s(18));
    p.setPen(t.dim);
    p.setFont(ui.font(11, QFont::DemiBold));
    p.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
               p.fontMetrics().elidedText(m_title.toUpper(), Qt::ElideRight, int(line.width())));

    // The value shrinks to fit a narrow tile rather than being cut.
    const QRectF valueBox(pad, pad + ui.s(20), width() - 2 * pad, ui.s(28));
    qreal points = 20;
    QFont vf = ui.font(points, QFont::Bold);
    while (points > 11 && QFontMetricsF(vf).horizontalAdvance(m_value) > valueBox.width()) {
        points -= 1;
        vf = ui.font(points, QFont::Bold);
    }
    p.setFont(vf);
    p.setPen(m_warn ? t.accent2 : t.text);
    p.drawText(valueBox, Qt::AlignLeft | Qt::AlignVCenter, m_value);

    if (!m_note.isEmpty()) {
        const QRectF noteBox(pad, pad + ui.s(50), width() - 2 * pad, ui.s(16));
        p.setFont(ui.font(10.5));
        p.setPen(t.dim);
        p.drawText(noteBox, Qt::AlignLeft | Qt::AlignVCenter,
                   p.fontMetrics().elidedText(m_note, Qt::ElideRight, int(noteBox.width())));
    }
}

GlowBar::GlowBar(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void GlowBar::setFraction(double fraction)
{
    if (fraction == m_fraction)
        return;
    m_fraction = fraction;
    QAccessibleValueChangeEvent changed(this, fraction * 100);
    QAccessible::updateAccessibility(&changed);
    update();
}

QSize GlowBar::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(80), ui.px(8)};
}

void GlowBar::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal h = std::min<qreal>(height(), ui.s(8));
    const QRectF track(0, (height() - h) / 2, width(), h);
    p.setPen(Qt::NoPen);
    p.setBrush(t.well);
    p.drawRoundedRect(track, h / 2, h / 2);
    const double f = std::clamp(m_fraction, 0.0, 1.0);
    if (f <= 0)
        return;
    const QColor fill = m_fraction > 1.0 ? QColor(0xE0, 0x4B, 0x4B) : t.accent;
    QRectF bar = track;
    bar.setWidth(std::max(h, track.width() * f));
    QColor glow = fill;
    glow.setAlphaF(0.35);
    p.setBrush(glow);
    p.drawRoundedRect(bar.adjusted(-1, -1, 1, 1), h / 2 + 1, h / 2 + 1);
    p.setBrush(fill);
    p.drawRoundedRect(bar, h / 2, h / 2);
}
