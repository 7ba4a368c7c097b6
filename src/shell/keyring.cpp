#include "keyring.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace Keyring {

namespace {
const QString kService = u"Trestle company server"_s;

// Runs a keyring job to its end, waiting at most a few seconds for the keyring to answer.
bool finish(QKeychain::Job &job)
{
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&job, &QKeychain::Job::finished, &loop, &QEventLoop::quit);
    job.setAutoDelete(false);
    job.start();
    timeout.start(5000);
    loop.exec();
    return !timeout.isActive() ? false : job.error() == QKeychain::NoError;
}
} // namespace

QString password(const QString &conninfo)
{
    QKeychain::ReadPasswordJob job(kService);
    job.setKey(conninfo);
    return finish(job) ? job.textData() : QString();
}

bool keep(const QString &conninfo, const QString &password, QString *error)
{
    QKeychain::WritePasswordJob job(kService);
    job.setKey(conninfo);
    job.setTextData(password);
    if (finish(job))
        return true;
    if (error)
        *error = job.errorString().isEmpty() ? u"the keyring did not answer"_s : job.errorString();
    return false;
}

void forget(const QString &conninfo)
{
    QKeychain::DeletePasswordJob job(kService);
    job.setKey(conninfo);
    finish(job);
}

} // namespace Keyring
