#pragma once
#include "interchange/snapshots.h"

#include <QtWidgets/QDialog>

#include <functional>

class DB;
class QTreeWidget;
class FWChromeButton;

// The File menu's "Restore From Snapshot…": the snapshots beside the data
// folder (date, age, record count), newest first; Restore asks the same
// question as a restore from a backup, then restores and quits.
class SnapshotDialog : public QDialog
{
    Q_OBJECT
public:
    SnapshotDialog(const QString &dataFolder, QWidget *parent = nullptr);
    // The folder of the chosen snapshot; empty when none is chosen.
    QString chosen() const;
    // How many snapshots the list shows.
    int count() const;

    // How long ago `taken` was, as people say it: "today", "3 days ago".
    static QString age(const QDateTime &taken, const QDateTime &now);

private:
    void confirm();
    QString m_dataFolder;
    QList<Snapshots::Info> m_snapshots;
    QTreeWidget *m_list = nullptr;
    FWChromeButton *m_restore = nullptr;
};

namespace SnapshotActions {
// Shows the dialog over `parent` for the store's data folder.
void restore(QWidget *parent, DB &db);
// Asks the restore question for `snapshot`; on yes restores it over
// `dataFolder` and ends the program's loop. True when it was restored.
bool askAndRestore(QWidget *parent, const Snapshots::Info &snapshot, const QString &dataFolder);
// What the window does at start, before anything is written: when a snapshot
// is due, pins the store's present state and copies it on a thread of its
// own, so the first paint does not wait. `done` hears the outcome; without
// one a failure is shown over the active window.
void startOfDay(DB &db, const std::function<void(const Backup::Result &, const QString &)> &done = {});
} // namespace SnapshotActions
