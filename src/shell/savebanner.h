#pragma once
#include <QtWidgets/QWidget>

class DB;
class Notice;
class FWChromeButton;

// A strip across the window, shown only while changes wait to be written (the
// store's records and files such as a marked-up plan sheet):
// why they could not be (in plain words) and how many wait. It goes away by
// itself once the store has written them.
class SaveBanner : public QWidget
{
    Q_OBJECT
public:
    explicit SaveBanner(DB &db, QWidget *parent = nullptr);
    // The banner's words for `count` waiting changes and their cause.
    static QString message(qsizetype count, const QString &cause);
    QString text() const;

private:
    void sync();
    DB &m_db;
    Notice *m_notice;
    FWChromeButton *m_retry;
};
