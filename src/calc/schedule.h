#pragma once
#include <QtCore/QDate>
#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <optional>

class DB;

namespace Calc {

// A task for the forward pass; finish = start + duration (the day after its last day).
struct Task
{
    QString id;
    qint64 duration = 0;
    QStringList preds;
    qint64 lag = 0; // applies to every predecessor; may be negative
    std::optional<qint64> fixedStart;
};

// Day numbers from the base date; finish is the day after the last day.
struct Span
{
    qint64 start = 0;
    qint64 finish = 0;
    bool operator==(const Span &) const = default;
};

// Start and finish day numbers of every task; cycles are cut, never reported.
QHash<QString, Span> schedule(const QList<Task> &tasks);

} // namespace Calc

// A task's dates on the calendar.
struct DateSpan
{
    QDate start;
    QDate finish; // one day past the last day
    bool operator==(const DateSpan &) const = default;
};

// Dates of the project's tasks from its start (or the earliest task start, or today).
QHash<QString, DateSpan> scheduleDates(const DB &db, const QString &projectId);
