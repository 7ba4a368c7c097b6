#include "connectdialog.h"

#include "keyring.h"

#include "store/server/pg.h"
#include "store/server/serverlink.h"
#include "store/server/serverschema.h"
#include "store/server/serversync.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QProcess>
#include <QtCore/QThread>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include <unistd.h>

using namespace Qt::StringLiterals;

ConnectDialog::ConnectDialog(QWidget *parent)
    : QDialog(parent)
    , m_host(new QLineEdit(this))
    , m_port(new QSpinBox(this))
    , m_database(new QLineEdit(u"trestle"_s, this))
    , m_login(new QLineEdit(this))
    , m_password(new QLineEdit(this))
    , m_caFile(new QLineEdit(this))
    , m_keep(new QCheckBox(u"Keep the password in the keyring"_s, this))
    , m_problem(new QLabel(this))
    , m_connect(new QPushButton(u"Connect"_s, this))
{
    setWindowTitle(u"Connect to Company Server"_s);
    m_port->setRange(1, 65535);
    m_port->setValue(5432);
    m_password->setEchoMode(QLineEdit::Password);
    m_host->setPlaceholderText(u"server.example.com, or a folder for a local socket"_s);
    m_caFile->setPlaceholderText(u"the company's certificate file (ca.crt)"_s);
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(u"color: #b3261e;"_s);
    m_problem->hide();
    auto *browse = new QPushButton(u"Choose…"_s, this);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString file =
            QFileDialog::getOpenFileName(this, u"The Company's Certificate File"_s, QString(),
                                         u"Certificates (*.crt *.pem);;All files (*)"_s);
        if (!file.isEmpty())
            m_caFile->setText(file);
    });
    auto *ca = new QHBoxLayout;
    ca->addWidget(m_caFile, 1);
    ca->addWidget(browse);
    auto *form = new QFormLayout;
    form->addRow(u"Server:"_s, m_host);
    form->addRow(u"Port:"_s, m_port);
    form->addRow(u"Database:"_s, m_database);
    form->addRow(u"Login:"_s, m_login);
    form->addRow(u"Password:"_s, m_password);
    form->addRow(u"Certificate:"_s, ca);
    form->addRow(QString(), m_keep);
    // Each box is named for screen readers by its label.
    for (auto [box, name] : {std::pair{m_host, u"Server"_s},
                             {m_database, u"Database"_s},
                             {m_login, u"Login"_s},
                             {m_password, u"Password"_s},
                             {m_caFile, u"Certificate file"_s}})
        box->setAccessibleName(name);
    m_port->setAccessibleName(u"Port"_s);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_connect, QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    m_connect->setDefault(true);
    connect(m_connect, &QPushButton::clicked, this, &ConnectDialog::tryConnect);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *box = new QVBoxLayout(this);
    box->addWidget(
        new QLabel(u"Work on the company's records together with the rest of the team. The password "
                   u"is never written in Trestle's settings."_s,
                   this));
    box->addLayout(form);
    box->addWidget(m_problem);
    box->addWidget(buttons);
    setMinimumWidth(520);
}

void ConnectDialog::prefill(const QString &conninfo)
{
    m_host->setText(Pg::conninfoValue(conninfo, "host"));
    const int port = Pg::conninfoValue(conninfo, "port").toInt();
    if (port > 0)
        m_port->setValue(port);
    m_database->setText(Pg::conninfoValue(conninfo, "dbname"));
    m_caFile->setText(Pg::conninfoValue(conninfo, "sslrootcert"));
    m_login->setFocus();
}

QString ConnectDialog::quoted(const QString &value)
{
    QString v = value;
    v.replace(u'\\', u"\\\\"_s);
    v.replace(u'\'', u"\\'"_s);
    return u'\'' + v + u'\'';
}

QString ConnectDialog::conninfo() const
{
    QStringList parts;
    if (!m_host->text().trimmed().isEmpty())
        parts << u"host="_s + quoted(m_host->text().trimmed());
    if (m_port->value() != 5432)
        parts << u"port="_s + QString::number(m_port->value());
    parts << u"dbname="_s + quoted(m_database->text().trimmed());
    parts << u"user="_s + quoted(m_login->text().trimmed());
    if (!m_caFile->text().trimmed().isEmpty())
        parts << u"sslrootcert="_s + quoted(m_caFile->text().trimmed());
    return parts.join(u' ');
}

