#include "filewrites.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>

using namespace Qt::StringLiterals;

FileWrites::FileWrites(QObject *parent)
    : QObject(parent)
    , m_timer(new QTimer(this))
{
    // The same pace as the store's own retries.
    m_timer->setInterval(2000);
    connect(m_timer, &QTimer::timeout, this, &FileWrites::retry);
}

FileWrites &FileWrites::shared()
{
    static FileWrites writes;
    return writes;
}

void FileWrites::failed(const QString &path, const QString &cause, std::function<bool()> write,
                        std::function<bool(const QString &to)> copy)
{
    if (!m_writes.contains(path))
        m_order.append(path);
    m_writes.insert(path, {cause, std::move(write), std::move(copy)});
    m_timer->start();
    Q_EMIT changed();
}

void FileWrites::written(const QString &path)
{
    if (!m_writes.remove(path))
        return;
    m_order.removeOne(path);
    if (m_order.isEmpty())
        m_timer->stop();
    Q_EMIT changed();
}

QString FileWrites::cause() const
{
    return m_order.isEmpty() ? QString() : m_writes.value(m_order.first()).cause;
}

bool FileWrites::retry()
{
    if (m_order.isEmpty())
        return true;
    bool any = false;
    // A write may come back here (its owner reporting it written); work on a copy.
    const QStringList order = m_order;
    for (const QString &path : order) {
        const auto it = m_writes.constFind(path);
        if (it == m_writes.constEnd())
            continue;
        const std::function<bool()> write = it->write;
        if (write()) {
            m_writes.remove(path);
            m_order.removeOne(path);
            any = true;
        }
    }
    if (m_order.isEmpty())
        m_timer->stop();
    if (any)
        Q_EMIT changed();
    return m_order.isEmpty();
}

QString FileWrites::copyPath(const QString &file, const QString &path)
{
    const QFileInfo beside(file);
    return beside.dir().filePath(beside.completeBaseName() + u" - "_s + QFileInfo(path).fileName());
}

bool FileWrites::saveCopiesBeside(const QString &file, QString *error)
{
    bool any = false;
    bool ok = true;
    const QStringList order = m_order;
    for (const QString &path : order) {
        const QString to = copyPath(file, path);
        if (!m_writes.value(path).copy(to)) {
            if (error)
                *error = u"could not write "_s + QDir::toNativeSeparators(to);
            ok = false;
            break;
        }
        m_writes.remove(path);
        m_order.removeOne(path);
        any = true;
    }
    if (m_order.isEmpty())
        m_timer->stop();
    if (any)
        Q_EMIT changed();
    return ok;
}
