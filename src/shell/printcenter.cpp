#include "printcenter.h"

#include "printengine.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

PrintCenter::PrintCenter(QObject *parent)
    : QObject(parent)
{}

PrintCenter &PrintCenter::shared()
{
    static PrintCenter *center = new PrintCenter(QCoreApplication::instance());
    return *center;
}

void PrintCenter::put(const QUuid &id, int level, const PrintJob &job)
{
    m_jobs.insert(id, {level, ++m_seq, job});
    refresh();
}

void PrintCenter::remove(const QUuid &id)
{
    if (m_jobs.remove(id))
        refresh();
}

void PrintCenter::retitle(const QUuid &id, const QString &title)
{
    auto it = m_jobs.find(id);
    if (it != m_jobs.end())
        it->job.title = title;
}

void PrintCenter::replace(const QUuid &id, const PrintJob &job)
{
    auto it = m_jobs.find(id);
    if (it != m_jobs.end())
        it->job = job;
}

std::optional<PrintEntry> PrintCenter::front() const
{
    const PrintEntry *best = nullptr;
    for (const PrintEntry &e : m_jobs)
        if (!best || e.level > best->level || (e.level == best->level && e.seq > best->seq))
            best = &e;
    return best ? std::optional<PrintEntry>(*best) : std::nullopt;
}

void PrintCenter::print(QWidget *parent)
{
    const std::optional<PrintEntry> e = front();
    if (!e) {
        PrintEngine::beep();
        return;
    }
    PrintEngine::run(e->job, parent);
}

void PrintCenter::refresh()
{
    // Published on the next turn: a screen may register while it is being built.
    QTimer::singleShot(0, this, [this] {
        const bool has = !m_jobs.isEmpty();
        if (has != m_hasJob) {
            m_hasJob = has;
            Q_EMIT hasJobChanged(has);
        }
    });
}

Printable::Printable(QWidget *screen, int level, const PrintJob &job, PrintCenter &center)
    : QObject(screen)
    , m_center(center)
    , m_level(level)
    , m_job(job)
{
    screen->installEventFilter(this);
    if (screen->isVisible()) {
        m_in = true;
        m_center.put(m_id, m_level, m_job);
    }
}

Printable::~Printable()
{
    if (m_in)
        m_center.remove(m_id);
}

void Printable::setTitle(const QString &title)
{
    m_job.title = title;
    m_center.retitle(m_id, title);
}

void Printable::setJob(const PrintJob &job)
{
    m_job = job;
    m_center.replace(m_id, job);
}

bool Printable::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && !m_in) {
        m_in = true;
        m_center.put(m_id, m_level, m_job);
    } else if (event->type() == QEvent::Hide && m_in) {
        m_in = false;
        m_center.remove(m_id);
    }
    return QObject::eventFilter(watched, event);
}