QString ConnectDialog::problem() const
{
    return m_problem->isHidden() ? QString() : m_problem->text();
}

void ConnectDialog::tryConnect()
{
    if (m_database->text().trimmed().isEmpty() || m_login->text().trimmed().isEmpty()) {
        finished(false, QString(), u"Give the database and your login."_s);
        return;
    }
    m_connect->setEnabled(false);
    m_connect->setText(u"Connecting…"_s);
    m_problem->hide();
    const QString info = conninfo();
    const QString pw = m_password->text();
    QPointer<ConnectDialog> self(this);
    // Reaching a server can take seconds; the window keeps drawing meanwhile.
    QThread *probe = QThread::create([self, info, pw] {
        Pg::Conn conn;
        QString error, serverId;
        const bool ok = conn.open(info, pw, &error) && ServerSchema::check(conn, &serverId, &error);
        QMetaObject::invokeMethod(qApp, [self, ok, serverId, error] {
            if (self)
                self->finished(ok, serverId, error);
        });
    });
    connect(probe, &QThread::finished, probe, &QObject::deleteLater);
    probe->start();
}

void ConnectDialog::finished(bool ok, const QString &serverId, const QString &error)
{
    m_connect->setEnabled(true);
    m_connect->setText(u"Connect"_s);
    QString why = error;
    if (ok && !ServerLink::prepareCache(serverId, &why))
        ok = false;
    if (ok && !ServerLink::connect(conninfo(), &why))
        ok = false;
    if (!ok) {
        if (!why.isEmpty())
            why[0] = why[0].toUpper();
        m_problem->setText(why.endsWith(u'.') ? why : why + u'.');
        m_problem->show();
        return;
    }
    if (m_keep->isChecked() && !m_password->text().isEmpty()) {
        QString keyringProblem;
        if (!Keyring::keep(conninfo(), m_password->text(), &keyringProblem))
            QMessageBox::information(this, u"The password was not kept"_s,
                                     u"The keyring could not keep the password ("_s + keyringProblem +
                                         u"). When Trestle has started again, give it with Enter Password… "
                                         u"in the bar under the header, "
                                         u"or keep it in ~/.pgpass."_s);
    }
    Q_EMIT connected();
    accept();
}

namespace ServerActions {

void restartLater()
{
    // The new window may start only once this one has let go of the data folder.
    const QString me = QCoreApplication::applicationFilePath();
    QProcess::startDetached(u"/bin/sh"_s, {u"-c"_s,
                                           u"while kill -0 \"$1\" 2>/dev/null; do sleep 0.2; done; "
                                           u"exec \"$2\""_s,
                                           u"trestle-restart"_s, QString::number(::getpid()), me});
}

void connectToServer(QWidget *parent)
{
    ConnectDialog dialog(parent);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QMessageBox::information(parent, u"Connected"_s,
                             u"Trestle starts again to work on the company server."_s);
    restartLater();
    QApplication::closeAllWindows();
}

void signInAs(QWidget *parent)
{
    ConnectDialog dialog(parent);
    dialog.setWindowTitle(u"Sign In As"_s);
    dialog.prefill(ServerLink::conninfo());
    if (dialog.exec() != QDialog::Accepted)
        return;
    restartLater();
    QApplication::closeAllWindows();
}

void signOut()
{
    if (ServerSync *sync = ServerLink::sync()) {
        Keyring::forget(ServerLink::conninfo());
        sync->signOut();
    }
}

void disconnectFromServer(QWidget *parent)
{
    ServerSync *sync = ServerLink::sync();
    const qsizetype waiting = sync ? sync->waiting() : 0;
    QString text =
        u"This data folder goes back to its own records. The copy of the server's data stays for when "
        u"you connect again."_s;
    if (waiting > 0)
        text += u"\n\n"_s + QString::number(waiting) +
                u" changes have not reached the server yet; they are kept and sent when you connect again."_s;
    if (QMessageBox::question(parent, u"Disconnect from the company server?"_s, text) != QMessageBox::Yes)
        return;
    const QString info = ServerLink::conninfo();
    QString error;
    if (!ServerLink::disconnect(&error)) {
        QMessageBox::warning(parent, u"Not disconnected"_s, error);
        return;
    }
    Keyring::forget(info);
    restartLater();
    QApplication::closeAllWindows();
}

} // namespace ServerActions
