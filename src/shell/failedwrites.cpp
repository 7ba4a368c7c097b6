#include "failedwrites.h"

#include <QtCore/QTimer>

FailedWrites &FailedWrites::shared()
{
    static FailedWrites instance;
    return instance;
}

FailedWrites::FailedWrites()
    : m_timer(new QTimer(this))
{
    // As the store does with its own: a full disk or a locked file may clear by itself.
    m_timer->setInterval(30000);
    connect(m_timer, &QTimer::timeout, this, [this] { retryAll(); });
}

void FailedWrites::keep(const QString &key, const QString &cause, std::function<bool()> retry)
{
    if (!m_order.contains(key))
        m_order.append(key);
    m_retry.insert(key, std::move(retry));
    m_cause = cause;
    m_timer->start();
    Q_EMIT changed();
}

void FailedWrites::drop(const QString &key)
{
    if (!m_order.removeOne(key))
        return;
    m_retry.remove(key);
    if (m_order.isEmpty()) {
        m_cause.clear();
        m_timer->stop();
    }
    Q_EMIT changed();
}

bool FailedWrites::retryAll()
{
    const QStringList keys = m_order;
    for (const QString &key : keys)
        if (m_retry.value(key) && m_retry.value(key)())
            drop(key);
    return m_order.isEmpty();
}
