#include "focusring.h"

#include "fwui.h"
#include "tones.h"

#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QProxyStyle>

namespace {

// Places the ring just outside the widget, with room for its whole width.
class RingStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        if (metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin)
            return FocusRing::width() + 1;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

bool wantsRing(const QWidget *w)
{
    // A window, a menu or a popup list draws its own current item; a ring would cover it.
    return w && !w->isWindow() && !qobject_cast<const QMenu *>(w) && w->window()->windowType() != Qt::Popup;
}

} // namespace

FocusRing::FocusRing(QWidget *parent)
    : QFocusFrame(parent)
{
    setStyle(new RingStyle);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        QWidget *w = widget();
        setWidget(nullptr);
        setWidget(w);
    });
}

void FocusRing::install()
{
    static QPointer<FocusRing> ring;
    QObject::connect(qApp, &QApplication::focusChanged, qApp, [](QWidget *, QWidget *now) {
        if (!ring)
            ring = new FocusRing;
        ring->setWidget(wantsRing(now) ? now : nullptr);
        if (!wantsRing(now))
            ring->hide();
    });
}

int FocusRing::width()
{
    return std::max(2, FWUI::shared().px(2));
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal w = width();
    p.setPen(QPen(FWTones::current().focus, w));
    p.setBrush(Qt::NoBrush);
    const QRectF r = QRectF(rect()).adjusted(w / 2, w / 2, -w / 2, -w / 2);
    const qreal radius = std::min(FWUI::shared().s(8), r.height() / 2);
    p.drawRoundedRect(r, radius, radius);
}
