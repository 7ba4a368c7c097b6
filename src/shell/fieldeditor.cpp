#include "fieldeditors.h"

#include "numberfield.h"

#include "calc/fieldinput.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/segment.h"

#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

// --- FieldEditor ---

FieldEditor::FieldEditor(DB &db, const FD &fd, const TextBinding &value, const QString &project, bool compact,
                         QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_fd(fd)
    , m_value(value)
    , m_project(project)
{
    auto *box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    switch (fd.type.kind) {
    case FT::choice:
    case FT::ref:
    case FT::refIn: {
        auto *c = new ThemedChoice(value, FieldInput::options(db, fd, project), this);
        m_control = c;
        m_refreshable = c;
        break;
    }
    case FT::text:
    case FT::time: {
        auto *t = new ThemedTextField(value, compact && fd.type.kind == FT::text ? fd.label : QString(),
                                      false, this);
        t->setCheck([fd](const QString &typed, QString *stored) {
            const FieldInput::Typed read = FieldInput::limited(fd, {typed, {}});
            *stored = read.stored;
            return std::pair{read.ok(), read.error};
        });
        connect(t, &ThemedTextField::refused, this, &FieldEditor::showRefusal);
        connect(t, &QLineEdit::textEdited, this, [this] { showRefusal({}); });
        m_control = t;
        m_refreshable = t;
        break;
    }
    case FT::longText: {
        auto *t = new ThemedLongText(value, 70, this);
        m_control = t;
        m_refreshable = t;
        break;
    }
    case FT::money:
    case FT::number:
    case FT::percent: {
        const bool money = fd.type.kind == FT::money;
        auto *n = new NumberField(value, money, money ? u"0.00"_s : u"0"_s, this);
        n->setLimit([fd](const FieldInput::Typed &read) { return FieldInput::limited(fd, read); });
        m_control = n;
        m_refreshable = n;
        break;
    }
    case FT::date: {
        auto *d = new ThemedDate(value, this);
        m_control = d;
        m_refreshable = d;
        break;
    }
    case FT::boolean: {
        m_switch = new FWSwitch(this);
        m_switch->setChecked(value.get() == u"1");
        connect(m_switch, &QAbstractButton::clicked, this,
                [this](bool on) { m_value.set(on ? u"1"_s : u"0"_s); });
        m_control = m_switch;
        break;
    }
    }
    box->addWidget(m_control, m_switch ? 0 : 1);
    if (m_switch)
        box->addStretch(1);
    setLabel(fd.label);
}

void FieldEditor::showRefusal(const QString &message)
{
    if (message.isEmpty() && !m_refusal)
        return;
    if (!m_refusal) {
        // Under the box, wrapping, in the error colour: the message is never cut.
        m_refusal = new QLabel(this);
        m_refusal->setWordWrap(true);
        m_refusal->setObjectName(u"refusal"_s);
        QPalette p = m_refusal->palette();
        p.setColor(QPalette::WindowText, QColor(0xFF, 0x3B, 0x30));
        m_refusal->setPalette(p);
        m_refusal->setFont(FWUI::shared().font(10.5));
        auto *col = new QVBoxLayout;
        col->setContentsMargins(0, 0, 0, 0);
        col->setSpacing(3);
        auto *box = static_cast<QBoxLayout *>(layout());
        box->removeWidget(m_control);
        col->addWidget(m_control);
        col->addWidget(m_refusal);
        box->insertLayout(0, col, 1);
    }
    m_refusal->setText(message);
    m_refusal->setVisible(!message.isEmpty());
    FieldLook::apply(m_control, !message.isEmpty());
}

void FieldEditor::setLabel(const QString &label)
{
    // The label is a widget of its own beside the control, so the control is
    // named after it here, once for every kind of field.
    setAccessibleName(label);
    if (auto *date = qobject_cast<ThemedDate *>(m_control))
        date->setLabel(label);
    else if (auto *number = qobject_cast<NumberField *>(m_control)) {
        number->setAccessibleName(label);
        number->box()->setAccessibleName(label);
    } else {
        m_control->setAccessibleName(label);
    }
    // A long text's page is an area of its own to a reader.
    if (auto *area = qobject_cast<QAbstractScrollArea *>(m_control))
        area->viewport()->setAccessibleName(label);
}

void FieldEditor::setProject(const QString &project)
{
    m_project = project;
}

void FieldEditor::refresh()
{
    if (m_switch) {
        const bool on = m_value.get() == u"1";
        if (m_switch->isChecked() != on) {
            QSignalBlocker block(m_switch);
            m_switch->setChecked(on);
        }
        return;
    }
    const FT::Case k = m_fd.type.kind;
    if (k == FT::ref || k == FT::refIn) {
        static_cast<ThemedChoice *>(m_control)->setOptions(FieldInput::options(m_db, m_fd, m_project));
        return;
    }
    if (m_refreshable)
        m_refreshable->refresh();
}
