#pragma once
#include "documents/printsource.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QUuid>

#include <optional>

class QWidget;

// What a screen offers to print: its job, whose source is made only when printed.
struct PrintEntry
{
    int level = 0;  // deeper screens have higher levels
    qint64 seq = 0; // order of appearance
    PrintJob job;
};

// Knows what the screens in front can print; the File menu's Print runs the
// entry of the greatest level, and among equal levels the latest to appear.
class PrintCenter : public QObject
{
    Q_OBJECT
public:
    explicit PrintCenter(QObject *parent = nullptr);
    // The application's print centre.
    static PrintCenter &shared();

    // Puts an entry under `id`, numbered after every earlier one.
    void put(const QUuid &id, int level, const PrintJob &job);
    // Takes the entry under `id` out.
    void remove(const QUuid &id);
    // Changes an entry's title, keeping its place.
    void retitle(const QUuid &id, const QString &title);
    // Changes an entry's job, keeping its place.
    void replace(const QUuid &id, const PrintJob &job);
    // The entry Print would run, or nothing.
    std::optional<PrintEntry> front() const;
    // Whether any screen offers a job, as last published.
    bool hasJob() const { return m_hasJob; }
    // Runs the front entry's job through the print dialog over `parent`; beeps when there is none.
    void print(QWidget *parent = nullptr);

Q_SIGNALS:
    // hasJob changed; sent on a later turn of the event loop, never while a screen builds.
    void hasJobChanged(bool hasJob);

private:
    void refresh();
    QHash<QUuid, PrintEntry> m_jobs;
    qint64 m_seq = 0;
    bool m_hasJob = false;
};

// Registers a screen's print job while the screen is visible: on show it
// takes a fresh place in the centre, on hide it leaves.
class Printable : public QObject
{
    Q_OBJECT
public:
    Printable(QWidget *screen, int level, const PrintJob &job, PrintCenter &center = PrintCenter::shared());
    ~Printable() override;
    // Changes the title the entry carries (e.g. when the project changes).
    void setTitle(const QString &title);
    // Changes the whole job (e.g. when the record shown changes).
    void setJob(const PrintJob &job);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    PrintCenter &m_center;
    QUuid m_id = QUuid::createUuid();
    int m_level;
    PrintJob m_job;
    bool m_in = false;
};
