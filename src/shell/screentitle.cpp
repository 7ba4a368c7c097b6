#include "screentitle.h"

#include "catalog/moduledef.h"
#include "look/fwui.h"
#include "look/icons.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

ScreenTitle::ScreenTitle(const ModuleDef &m, const QString &subtitle, QWidget *trailing, QWidget *parent)
    : QWidget(parent)
    , m_symbol(m.symbol)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(m.title, this))
    , m_subtitle(new QLabel(subtitle, this))
{
    m_title->setObjectName(QStringLiteral("screenTitle"));
    m_subtitle->setVisible(!subtitle.isEmpty());
    // A long subtitle wraps rather than widen the screen past the window at a large zoom.
    m_subtitle->setWordWrap(true);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_icon);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(m_title);
    texts->addWidget(m_subtitle);
    row->addLayout(texts, 1);
    if (trailing)
        row->addWidget(trailing);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &ScreenTitle::restyle);
}

void ScreenTitle::setSubtitle(const QString &subtitle)
{
    m_subtitle->setText(subtitle);
    m_subtitle->setVisible(!subtitle.isEmpty());
}

QString ScreenTitle::title() const
{
    return m_title->text();
}

void ScreenTitle::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    m_icon->setPixmap(Icons::pixmap(m_symbol, t.accent, ui.px(26)));
    m_title->setFont(ui.font(22, QFont::Bold));
    m_subtitle->setFont(ui.font(12.5));
    QPalette p = palette();
    p.setColor(QPalette::WindowText, t.text);
    m_title->setPalette(p);
    p.setColor(QPalette::WindowText, t.dim);
    m_subtitle->setPalette(p);
    layout()->setSpacing(ui.px(10));
}
