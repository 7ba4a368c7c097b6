#include "emptystate.h"

#include "look/buttons.h"
#include "look/fwui.h"
#include "look/icons.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

EmptyState::EmptyState(const QString &symbol, const QString &title, const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(title, this))
    , m_text(new QLabel(text, this))
    , m_actions(new QVBoxLayout)
{
    m_title->setObjectName(QStringLiteral("emptyTitle"));
    m_text->setObjectName(QStringLiteral("emptyText"));
    m_text->setWordWrap(true);
    for (QLabel *l : {m_icon, m_title, m_text})
        l->setAlignment(Qt::AlignCenter);
    auto *box = new QVBoxLayout(this);
    box->addStretch(1);
    box->addWidget(m_icon, 0, Qt::AlignHCenter);
    box->addWidget(m_title, 0, Qt::AlignHCenter);
    box->addWidget(m_text, 0, Qt::AlignHCenter);
    box->addLayout(m_actions);
    m_actions->setAlignment(Qt::AlignHCenter);
    box->addStretch(2);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &EmptyState::restyle);
}

void EmptyState::addAction(const QString &title, const std::function<void()> &action, bool prominent)
{
    auto *b = new FWChromeButton(title, {}, this);
    b->setProminent(prominent);
    connect(b, &QAbstractButton::clicked, this, [action] { action(); });
    m_actions->addWidget(b, 0, Qt::AlignHCenter);
}

QString EmptyState::title() const
{
    return m_title->text();
}

QString EmptyState::text() const
{
    return m_text->text();
}

void EmptyState::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    m_icon->setPixmap(Icons::pixmap(m_symbol, t.dim, ui.px(44)));
    m_title->setFont(ui.font(20, QFont::Bold));
    m_text->setFont(ui.font(13));
    m_text->setFixedWidth(ui.px(440));
    QPalette p = palette();
    p.setColor(QPalette::WindowText, t.text);
    m_title->setPalette(p);
    p.setColor(QPalette::WindowText, t.dim);
    m_text->setPalette(p);
    layout()->setSpacing(ui.px(8));
    m_actions->setSpacing(ui.px(6));
}
