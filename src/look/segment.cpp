#include "segment.h"

#include "chrome.h"
#include "fwui.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

FWSegment::FWSegment(const QStringList &labels, QWidget *parent)
    : QWidget(parent)
    , m_labels(labels)
{
    setCursor(Qt::PointingHandCursor);
    Chrome::followLook(this);
}

void FWSegment::setCurrent(int index)
{
    if (index < 0 || index >= m_labels.size() || index == m_current)
        return;
    m_current = index;
    update();
}

QSize FWSegment::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(12, QFont::DemiBold));
    int w = 0;
    for (const QString &l : m_labels)
        w = std::max(w, fm.horizontalAdvance(l));
    return {int((w + ui.px(20)) * m_labels.size()) + 2, ui.px(26)};
}

QRectF FWSegment::segmentRect(int i) const
{
    const qreal w = (width() - 2.0) / std::max<qsizetype>(1, m_labels.size());
    return {1 + i * w, 1, w, height() - 2.0};
}

void FWSegment::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setBrush(t.well);
    p.setPen(QPen(t.deep, 1));
    p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
    p.setFont(ui.font(12, QFont::DemiBold));
    for (int i = 0; i < m_labels.size(); ++i) {
        const QRectF s = segmentRect(i).adjusted(1, 1, -1, -1);
        if (i == m_current) {
            p.setBrush(Chrome::metal(s));
            QColor edge = t.accent;
            edge.setAlphaF(0.7);
            p.setPen(QPen(edge, 1));
            p.drawRoundedRect(s, s.height() / 2, s.height() / 2);
        }
        p.setPen(i == m_current ? t.text : t.dim);
        p.drawText(s, Qt::AlignCenter, m_labels.at(i));
    }
}

void FWSegment::mousePressEvent(QMouseEvent *e)
{
    for (int i = 0; i < m_labels.size(); ++i)
        if (segmentRect(i).contains(e->position())) {
            choose(i);
            return;
        }
}

void FWSegment::choose(int index)
{
    if (index < 0 || index >= m_labels.size() || index == m_current)
        return;
    m_current = index;
    update();
    Q_EMIT currentChanged(index);
}

FWSwitch::FWSwitch(QWidget *parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    Chrome::followLook(this);
}

QSize FWSwitch::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(38), ui.px(22)};
}

void FWSwitch::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal rad = track.height() / 2;
    p.setBrush(isChecked() ? t.accent : t.well);
    p.setPen(QPen(t.deep, 1));
    p.drawRoundedRect(track, rad, rad);
    const qreal d = track.height() - 4;
    const QRectF knob(isChecked() ? track.right() - d - 2 : track.left() + 2, track.top() + 2, d, d);
    p.setBrush(Chrome::metal(knob));
    QColor edge = t.metalHi;
    edge.setAlphaF(0.6);
    p.setPen(QPen(edge, 1));
    p.drawEllipse(knob);
}
