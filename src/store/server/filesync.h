#pragma once
#include "syncitems.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QSet>

#include <functional>

class DB;
class SeatCache;
class QTimer;

// Keeps a seat's stored files in step with the company server. The server
// names each file's contents by their SHA-256; a seat fetches a file the first
// time it is asked for (and at once when a newer version of a file it holds
// arrives), and sends a file whose contents changed here.
class FileSync : public QObject
{
    Q_OBJECT
public:
    FileSync(DB &db, SeatCache &cache, QObject *parent = nullptr);

    // What the server says each file now holds.
    void takeServerFiles(const QList<ServerFile> &files);
    // A file was asked for and is not here: fetch it if the server has it.
    void want(const QString &company, const QString &name);
    // Looks for files changed here and sends them.
    void scan();
    // Bytes of a file arrived from the server.
    void takeDownload(const QString &company, const QString &name, const QString &sha,
                      const QByteArray &data);
    // The server took a file sent from here.
    void takeUpload(const QString &company, const QString &name, const QString &sha, bool ok);
    // Whether a fetch or a send of files is under way.
    bool busy() const { return !m_downloading.isEmpty() || !m_uploading.isEmpty(); }
    bool downloading(const QString &company, const QString &name) const;

Q_SIGNALS:
    void download(const QString &company, const QString &name, const QString &sha);
    void upload(const QString &company, const QString &name, const QString &path);
    void arrived();

private:
    QString path(const QString &company, const QString &name) const;
    DB &m_db;
    SeatCache &m_cache;
    QSet<QString> m_downloading; // "company/name"
    QSet<QString> m_uploading;
};
