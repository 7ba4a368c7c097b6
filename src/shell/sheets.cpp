#include "sheets.h"

#include "nav.h"

#include "calc/datefmt.h"
#include "calc/fieldinput.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtGui/QShortcut>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace {

// The common frame of a sheet: heading, optional text, a form, and the two buttons.
QFormLayout *frame(QDialog *d, const QString &heading, const QString &text, const QString &confirm,
                   const std::function<void()> &onConfirm)
{
    const FWUI &ui = FWUI::shared();
    d->setWindowTitle(heading);
    d->setWindowModality(Qt::WindowModal);
    auto *box = new QVBoxLayout(d);
    box->setContentsMargins(ui.px(22), ui.px(20), ui.px(22), ui.px(18));
    box->setSpacing(ui.px(12));
    auto *title = new QLabel(heading, d);
    title->setFont(ui.font(18, QFont::Bold));
    box->addWidget(title);
    if (!text.isEmpty()) {
        auto *t = new QLabel(text, d);
        t->setWordWrap(true);
        t->setFont(ui.font(12.5));
        box->addWidget(t);
    }
    auto *form = new QFormLayout;
    form->setSpacing(ui.px(8));
    box->addLayout(form);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *cancel = new FWChromeButton(u"Cancel"_s, {}, d);
    auto *ok = new FWChromeButton(confirm, {}, d);
    ok->setObjectName(u"confirm"_s);
    ok->setProminent(true);
    buttons->addWidget(cancel);
    buttons->addWidget(ok);
    box->addLayout(buttons);
    QObject::connect(cancel, &QAbstractButton::clicked, d, &QDialog::reject);
    QObject::connect(ok, &QAbstractButton::clicked, d, [onConfirm] { onConfirm(); });
    // Enter confirms from any box of the sheet, as with a default button; Esc cancels (QDialog).
    for (const int key : {int(Qt::Key_Return), int(Qt::Key_Enter)}) {
        auto *enter = new QShortcut(QKeySequence(key), d);
        QObject::connect(enter, &QShortcut::activated, ok, &QAbstractButton::click);
    }
    d->setMinimumWidth(ui.px(420));
    return form;
}

QLineEdit *input(QDialog *d, const QString &name, const QString &placeholder)
{
    auto *e = new QLineEdit(d);
    e->setObjectName(name);
    e->setPlaceholderText(placeholder);
    e->setFont(FWUI::shared().font(13));
    return e;
}

// Where a sheet says what it refused: under the form, wrapping, in the error colour.
QLabel *problemRow(QDialog *d, QFormLayout *form)
{
    auto *l = new QLabel(d);
    l->setObjectName(u"problem"_s);
    l->setWordWrap(true);
    l->setFont(FWUI::shared().font(12));
    QPalette p = l->palette();
    p.setColor(QPalette::WindowText, QColor(0xFF, 0x3B, 0x30));
    l->setPalette(p);
    l->hide();
    form->addRow(l);
    return l;
}

void say(QLabel *problem, QLineEdit *where, const QString &text)
{
    problem->setText(text);
    problem->show();
    where->setFocus();
    where->selectAll();
}

} // namespace

NewProjectSheet::NewProjectSheet(DB &db, Nav &nav, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_nav(nav)
    , m_name(input(this, u"name"_s, u"e.g. Monument Ridge Clubhouse"_s))
    , m_type(new QComboBox(this))
    , m_contract(input(this, u"contract"_s, u"$0.00"_s))
{
    m_type->setObjectName(u"type"_s);
    if (const ModuleDef *m = Modules::get(u"projects"))
        if (const FD *fd = m->field(u"type"))
            m_type->addItems(fd->type.options);
    m_type->setCurrentText(u"Commercial"_s);
    QFormLayout *form = frame(this, u"New Project"_s, {}, u"Create Project"_s, [this] { create(); });
    form->addRow(u"Project name"_s, m_name);
    form->addRow(u"Type"_s, m_type);
    form->addRow(u"Original contract"_s, m_contract);
    m_problem = problemRow(this, form);
}

void NewProjectSheet::create()
{
    const QString name = m_name->text();
    const MoneyParse contract =
        m_contract->text().trimmed().isEmpty() ? MoneyParse{} : Money::parseChecked(m_contract->text());
    if (!m_contract->text().trimmed().isEmpty() && !contract.ok()) {
        say(m_problem, m_contract, u"The original contract: "_s + Money::message(*contract.error));
        return;
    }
    Fields f;
    f.insert(u"name"_s, name.isEmpty() ? u"New Project"_s : name);
    f.insert(u"type"_s, m_type->currentText());
    f.insert(u"status"_s, u"Active"_s);
    f.insert(u"retainage"_s, u"10"_s);
    // A count, not a maximum: after a deletion a number may repeat.
    f.insert(u"number"_s, QString::asprintf("%03lld", (long long)m_db.count(u"project"_s) + 1));
    f.insert(u"contract"_s, QString::number(contract.ok() ? contract.cents : 0));
    f.insert(u"start"_s, DateFmt::iso(DateFmt::today()));
    const Rec p = m_db.add(u"project"_s, {}, {}, f);
    m_nav.setProjectID(p.id);
    m_nav.setSelected(u"projects"_s, p.id);
    m_nav.setModule(u"projects"_s);
    accept();
}

NewCompanySheet::NewCompanySheet(DB &db, Nav &nav, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_nav(nav)
    , m_name(input(this, u"name"_s, u"Your company"_s))
    , m_owner(input(this, u"owner"_s, u"Your name"_s))
    , m_state(input(this, u"state"_s, u"Two letters, such as CO"_s))
{
    QFormLayout *form = frame(this, u"New Company"_s,
                              u"Each company keeps its own projects, contacts, team and cost codes."_s,
                              u"Create Company"_s, [this] { create(); });
    form->addRow(u"Company name"_s, m_name);
    form->addRow(u"Your name (owner)"_s, m_owner);
    form->addRow(u"State (2 letters)"_s, m_state);
    m_problem = problemRow(this, form);
}

void NewCompanySheet::create()
{
    const QString name = m_name->text().simplified();
    const QString owner = m_owner->text().simplified();
    const FieldInput::Typed state =
        FieldInput::limited({u"state"_s, u"State"_s, FT::of(FT::text)}, {m_state->text(), {}});
    if (name.isEmpty())
        return say(m_problem, m_name, u"Give the company its name."_s);
    if (owner.isEmpty())
        return say(m_problem, m_owner, u"Give the owner's name: the first user, who can do everything."_s);
    if (!state.ok() || state.stored.isEmpty())
        return say(m_problem, m_state,
                   state.ok() ? u"Give the state the company works in, as its two letters."_s : state.error);
    m_db.createCompany(name, owner, state.stored);
    m_nav.setProjectID({});
    m_nav.setModule(u"hub"_s);
    accept();
}
