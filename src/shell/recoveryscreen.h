#pragma once
#include "interchange/snapshots.h"

#include <QtWidgets/QWidget>

class DB;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;

// What the window shows instead of the modules when the data file is damaged
// or cannot be opened: what is wrong, in plain words with the file's path, and
// the ways back. Nothing here writes to the file; a restore keeps it aside.
class RecoveryScreen : public QWidget
{
    Q_OBJECT
public:
    RecoveryScreen(DB &db, QWidget *parent = nullptr);
    // The title and the explanation shown, for the store's state.
    static QString title(const DB &db);
    static QString explanation(const DB &db);
    // One snapshot as the screen lists it: when, how long ago, how many records.
    static QString describe(const Snapshots::Info &info, const QDateTime &now);
    // The snapshots offered, newest first.
    const QList<Snapshots::Info> &snapshots() const { return m_snapshots; }

private:
    void restyle();
    // Asks as a restore from a backup does, then restores and quits.
    // Adds a choice: a button and a line that says what it does.
    void addChoice(const QString &button, const QString &symbol, const QString &detail,
                   const std::function<void()> &action, bool prominent = false);
    DB &m_db;
    QLabel *m_icon;
    QLabel *m_title;
    QLabel *m_text;
    QLabel *m_ways;
    QVBoxLayout *m_choices;
    QHBoxLayout *m_page = nullptr;
    QVBoxLayout *m_column = nullptr;
    QList<QLabel *> m_details;
    QList<Snapshots::Info> m_snapshots;
    QLabel *m_none = nullptr;
};
