#include "serverpanels.h"

#include "serverbar.h"

#include "look/buttons.h"
#include "store/db.h"
#include "store/server/serverlink.h"
#include "store/server/serversync.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>

using namespace Qt::StringLiterals;

HistoryPanel::HistoryPanel(DB &db, ServerSync &sync, const QString &recordId, QWidget *parent)
    : RecordPanel(db, recordId, parent)
    , m_sync(sync)
    , m_toggle(new FWChromeButton(u"Show History"_s, {}, this))
    , m_text(new QLabel(this))
{
    setObjectName(u"historyPanel"_s);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setAccessibleName(u"History"_s);
    m_text->hide();
    styleLabel(m_text, 11.5);
    column()->addWidget(m_toggle, 0, Qt::AlignLeft);
    column()->addWidget(m_text);
    connect(m_toggle, &QAbstractButton::clicked, this, [this] {
        m_open = !m_open;
        m_toggle->setText(m_open ? u"Hide History"_s : u"Show History"_s);
        m_text->setVisible(m_open);
        m_seen = -1;
        refresh();
    });
    connect(&m_sync, &ServerSync::historyReady, this, &HistoryPanel::showHistory);
    refresh();
}

void HistoryPanel::present(const Rec &rec)
{
    // Read when opened, and again only when the record itself changed.
    if (!m_open || rec.updated == m_seen)
        return;
    m_seen = rec.updated;
    m_text->setText(u"Reading the history…"_s);
    m_sync.requestHistory(m_id);
}

QString HistoryPanel::describe(const DB &db, const ServerSync &sync, const QString &recordId,
                               const HistoryLine &l)
{
    const auto [label, before] = ServerBar::fieldValue(db, recordId, l.field, l.oldValue);
    const QString after = ServerBar::fieldValue(db, recordId, l.field, l.newValue).second;
    return l.at.toLocalTime().toString(u"MMM d, yyyy h:mm AP"_s) + u"  "_s + sync.person(l.login) + u"  "_s +
           label + u": "_s + before + u" → "_s + after;
}

void HistoryPanel::showHistory(const QString &recId, const QList<HistoryLine> &lines, const QString &error)
{
    if (recId != m_id)
        return;
    m_lines.clear();
    if (!error.isEmpty()) {
        m_text->setText(u"The history could not be read: "_s + error.toHtmlEscaped());
        return;
    }
    // Every keystroke is saved, so one person typing into one field leaves a run
    // of lines; the panel shows each run as one change, from its first value to its last.
    QList<HistoryLine> runs;
    for (const HistoryLine &l : lines) {
        if (!runs.isEmpty()) {
            HistoryLine &last = runs.last();
            if (last.login == l.login && last.field == l.field && last.newValue == l.oldValue &&
                last.at.secsTo(l.at) <= 120) {
                last.newValue = l.newValue;
                last.at = l.at;
                continue;
            }
        }
        runs.append(l);
    }
    // Newest first: the change the reader is after is usually the last one.
    for (auto it = runs.crbegin(); it != runs.crend(); ++it)
        if (it->oldValue != it->newValue)
            m_lines.append(describe(m_db, m_sync, m_id, *it));
    m_text->setText(m_lines.isEmpty() ? u"No changes are recorded yet."_s : m_lines.join(u'\n'));
}

