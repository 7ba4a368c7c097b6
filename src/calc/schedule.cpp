#include "schedule.h"

#include "datefmt.h"
#include "money.h"
#include "store/db.h"

#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace Calc {

QHash<QString, Span> schedule(const QList<Task> &tasks)
{
    QHash<QString, const Task *> byId;
    for (const Task &task : tasks)
        if (!byId.contains(task.id))
            byId.insert(task.id, &task);

    QHash<QString, Span> memo;
    QSet<QString> visiting;

    // A depth-first walk with its own stack, so that a long chain of tasks read
    // from a file cannot exhaust the call stack. A frame resumes at predecessor
    // `next`; a predecessor still on the stack closes a cycle and counts as a
    // task that finished on day 0.
    struct Frame
    {
        const Task *task;
        qint64 start;
        qsizetype next;
    };
    QList<Frame> stack;
    auto push = [&](const Task *task) {
        visiting.insert(task->id);
        stack.append({task, task->fixedStart.value_or(0), 0});
    };

    for (const Task &root : tasks) {
        if (memo.contains(root.id))
            continue;
        push(byId.value(root.id));
        while (!stack.isEmpty()) {
            Frame &f = stack.last();
            if (f.next < f.task->preds.size()) {
                const QString &pred = f.task->preds.at(f.next);
                const Task *p = byId.value(pred);
                if (!p) {
                    ++f.next; // a deleted predecessor has no effect
                } else if (auto it = memo.constFind(pred); it != memo.constEnd()) {
                    f.start = std::max(f.start, Money::add(it->finish, f.task->lag));
                    ++f.next;
                } else if (visiting.contains(pred)) {
                    f.start = std::max(f.start, f.task->lag);
                    ++f.next;
                } else {
                    push(p); // `f` is not used again before this frame is back on top
                }
                continue;
            }
            visiting.remove(f.task->id);
            const Span span{f.start, Money::add(f.start, std::max<qint64>(f.task->duration, 0))};
            memo.insert(f.task->id, span);
            stack.removeLast();
        }
    }
    return memo;
}

} // namespace Calc

namespace {
// A stored date: the first ten characters, so a time after the date does not matter.
std::optional<QDate> dateOf(const QString &text)
{
    return DateFmt::parseIso(QStringView(text).left(10));
}

QDate plusDays(const QDate &base, qint64 days)
{
    const QDate date = base.addDays(days);
    if (!date.isValid())
        qFatal("Trestle stopped: day %lld of the schedule is not a calendar date.", (long long)days);
    return date;
}
} // namespace

QHash<QString, DateSpan> scheduleDates(const DB &db, const QString &projectId)
{
    const QList<Rec> recs = db.list(u"task"_s, {.project = projectId});

    // The base: the project's start, else the earliest fixed task start, else today.
    std::optional<QDate> base;
    if (const Rec *project = db.find(projectId))
        base = dateOf(project->f[u"start"]);
    if (!base) {
        for (const Rec &r : recs)
            if (std::optional<QDate> d = dateOf(r.f[u"start"]); d && (!base || *d < *base))
                base = d;
    }
    if (!base)
        base = DateFmt::today();

    QList<Calc::Task> tasks;
    tasks.reserve(recs.size());
    for (const Rec &r : recs) {
        Calc::Task t;
        t.id = r.id;
        t.duration = r.i(u"duration");
        t.preds = r.f[u"preds"].split(u',', Qt::SkipEmptyParts);
        t.lag = r.i(u"lag");
        if (std::optional<QDate> d = dateOf(r.f[u"start"]))
            t.fixedStart = base->daysTo(*d);
        tasks.append(t);
    }

    QHash<QString, DateSpan> dates;
    const QHash<QString, Calc::Span> spans = Calc::schedule(tasks);
    for (auto it = spans.begin(); it != spans.end(); ++it)
        dates.insert(it.key(), {plusDays(*base, it->start), plusDays(*base, it->finish)});
    return dates;
}
