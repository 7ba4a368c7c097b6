#include "modulerail.h"

#include "nav.h"

#include "catalog/modules.h"
#include "catalog/roles.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/tones.h"
#include "store/db.h"

#include <QtCore/QDateTime>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

RailButton::RailButton(const ModuleDef &m, QWidget *parent)
    : QAbstractButton(parent)
    , m_module(m)
{
    setText(m.title);
    setAccessibleName(m.title);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    Chrome::followLook(this);
}

void RailButton::setOn(bool on)
{
    if (on == m_on)
        return;
    m_on = on;
    update();
}

QSize RailButton::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(13, QFont::Medium));
    return {ui.px(40) + fm.horizontalAdvance(text()), ui.px(30)};
}

void RailButton::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(ui.s(6), 1, -ui.s(6), -1);
    if (m_on) {
        p.setBrush(Chrome::metal(r));
        QColor edge = t.accent;
        edge.setAlphaF(0.6);
        p.setPen(QPen(edge, 1));
        p.drawRoundedRect(r, ui.s(8), ui.s(8));
    } else if (m_hover) {
        QColor wash = t.raised;
        wash.setAlphaF(0.7);
        p.setBrush(wash);
        p.setPen(Qt::NoPen);
        p.drawRoundedRect(r, ui.s(8), ui.s(8));
    }
    const int icon = ui.px(16);
    const FWTones &tones = FWTones::current();
    p.drawPixmap(int(r.left() + ui.s(8)), (height() - icon) / 2,
                 Icons::pixmap(m_module.symbol, m_on ? tones.metalIcon : tones.focus, icon));
    p.setFont(ui.font(13, m_on ? QFont::DemiBold : QFont::Medium));
    p.setPen(m_on ? t.text : tones.railText);
    const QRectF textRect = r.adjusted(ui.s(8) + icon + ui.s(8), 0, -ui.s(4), 0);
    p.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft,
               p.fontMetrics().elidedText(text(), Qt::ElideRight, int(textRect.width())));
}

void RailButton::keyPressEvent(QKeyEvent *e)
{
    switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: click(); return;
    case Qt::Key_Space: QAbstractButton::keyPressEvent(e); return;
    default: Q_EMIT navigationKey(e);
    }
    if (!e->isAccepted())
        QAbstractButton::keyPressEvent(e);
}

void RailButton::focusInEvent(QFocusEvent *e)
{
    QAbstractButton::focusInEvent(e);
    Q_EMIT navigationKey(nullptr);
}

void RailButton::enterEvent(QEnterEvent *e)
{
    m_hover = true;
    update();
    QAbstractButton::enterEvent(e);
}

void RailButton::leaveEvent(QEvent *e)
{
    m_hover = false;
    update();
    QAbstractButton::leaveEvent(e);
}

ModuleRail::ModuleRail(DB &db, Nav &nav, QWidget *parent)
    : QScrollArea(parent)
    , m_db(db)
    , m_nav(nav)
    , m_list(nullptr)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    // The entries take the keyboard, never the scrolling frame around them.
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The rail keeps its zoomed width; a crowded window narrows the record list instead.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    viewport()->setAutoFillBackground(false);
    rebuild();
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        rebuild();
        updateGeometry();
    });
}

QSize ModuleRail::sizeHint() const
{
    return {FWUI::shared().px(214), FWUI::shared().px(400)};
}

void ModuleRail::refresh()
{
    if (m_db.role() != m_role)
        rebuild();
    for (RailButton *b : std::as_const(m_buttons))
        b->setOn(b->module().id == m_nav.module());
    // A screen opened from the menu or a shortcut shows its entry; the user's own scrolling
    // stays as it is while the screen does not change.
    if (m_shown != m_nav.module()) {
        m_shown = m_nav.module();
        if (RailButton *b = button(m_shown)) {
            ensureWidgetVisible(b, 0, FWUI::shared().px(30));
            if (!m_list->isAncestorOf(QApplication::focusWidget()))
                makeTabStop(b);
        }
    }
}

RailButton *ModuleRail::button(const QString &id) const
{
    for (RailButton *b : m_buttons)
        if (b->module().id == id)
            return b;
    return nullptr;
}

void ModuleRail::focusRail()
{
    m_typed.clear();
    RailButton *b = button(m_nav.module());
    if (!b && !m_buttons.isEmpty())
        b = m_buttons.first();
    if (b)
        moveTo(b);
}

void ModuleRail::makeTabStop(RailButton *b)
{
    // Only one entry takes Tab, so the content is a Tab or two away whatever the rail's length.
    for (RailButton *other : std::as_const(m_buttons))
        other->setFocusPolicy(other == b ? Qt::TabFocus : Qt::NoFocus);
}

