#include "singleinstance.h"

#include <QtCore/QDir>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

using namespace Qt::StringLiterals;

SingleInstance::SingleInstance(const QString &dataFolder, QObject *parent)
    : QObject(parent)
    , m_folder(dataFolder)
{}

SingleInstance::Claim SingleInstance::claim(QString *message)
{
    QString holder, problem;
    if (m_hold.take(m_folder, &holder, &problem)) {
        listen();
        return Claim::Mine;
    }
    if (holder.isEmpty()) {
        if (message)
            *message = problem;
        return Claim::NoLock;
    }
    QLocalSocket socket;
    socket.connectToServer(FolderLock::socketName(m_folder));
    if (socket.waitForConnected(2000)) {
        socket.write("raise\n");
        socket.flush();
        // Only an answer proves that a window took the request.
        while (!socket.canReadLine() && socket.waitForReadyRead(3000)) {
        }
        if (socket.canReadLine() && socket.readLine().trimmed() == "ok") {
            if (message)
                *message = u"Trestle is already open on "_s + QDir::toNativeSeparators(m_folder) +
                           u"; its window was brought to the front."_s;
            return Claim::Raised;
        }
    }
    if (message)
        *message = u"Trestle is already open on "_s + QDir::toNativeSeparators(m_folder) + u" in "_s +
                   holder + u". Switch to that window, or close it before starting Trestle again."_s;
    return Claim::HeldElsewhere;
}

void SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    const QString name = FolderLock::socketName(m_folder);
    // The lock is ours, so a socket of that name is left over from a process that is gone.
    if (!m_server->listen(name)) {
        QLocalServer::removeServer(name);
        m_server->listen(name);
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *peer = m_server->nextPendingConnection()) {
            connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
            connect(peer, &QLocalSocket::readyRead, this, [this, peer] {
                if (!peer->canReadLine())
                    return;
                if (peer->readLine().trimmed() == "raise") {
                    Q_EMIT raiseRequested();
                    peer->write("ok\n");
                    peer->flush();
                }
                peer->disconnectFromServer();
            });
        }
    });
}
