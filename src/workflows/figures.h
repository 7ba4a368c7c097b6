#pragma once
#include "calc/totals.h"

#include <QtCore/QHash>

class DB;
struct Rec;

// The money position of one project, computed afresh on every call.
struct ProjectFigures
{
    Calc::ContractSummary contract;
    qint64 billed = 0; // line 4 of the latest pay application + invoice subtotals
    // What has left the office: line 4 of the latest application submitted, approved
    // or paid, and invoices neither Draft nor Void; the WIP schedule's billed to date.
    qint64 billedOut = 0;
    qint64 retainage = 0; // line 5 of the latest pay application
    qint64 paid = 0;      // payments received
    qint64 cost = 0;      // actual job cost
    qint64 budget = 0;    // the revised budget

    // The `column` of the parts: which figure a part adds to.
    enum Column { BilledColumn, BilledOutColumn, RetainageColumn, PaidColumn };
    // The figures of `project`; the parts of billed, billed out, retainage and paid go to `sink`.
    static ProjectFigures of(const DB &db, const Rec &project, const Calc::PartSink &sink = {});
    bool operator==(const ProjectFigures &) const = default;
};

// Project figures kept between refreshes: a project's are worked out again
// only when something they read has changed since, or the company changed.
class FiguresCache
{
public:
    // The figures of `project`, the same as ProjectFigures::of would give.
    ProjectFigures of(const DB &db, const Rec &project);

private:
    struct Entry
    {
        quint64 revision = 0;
        ProjectFigures figures;
    };
    QHash<QString, Entry> m_entries;
    QString m_company;
};