LoginPanel::LoginPanel(DB &db, ServerSync &sync, const QString &memberId, QWidget *parent)
    : RecordPanel(db, memberId, parent)
    , m_sync(sync)
    , m_status(new QLabel(this))
    , m_create(new FWChromeButton(u"Create Login…"_s, u"person.crop.circle.badge.plus"_s, this))
    , m_reset(new FWChromeButton(u"Reset Password…"_s, {}, this))
    , m_disable(new FWChromeButton(u"Disable Login"_s, {}, this))
{
    setObjectName(u"loginPanel"_s);
    m_status->setWordWrap(true);
    styleLabel(m_status, 12);
    auto *row = new QHBoxLayout;
    row->addWidget(m_create);
    row->addWidget(m_reset);
    row->addWidget(m_disable);
    row->addStretch(1);
    column()->addWidget(m_status);
    column()->addLayout(row);
    connect(m_create, &QAbstractButton::clicked, this, [this] {
        bool ok = false;
        const QString login = QInputDialog::getText(
            this, u"Create Login"_s, u"Login name (lower-case letters, digits, '.', '-', '_'):"_s,
            QLineEdit::Normal, QString(), &ok);
        if (!ok || login.isEmpty())
            return;
        const QString password = QInputDialog::getText(
            this, u"Create Login"_s, u"Password for "_s + login + u':', QLineEdit::Password, QString(), &ok);
        if (ok)
            create(login, password);
    });
    connect(m_reset, &QAbstractButton::clicked, this, [this] {
        bool ok = false;
        const QString password = QInputDialog::getText(this, u"Reset Password"_s, u"New password:"_s,
                                                       QLineEdit::Password, QString(), &ok);
        if (ok)
            resetPassword(password);
    });
    connect(m_disable, &QAbstractButton::clicked, this,
            [this] { setDisabled(!(m_login && m_login->disabled)); });
    connect(&m_sync, &ServerSync::loginsReady, this, &LoginPanel::showLogins);
    connect(&m_sync, &ServerSync::loginManaged, this, [this](const QString &, const QString &error) {
        m_problem = error;
        m_sync.requestLogins();
    });
    m_sync.requestLogins();
    refresh();
}

QString LoginPanel::status() const
{
    return m_status->text();
}

void LoginPanel::present(const Rec &)
{}

void LoginPanel::create(const QString &login, const QString &password)
{
    if (password.isEmpty()) {
        m_problem = u"A login needs a password."_s;
        showLogins({}, QString());
        return;
    }
    m_sync.manageLogin(u"create"_s, login.trimmed(), m_id, password);
}

void LoginPanel::resetPassword(const QString &password)
{
    if (m_login && !password.isEmpty())
        m_sync.manageLogin(u"password"_s, m_login->login, m_id, password);
}

void LoginPanel::setDisabled(bool disabled)
{
    if (m_login)
        m_sync.manageLogin(disabled ? u"disable"_s : u"enable"_s, m_login->login, m_id);
}

void LoginPanel::showLogins(const QList<LoginInfo> &logins, const QString &error)
{
    if (!error.isEmpty()) {
        m_status->setText(u"Logins cannot be read: "_s + error);
        for (FWChromeButton *b : {m_create, m_reset, m_disable})
            b->setEnabled(false);
        return;
    }
    if (!logins.isEmpty() || m_problem.isEmpty()) {
        m_login.reset();
        for (const LoginInfo &l : logins)
            if (l.member == m_id)
                m_login = l;
    }
    QString text = m_login ? u"Company server login: "_s + m_login->login +
                                 (m_login->disabled ? u" (disabled)"_s : u" (can sign in)"_s)
                           : u"No company server login yet."_s;
    if (!m_problem.isEmpty())
        text += u"\n"_s + (m_problem.at(0).toUpper() + m_problem.mid(1)) + u'.';
    m_status->setText(text);
    m_create->setVisible(!m_login);
    m_create->setEnabled(true);
    m_reset->setVisible(m_login.has_value());
    m_reset->setEnabled(true);
    m_disable->setVisible(m_login.has_value());
    m_disable->setEnabled(true);
    m_disable->setText(m_login && m_login->disabled ? u"Enable Login"_s : u"Disable Login"_s);
}

namespace {
// The server's panels of one editor, refreshed together.
class ServerPanels : public QWidget, public Refreshable
{
public:
    explicit ServerPanels(QWidget *parent)
        : QWidget(parent)
        , m_box(new QVBoxLayout(this))
    {
        m_box->setContentsMargins(0, 0, 0, 0);
    }
    void add(RecordPanel *panel)
    {
        m_panels.append(panel);
        m_box->addWidget(panel);
    }
    void refresh() override
    {
        for (RecordPanel *p : std::as_const(m_panels))
            p->refresh();
    }

private:
    QVBoxLayout *m_box;
    QList<RecordPanel *> m_panels;
};
} // namespace

QWidget *makeServerPanels(DB &db, const QString &recordId, QWidget *parent)
{
    ServerSync *sync = ServerLink::sync();
    const Rec *rec = db.find(recordId);
    if (!sync || !rec)
        return nullptr;
    auto *box = new ServerPanels(parent);
    if (rec->kind == u"user" && db.role() == u"Owner")
        box->add(new LoginPanel(db, *sync, recordId, box));
    box->add(new HistoryPanel(db, *sync, recordId, box));
    return box;
}
