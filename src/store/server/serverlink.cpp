#include "serverlink.h"

#include "serversync.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>

#include <termios.h>
#include <unistd.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace ServerLink {

namespace {
ServerSync *shared = nullptr;
bool headlessRun = false;
QString startPassword;
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

bool prepareCache(const QString &serverId, QString *error)
{
    const QString path = cachePath();
    if (!QFileInfo::exists(path))
        return true;
    QString known;
    qsizetype waiting = 0;
    {
        DB cache(path);
        if (!cache.isOpen()) {
            *error = cache.openProblem();
            return false;
        }
        SeatCache seat(cache);
        known = seat.meta(u"server_id"_s);
        waiting = seat.waiting();
    }
    if (known.isEmpty() || known == serverId)
        return true;
    if (waiting > 0) {
        *error = u"this folder's copy of another company server holds "_s + QString::number(waiting) +
                 u" changes not yet sent; connect to that server again to send them first"_s;
        return false;
    }
    const QString folder = QFileInfo(path).absolutePath();
    const QString aside =
        folder + u" (before "_s + QDateTime::currentDateTime().toString(u"yyyy-MM-dd HHmmss"_s) + u')';
    if (!QDir().rename(folder, aside)) {
        *error = u"could not move the copy of the other server aside to "_s + aside;
        return false;
    }
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
    shared->setHeadless(headlessRun);
    shared->start(startPassword);
    if (!headlessRun)
        return;
    shared->waitCaughtUp(kVerbWaitMs);
    if (shared->state() == ServerSync::State::Offline && loginRefused(shared->problem())) {
        const QString password = askPassword(u"Password for the company server: "_s);
        if (!password.isEmpty()) {
            shared->setPassword(password);
            shared->waitCaughtUp(kVerbWaitMs);
        }
    }
}

void setPassword(const QString &password)
{
    startPassword = password;
}

QString askPassword(const QString &prompt)
{
    if (!isatty(STDIN_FILENO))
        return QString();
    std::fputs(prompt.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
    termios old{};
    const bool tty = tcgetattr(STDIN_FILENO, &old) == 0;
    if (tty) {
        termios quiet = old;
        quiet.c_lflag &= ~tcflag_t(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    char line[1024] = {};
    const bool read = std::fgets(line, sizeof line, stdin) != nullptr;
    if (tty)
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &old);
    std::fputs("\n", stderr);
    QString out = read ? QString::fromLocal8Bit(line) : QString();
    while (out.endsWith(u'\n') || out.endsWith(u'\r'))
        out.chop(1);
    return out;
}

bool loginRefused(const QString &problem)
{
    return problem.contains(u"refused the login"_s) || problem.contains(u"signed out"_s);
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
