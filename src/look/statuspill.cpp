#include "statuspill.h"

#include "chrome.h"
#include "fwui.h"
#include "tones.h"

#include "calc/datefmt.h"

#include <QtGui/QAccessible>
#include <QtGui/QPainter>

using namespace Qt::StringLiterals;

StatusPill::StatusPill(const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
{
    Chrome::followLook(this);
}

void StatusPill::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    // The word is the pill's name to a reader.
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
    updateGeometry();
    update();
}

StatusPill::Tone StatusPill::tone(const QString &text)
{
    static const QStringList green = {u"approved"_s,         u"paid"_s,     u"closed"_s,  u"complete"_s,
                                      u"received"_s,         u"signed"_s,   u"awarded"_s, u"won"_s,
                                      u"accepted"_s,         u"answered"_s, u"ok"_s,      u"turned over"_s,
                                      u"approved as noted"_s};
    static const QStringList red = {u"rejected"_s,  u"void"_s,    u"lost"_s,
                                    u"declined"_s,  u"expired"_s, u"revise & resubmit"_s,
                                    u"cancelled"_s, u"incident"_s};
    static const QStringList orange = {u"pending"_s, u"draft"_s, u"open"_s,     u"expiring"_s,
                                       u"needed"_s,  u"sent"_s,  u"submitted"_s};
    const QString lower = text.toLower();
    if (green.contains(lower))
        return Green;
    if (red.contains(lower))
        return Red;
    if (orange.contains(lower))
        return Orange;
    return Neutral;
}

QString StatusPill::shown(const QString &text)
{
    // Only the first letter is raised: "turned over" shows as "Turned over".
    return capitalizedIfLower(text);
}

QSize StatusPill::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(10, QFont::Black));
    return {fm.horizontalAdvance(shown(m_text)) + ui.px(16), ui.px(18)};
}

void StatusPill::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTones &tones = FWTones::current();
    const int which = int(tone(m_text));
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QSize hint = sizeHint();
    const QRectF r(0.5, (height() - hint.height()) / 2.0 + 0.5, std::min(width(), hint.width()) - 1.0,
                   hint.height() - 1.0);
    p.setBrush(tones.pillFill[which]);
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
    p.setPen(tones.pillText[which]);
    p.setFont(ui.font(10, QFont::Black));
    p.drawText(r, Qt::AlignCenter, shown(m_text));
}
