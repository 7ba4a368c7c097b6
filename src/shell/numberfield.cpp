#include "numberfield.h"

#include "calc/fieldinput.h"
#include "calc/money.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/tones.h"
#include "store/rec.h"

#include <QtGui/QFocusEvent>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {
QColor errorRed()
{
    return FWTones::current().error;
}
} // namespace

NumberField::NumberField(const TextBinding &value, bool money, const QString &placeholder, QWidget *parent)
    : QWidget(parent)
    , m_value(value)
    , m_money(money)
    , m_box(new QLineEdit(this))
    , m_errorRow(new QWidget(this))
    , m_errorIcon(new QLabel(m_errorRow))
    , m_errorText(new QLabel(m_errorRow))
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    col->setSpacing(3);
    col->addWidget(m_box);
    col->addWidget(m_errorRow);
    auto *row = new QHBoxLayout(m_errorRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_errorIcon, 0, Qt::AlignTop);
    row->addWidget(m_errorText, 1);
    m_errorText->setWordWrap(true);
    m_errorRow->hide();

    m_box->setPlaceholderText(placeholder);
    m_box->setText(display());
    m_original = m_value.get();
    m_box->installEventFilter(this);
    // textEdited fires for the user's typing only, so the box redrawing itself
    // with display() never reaches the store.
    connect(m_box, &QLineEdit::textEdited, this, &NumberField::edited);
    connect(m_box, &QLineEdit::returnPressed, this, [this] {
        if (m_error)
            m_box->setText(display());
    });
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &NumberField::restyle);
}

QString NumberField::display() const
{
    const QString v = m_value.get();
    if (!m_money || v.isEmpty())
        return v;
    return Money::fmt(RecText::parseInt(v).value_or(0), false);
}

void NumberField::edited(const QString &text)
{
    const QString stored = m_value.get();
    FieldInput::Typed read = m_money ? FieldInput::money(text) : FieldInput::number(text);
    // A number half typed ("1e", "-") keeps the last one read, without a message.
    if (!m_money && !read.ok())
        return;
    if (read.ok() && m_limit)
        read = m_limit(read);
    if (read.ok()) {
        setError(std::nullopt);
        if (read.stored != stored)
            m_value.set(read.stored);
        return;
    }
    if (stored != m_original)
        m_value.set(m_original);
    const QString kept = m_original.isEmpty() ? u"blank"_s
                         : m_money            ? Money::fmt(RecText::parseInt(m_original).value_or(0), true)
                                              : m_original;
    setError(read.error + u" Kept "_s + kept + u'.');
}

bool NumberField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_box && (m_money || m_limit)) {
        if (event->type() == QEvent::FocusIn) {
            m_original = m_value.get();
        } else if (event->type() == QEvent::FocusOut) {
            // With an error the message stays up; the box shows the amount kept.
            if (!m_error)
                m_original = m_value.get();
            m_box->setText(display());
        }
    }
    return QWidget::eventFilter(watched, event);
}

void NumberField::refresh()
{
    if (m_box->hasFocus())
        return;
    const QString shown = display();
    if (m_box->text() != shown)
        m_box->setText(shown);
    if (!m_error)
        m_original = m_value.get();
}

void NumberField::setError(const std::optional<QString> &error)
{
    if (error == m_error)
        return;
    m_error = error;
    m_errorText->setText(error.value_or(QString()));
    m_errorRow->setVisible(error.has_value());
    FieldLook::apply(m_box, error.has_value());
}

void NumberField::restyle()
{
    const FWUI &ui = FWUI::shared();
    FieldLook::apply(m_box, m_error.has_value());
    m_errorIcon->setPixmap(Icons::pixmap(u"exclamationmark.triangle.fill"_s, errorRed(), ui.px(11)));
    m_errorText->setFont(ui.font(10.5));
    m_errorText->setMinimumWidth(ui.px(170));
    QPalette p = m_errorText->palette();
    p.setColor(QPalette::WindowText, errorRed());
    m_errorText->setPalette(p);
}
