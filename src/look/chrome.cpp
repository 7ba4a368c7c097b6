#include "chrome.h"

#include "fwui.h"
#include "tones.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

using namespace Qt::StringLiterals;

namespace Chrome {

QLinearGradient metal(const QRectF &rect, bool pressed)
{
    // The stops come from the tones, which keep the finish's text readable over all of them.
    const FWTones &tones = FWTones::current();
    QLinearGradient g(rect.topLeft(), rect.bottomLeft());
    g.setColorAt(0, tones.metalStops[pressed ? 2 : 0]);
    g.setColorAt(0.55, tones.metalStops[1]);
    g.setColorAt(1, tones.metalStops[pressed ? 0 : 2]);
    return g;
}

void followLook(QWidget *w)
{
    QObject::connect(&FWUI::shared(), &FWUI::changed, w, [w] {
        w->updateGeometry();
        w->update();
    });
}

} // namespace Chrome

FWPanel::FWPanel(QWidget *parent)
    : QFrame(parent)
{
    Chrome::followLook(this);
}

void FWPanel::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, t.raised);
    g.setColorAt(1, t.panel);
    p.setBrush(g);
    QColor edge = t.metalMid;
    edge.setAlphaF(0.35);
    p.setPen(QPen(edge, 1));
    p.drawRoundedRect(r, ui.s(12), ui.s(12));
}

FWWell::FWWell(QWidget *parent)
    : QFrame(parent)
{
    Chrome::followLook(this);
}

void FWWell::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setBrush(t.well);
    p.setPen(QPen(t.deep, 1));
    p.drawRoundedRect(r, ui.s(8), ui.s(8));
    // A faint light edge below makes the well read as sunken.
    QColor lip = t.metalHi;
    lip.setAlphaF(0.12);
    p.setPen(QPen(lip, 1));
    p.drawLine(QPointF(r.left() + ui.s(8), r.bottom()), QPointF(r.right() - ui.s(8), r.bottom()));
}

FWCaption::FWCaption(const QString &text, QWidget *parent)
    : QLabel(text.toUpper(), parent)
{
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &FWCaption::restyle);
}

void FWCaption::restyle()
{
    const FWUI &ui = FWUI::shared();
    QFont f = ui.font(10, QFont::DemiBold);
    f.setLetterSpacing(QFont::AbsoluteSpacing, ui.s(0.8));
    setFont(f);
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, ui.theme().dim);
    setPalette(pal);
}