void ModuleRail::moveTo(RailButton *b)
{
    makeTabStop(b);
    b->setFocus(Qt::OtherFocusReason);
    ensureWidgetVisible(b, 0, FWUI::shared().px(30));
}

void ModuleRail::onKey(RailButton *from, QKeyEvent *e)
{
    if (!e) {
        makeTabStop(from);
        return;
    }
    const qsizetype at = m_buttons.indexOf(from);
    const qsizetype last = m_buttons.size() - 1;
    const qsizetype page = std::max(1, viewport()->height() / std::max(1, from->height()) - 1);
    qsizetype to = -1;
    switch (e->key()) {
    case Qt::Key_Down: to = std::min(last, at + 1); break;
    case Qt::Key_Up: to = std::max<qsizetype>(0, at - 1); break;
    case Qt::Key_Home: to = 0; break;
    case Qt::Key_End: to = last; break;
    case Qt::Key_PageDown: to = std::min(last, at + page); break;
    case Qt::Key_PageUp: to = std::max<qsizetype>(0, at - page); break;
    default: {
        const QString text = e->text();
        if (text.isEmpty() || !text.at(0).isPrint() || (e->modifiers() & ~Qt::ShiftModifier)) {
            e->ignore();
            return;
        }
        // Letters typed within a second make one prefix; a repeated first letter steps on.
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        m_typed = now - m_typedAt > 1000 ? text : m_typed + text;
        m_typedAt = now;
        const bool repeat = m_typed.size() > 1 && m_typed.count(m_typed.front()) == m_typed.size();
        const QString prefix = repeat ? QString(m_typed.front()) : m_typed;
        for (qsizetype i = 1; i <= m_buttons.size() && to < 0; ++i) {
            // A new prefix may match the entry it started from; a repeat looks past it.
            const qsizetype j = (at + i - (m_typed.size() > 1 && !repeat ? 1 : 0)) % m_buttons.size();
            if (m_buttons.at(j)->text().startsWith(prefix, Qt::CaseInsensitive))
                to = j;
        }
        if (to < 0)
            return;
    }
    }
    e->accept();
    if (to >= 0 && to <= last)
        moveTo(m_buttons.at(to));
}

void ModuleRail::rebuild()
{
    const FWUI &ui = FWUI::shared();
    QColor handle = ui.theme().metalMid;
    handle.setAlphaF(0.5);
    // A thin scroll bar of the finish instead of the platform's grey one.
    verticalScrollBar()->setStyleSheet(
        QString(u"QScrollBar:vertical { width: %1px; background: transparent; margin: 0; }"
                u"QScrollBar::handle:vertical { background: %2; border-radius: %3px; min-height: 24px; }"
                u"QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                u"QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"_s)
            .arg(ui.px(6))
            .arg(handle.name(QColor::HexArgb))
            .arg(ui.px(3)));
    m_role = m_db.role();
    m_buttons.clear();
    m_groups.clear();
    m_list = new QWidget;
    m_list->setAutoFillBackground(false);
    auto *box = new QVBoxLayout(m_list);
    box->setContentsMargins(ui.px(4), ui.px(10), ui.px(4), ui.px(10));
    box->setSpacing(ui.px(1));
    for (const QString &group : Modules::groups()) {
        QList<const ModuleDef *> shown;
        for (const ModuleDef &m : Modules::all())
            if (m.group == group && Roles::mayOpen(m_role, m))
                shown.append(&m);
        if (shown.isEmpty())
            continue;
        m_groups.append(group);
        // Spacing and indent, not the caption's contents margins, which a large zoom lost for
        // every group but the first.
        if (m_groups.size() > 1)
            box->addSpacing(ui.px(12));
        auto *caption = new FWCaption(group, m_list);
        caption->setIndent(ui.px(12));
        box->addWidget(caption);
        box->addSpacing(ui.px(4));
        for (const ModuleDef *m : shown) {
            auto *b = new RailButton(*m, m_list);
            b->setOn(m->id == m_nav.module());
            const QString id = m->id;
            connect(b, &QAbstractButton::clicked, this, [this, id] {
                m_typed.clear(); // the next letters start a new search
                m_nav.setModule(id);
            });
            connect(b, &RailButton::navigationKey, this, [this, b](QKeyEvent *e) { onKey(b, e); });
            box->addWidget(b);
            m_buttons.append(b);
        }
    }
    box->addStretch(1);
    setWidget(m_list); // deletes the previous list
    RailButton *stop = button(m_nav.module());
    if (stop || !m_buttons.isEmpty())
        makeTabStop(stop ? stop : m_buttons.first());
}

QStringList ModuleRail::moduleIds() const
{
    QStringList ids;
    for (const RailButton *b : m_buttons)
        ids.append(b->module().id);
    return ids;
}

QStringList ModuleRail::groups() const
{
    return m_groups;
}
