#pragma once
#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <functional>

class QTimer;

// Files kept outside the store (a plan sheet with its marks) whose last write
// failed. Each is held with a way to write it again, tried oldest first on a
// short timer and on demand, until it goes through; the save banner counts
// them with the store's own unsaved changes.
class FileWrites : public QObject
{
    Q_OBJECT
public:
    explicit FileWrites(QObject *parent = nullptr);
    static FileWrites &shared();

    // The write of `path` failed for `cause` (plain words); `write` tries it
    // again and `copy` writes the file elsewhere, each saying whether it went
    // through. Replaces an earlier one for `path`.
    void failed(const QString &path, const QString &cause, std::function<bool()> write,
                std::function<bool(const QString &to)> copy);
    // `path` was written by its owner: nothing waits for it any more.
    void written(const QString &path);
    bool isWaiting(const QString &path) const { return m_writes.contains(path); }
    qsizetype count() const { return m_order.size(); }
    // Why the oldest waiting file could not be written; empty when none waits.
    QString cause() const;
    // Writes every waiting file now; true when none waits any more.
    bool retry();
    // Writes every waiting file beside `file` instead, named after it and the
    // file's own name ("rescue - A-101.pdf"), and stops waiting for it; false with
    // the reason in `error` for the first that cannot be written.
    bool saveCopiesBeside(const QString &file, QString *error = nullptr);
    // Where saveCopiesBeside puts the copy of `path`.
    static QString copyPath(const QString &file, const QString &path);

Q_SIGNALS:
    // The number of waiting files or their cause changed.
    void changed();

private:
    struct Write
    {
        QString cause;
        std::function<bool()> write;
        std::function<bool(const QString &)> copy;
    };
    QHash<QString, Write> m_writes;
    QStringList m_order;
    QTimer *m_timer;
};
