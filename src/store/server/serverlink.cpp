#include "serverlink.h"

#include "serversync.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>

using namespace Qt::StringLiterals;

namespace ServerLink {

namespace {
ServerSync *shared = nullptr;
bool headlessRun = false;
// How long a verb waits for the server before it works on the copy it has.
constexpr int kVerbWaitMs = 20000;
} // namespace

QString markerPath()
{
    return QDir(DB::appFolder()).filePath(u"server.json"_s);
}

bool isConnected()
{
    return QFileInfo::exists(markerPath());
}

QString conninfo()
{
    QFile f(markerPath());
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QJsonDocument::fromJson(f.readAll()).object().value(u"conninfo").toString();
}

QString cachePath()
{
    const QString folder = QDir(DB::appFolder()).filePath(u"Server"_s);
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return QDir(folder).filePath(u"trestle.sqlite"_s);
}

bool connect(const QString &info, QString *error)
{
    QSaveFile f(markerPath());
    const QJsonObject o{{u"conninfo"_s, info}};
    if (!f.open(QIODevice::WriteOnly) || f.write(QJsonDocument(o).toJson()) < 0 || !f.commit()) {
        if (error)
            *error = f.errorString();
        return false;
    }
    QFile::setPermissions(markerPath(), QFile::ReadOwner | QFile::WriteOwner);
    return true;
}

bool disconnect(QString *error)
{
    if (!isConnected() || QFile::remove(markerPath()))
        return true;
    if (error)
        *error = u"could not remove "_s + markerPath();
    return false;
}

void attach(DB &db)
{
    if (shared || !db.isOpen())
        return;
    shared = new ServerSync(db, conninfo(), &db);
    shared->start();
    if (headlessRun)
        shared->waitCaughtUp(kVerbWaitMs);
}

ServerSync *sync()
{
    return shared;
}

void setHeadless(bool headless)
{
    headlessRun = headless;
}

} // namespace ServerLink
