#include "focusring.h"

#include "fwui.h"
#include "tones.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

namespace {

bool wantsRing(const QWidget *w)
{
    // A window, a menu, the menu bar or a popup list draws its own current item; a ring would cover it.
    return w && !w->isWindow() && !qobject_cast<const QMenu *>(w) && !qobject_cast<const QMenuBar *>(w) &&
           w->window()->windowType() != Qt::Popup;
}

// Round ends for the pill and orb buttons of the chrome, gentle corners for everything else.
bool pillShaped(const QWidget *w)
{
    return w->inherits("FWChromeButton") || w->inherits("FWOrbButton");
}

} // namespace

FocusRing::FocusRing(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    hide();
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        place();
        update();
    });
}

void FocusRing::install()
{
    static QPointer<FocusRing> ring;
    QObject::connect(qApp, &QApplication::focusChanged, qApp, [](QWidget *, QWidget *now) {
        if (!ring)
            ring = new FocusRing;
        ring->follow(wantsRing(now) ? now : nullptr);
    });
}

int FocusRing::width()
{
    return std::max(2, FWUI::shared().px(2));
}

void FocusRing::unwatch()
{
    for (const QPointer<QWidget> &w : std::as_const(m_watched))
        if (w)
            w->removeEventFilter(this);
    m_watched.clear();
}

void FocusRing::follow(QWidget *w)
{
    unwatch();
    m_target = w;
    if (!w) {
        hide();
        return;
    }
    // A child of the window, so it goes with the window.
    if (parentWidget() != w->window())
        setParent(w->window());
    // The widget and every parent: a move or resize of any of them moves the ring.
    for (QWidget *a = w; a && a != w->window(); a = a->parentWidget()) {
        a->installEventFilter(this);
        m_watched.append(a);
    }
    w->window()->installEventFilter(this);
    m_watched.append(w->window());
    place();
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::LayoutRequest: place(); break;
    default: break;
    }
    return QWidget::eventFilter(watched, event);
}

void FocusRing::place()
{
    QWidget *w = m_target;
    QWidget *top = parentWidget();
    if (!w || !top || !w->isVisible()) {
        hide();
        return;
    }
    const int margin = width() + 1;
    const QRect around =
        QRect(w->mapTo(top, QPoint(0, 0)), w->size()).adjusted(-margin, -margin, margin, margin);
    // What a scrolling area shows of the widget is all the ring may show too.
    QRect visible = top->rect();
    for (QWidget *a = w->parentWidget(); a && a != top; a = a->parentWidget())
        if (auto *area = qobject_cast<QAbstractScrollArea *>(a))
            visible &= QRect(area->mapTo(top, QPoint(0, 0)), area->size());
    const QRect shown = around & visible;
    if (shown.isEmpty()) {
        hide();
        return;
    }
    setGeometry(around);
    setMask(QRegion(shown.translated(-around.topLeft())));
    raise();
    show();
    update();
}

void FocusRing::paintEvent(QPaintEvent *)
{
    if (!m_target)
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal w = width();
    p.setPen(QPen(FWTones::current().focus, w));
    p.setBrush(Qt::NoBrush);
    const QRectF r = QRectF(rect()).adjusted(w / 2, w / 2, -w / 2, -w / 2);
    const qreal radius =
        pillShaped(m_target) ? r.height() / 2 : std::min(FWUI::shared().s(9) + w, r.height() / 2);
    p.drawRoundedRect(r, radius, radius);
}
