#pragma once
#include "store/folderlock.h"

#include <QtCore/QObject>

class QLocalServer;

// One window per data folder. The first window holds the folder's lock and
// listens on a local socket; a later start asks it to come to the front
// instead of opening a second window on the same data.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    enum class Claim {
        Mine,          // this process holds the folder now
        Raised,        // a running window was asked to the front and answered
        HeldElsewhere, // another process holds the folder and did not answer
        NoLock         // no lock can be written there (read-only folder); run anyway
    };
    explicit SingleInstance(const QString &dataFolder, QObject *parent = nullptr);
    // Takes the folder or hands over to the window that has it; `message` says
    // what happened in one line for the user.
    Claim claim(QString *message = nullptr);

Q_SIGNALS:
    // A later start asked this window to come to the front.
    void raiseRequested();

private:
    void listen();
    QString m_folder;
    FolderLock::Hold m_hold;
    QLocalServer *m_server = nullptr;
};
