#pragma once
#include <QtWidgets/QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

// File ▸ Connect to Company Server…: where the server is, which database,
// the person's login and password, and the company's certificate file. The
// connection is tried off the window's thread; on success the folder is
// marked connected and Trestle starts again on the server's data.
class ConnectDialog : public QDialog
{
    Q_OBJECT
public:
    explicit ConnectDialog(QWidget *parent = nullptr);
    // Fills the boxes from a connection string (all but the login and password).
    void prefill(const QString &conninfo);
    // The connection string the boxes make (no password in it).
    QString conninfo() const;
    // The message under the boxes, empty while all is well.
    QString problem() const;
    // Quotes a value for a connection string.
    static QString quoted(const QString &value);

    QLineEdit *host() const { return m_host; }
    QLineEdit *database() const { return m_database; }
    QLineEdit *login() const { return m_login; }
    QLineEdit *password() const { return m_password; }
    QPushButton *connectButton() const { return m_connect; }

Q_SIGNALS:
    // The folder now works on the server; the window should start again.
    void connected();

private:
    void tryConnect();
    void finished(bool ok, const QString &serverId, const QString &error);
    QLineEdit *m_host;
    QSpinBox *m_port;
    QLineEdit *m_database;
    QLineEdit *m_login;
    QLineEdit *m_password;
    QLineEdit *m_caFile;
    QCheckBox *m_keep;
    QLabel *m_problem;
    QPushButton *m_connect;
};

namespace ServerActions {
// Shows the dialog; on success starts Trestle again on the server.
void connectToServer(QWidget *parent);
// Asks, then returns the folder to its own records and starts Trestle again.
void disconnectFromServer(QWidget *parent);
// Starts this program again once this process has ended and left the data folder.
void restartLater();
// Signs in to the same server as another person, then starts again.
void signInAs(QWidget *parent);
// Leaves the server: forgets the kept password and stops working online until a password is given again.
void signOut();
} // namespace ServerActions
