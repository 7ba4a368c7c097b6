#pragma once
#include "pg.h"
#include "syncitems.h"

#include <QtCore/QHash>
#include <QtCore/QObject>

class QSocketNotifier;
class QTimer;

// The seat's side of the wire. Lives on a thread of its own, so connecting,
// reconnecting and waiting for the server never hold up the window; it only
// talks to the server and reports, and never touches the store.
class SyncWorker : public QObject
{
    Q_OBJECT
public:
    SyncWorker(const QString &conninfo, const QString &password);
    ~SyncWorker() override;

    // Rows read at most per fetch, so a first open comes over in pieces.
    static constexpr int kPage = 5000;

public Q_SLOTS:
    // Connects now, and again after every loss until stopped.
    void start();
    // Reads the changes past `pos` and the notices past `noticeId`.
    void fetch(qint64 pos, qint64 noticeId);
    // Writes the changes, each over the version it names.
    void send(const QList<OutItem> &items);
    // Reads the bytes of a stored file from the server.
    void download(const QString &company, const QString &name, const QString &sha);
    // Sends a stored file's bytes and names them for the company.
    void upload(const QString &company, const QString &name, const QString &path);
    // Reads the history of a record, as this login may see it.
    void history(const QString &recId);
    // Reads the logins of the company (an owner's request).
    void logins();
    // Makes, changes or shuts a login ("create", "password", "disable", "enable").
    void manageLogin(const QString &action, const QString &login, const QString &member,
                     const QString &password);
    // Closes the connection for good.
    void stop();

Q_SIGNALS:
    void online(const QString &login, const QString &serverId, const QString &member, const QString &role,
                const QHash<QString, QString> &members);
    void offline(const QString &reason);
    // Rows in position order; `more` when the page was full.
    // `role` is the role the server gives the login at this moment.
    void fetched(const QList<ServerRow> &rows, qint64 newPos, bool more, const QList<ServerNotice> &notices,
                 const QList<ServerFile> &files, const QString &role);
    void sent(const QList<SendResult> &results);
    // The server said something changed.
    void woken();
    // A file's bytes, or a null array when the server could not give them.
    void downloaded(const QString &company, const QString &name, const QString &sha, const QByteArray &data);
    void uploaded(const QString &company, const QString &name, const QString &sha, bool ok);
    void historyRead(const QString &recId, const QList<HistoryLine> &lines, const QString &error);
    void loginsRead(const QList<LoginInfo> &logins, const QString &error);
    void loginManaged(const QString &login, const QString &error);

private:
    bool connectNow();
    void lost(const QString &reason);
    void onSocket();
    SendResult sendOne(const OutItem &item, QString *error);
    bool alive();

    QString m_conninfo;
    QString m_password;
    Pg::Conn m_conn;
    QSocketNotifier *m_notifier = nullptr;
    QTimer *m_retry = nullptr;
    bool m_stopped = false;
    int m_backoff = 500;
};

// Reads the row columns (rec, version, pos, deleted, changed_by, changed_at) from `col`.
ServerRow serverRow(const Pg::Result &r, int row, int col);
