#include "notice.h"

#include "look/fwui.h"
#include "look/icons.h"
#include "look/tones.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

Notice::Notice(const QString &text, Tone tone, const QString &symbol, QWidget *parent)
    : QFrame(parent)
    , m_tone(tone)
    , m_symbol(symbol)
    , m_icon(new QLabel(this))
    , m_text(new QLabel(text, this))
{
    auto *row = new QHBoxLayout(this);
    row->addWidget(m_icon, 0, Qt::AlignTop);
    row->addWidget(m_text, 1);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &Notice::restyle);
}

QColor Notice::red()
{
    return FWTones::current().error;
}

QColor Notice::orange()
{
    return FWTones::current().warning;
}

void Notice::setText(const QString &text)
{
    if (m_text->text() != text)
        m_text->setText(text);
}

QString Notice::text() const
{
    return m_text->text();
}

QColor Notice::color() const
{
    return m_tone == Tone::Error ? red() : orange();
}

void Notice::setTone(Tone tone)
{
    if (tone == m_tone)
        return;
    m_tone = tone;
    restyle();
}

void Notice::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setContentsMargins(ui.px(12), ui.px(9), ui.px(12), ui.px(9));
    layout()->setSpacing(ui.px(9));
    m_icon->setPixmap(Icons::pixmap(m_symbol, color(), ui.px(16)));
    m_text->setFont(ui.font(12, QFont::Medium));
    QPalette p = m_text->palette();
    p.setColor(QPalette::WindowText, ui.theme().text);
    m_text->setPalette(p);
    update();
}

void Notice::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor fill = color();
    fill.setAlphaF(0.14);
    QColor edge = color();
    edge.setAlphaF(0.45);
    p.setBrush(fill);
    p.setPen(QPen(edge, 1));
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), ui.s(9), ui.s(9));
}
