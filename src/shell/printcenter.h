#pragma once
#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QUuid>

#include <functional>
#include <optional>

class QWidget;

// What a screen offers to print: a title and the action that prints it
// (which builds the document only when called).
struct PrintEntry
{
    int level = 0;  // deeper screens have higher levels
    qint64 seq = 0; // order of appearance
    QString title;
    std::function<void()> print;
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
    void put(const QUuid &id, int level, const QString &title, const std::function<void()> &print);
    void remove(const QUuid &id);
    // Changes an entry's title, keeping its place.
    void retitle(const QUuid &id, const QString &title);
    // The entry Print would run, or nothing.
    std::optional<PrintEntry> front() const;
    bool hasJob() const { return m_hasJob; }
    // Runs the front entry; beeps when there is none.
    void print();

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
    Printable(QWidget *screen, int level, const QString &title, const std::function<void()> &print,
              PrintCenter &center = PrintCenter::shared());
    ~Printable() override;
    // Changes the title the entry carries (e.g. when the project changes).
    void setTitle(const QString &title);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    PrintCenter &m_center;
    QUuid m_id = QUuid::createUuid();
    int m_level;
    QString m_title;
    std::function<void()> m_print;
    bool m_in = false;
};
