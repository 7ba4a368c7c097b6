#include "fieldeditors.h"

#include "numberfield.h"

#include "calc/fieldinput.h"
#include "look/buttons.h"
#include "look/segment.h"

#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDateEdit>

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
