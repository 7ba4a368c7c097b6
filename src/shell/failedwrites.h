#pragma once
#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <functional>

class QTimer;

// Writes outside the store that failed (a plan sheet's own file): kept here
// with the way to make them again, shown by the save banner beside the
// store's waiting changes, and tried again until they succeed.
class FailedWrites : public QObject
{
    Q_OBJECT
public:
    static FailedWrites &shared();
    // Keeps the write under `key` (in place of an earlier one of the same key);
    // `cause` says in plain words why it failed.
    void keep(const QString &key, const QString &cause, std::function<bool()> retry);
    // Forgets the write under `key`: it was made some other way.
    void drop(const QString &key);
    qsizetype count() const { return m_order.size(); }
    QString cause() const { return m_cause; }
    // Tries every kept write, oldest first; true when none is left.
    bool retryAll();

Q_SIGNALS:
    void changed();

private:
    FailedWrites();
    QStringList m_order;
    QHash<QString, std::function<bool()>> m_retry;
    QString m_cause;
    QTimer *m_timer;
};
