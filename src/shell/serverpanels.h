#pragma once
#include "moduleextraspanels.h"

#include "store/server/syncitems.h"

class FWChromeButton;
class QLabel;
class ServerSync;

// A record's history on the company server: who changed which field when,
// from what to what, as the seat's role may see it; one person's run of saves
// of one field (typing) shows as one change. Read when opened, and
// again when the record changes while it is open.
class HistoryPanel : public RecordPanel
{
    Q_OBJECT
public:
    HistoryPanel(DB &db, ServerSync &sync, const QString &recordId, QWidget *parent = nullptr);
    // The lines shown, one text each.
    QStringList lines() const { return m_lines; }
    FWChromeButton *toggle() const { return m_toggle; }
    // One history line in words: "Nov 25, 10:42 AM  Jen Okafor  Title: A → B".
    static QString describe(const DB &db, const ServerSync &sync, const QString &recordId,
                            const HistoryLine &line);

protected:
    void present(const Rec &rec) override;

private:
    void showHistory(const QString &recId, const QList<HistoryLine> &lines, const QString &error);
    ServerSync &m_sync;
    FWChromeButton *m_toggle;
    QLabel *m_text;
    bool m_open = false;
    double m_seen = -1; // the record's `updated` when last read
    QStringList m_lines;
};

// A team member's login on the company server, for an owner: make one with a
// password, set a new password, shut it out or let it back in.
class LoginPanel : public RecordPanel
{
    Q_OBJECT
public:
    LoginPanel(DB &db, ServerSync &sync, const QString &memberId, QWidget *parent = nullptr);
    QString status() const;
    // The same steps the buttons take, with their answers given (for scripts and tests).
    void create(const QString &login, const QString &password);
    void resetPassword(const QString &password);
    void setDisabled(bool disabled);

protected:
    void present(const Rec &rec) override;

private:
    void showLogins(const QList<LoginInfo> &logins, const QString &error);
    ServerSync &m_sync;
    QLabel *m_status;
    FWChromeButton *m_create;
    FWChromeButton *m_reset;
    FWChromeButton *m_disable;
    std::optional<LoginInfo> m_login;
    QString m_problem;
};

// The company server's parts of a record editor, or nothing on a folder that
// works on its own records.
QWidget *makeServerPanels(DB &db, const QString &recordId, QWidget *parent);
