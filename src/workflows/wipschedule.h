#pragma once
// The WIP schedule by the cost-to-cost method: per job the earned revenue and
// the over or under billing, as a surety, a bank or an accountant reads it.
#include "figures.h"

#include "store/rec.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <utility>

// One line of the schedule: a job, or the total of a section or of all.
// Amounts are cents. For a job: T >= CTD, ETC = T - CTD, over and under
// billings are never both above zero; unmarked, EGP = C - T and E = C x P
// exactly; marked, EGP = 0 and E = CTD held within 0…C.
struct WipLine
{
    // Why a job in progress recognises no profit: its outcome cannot be estimated.
    enum class Mark { None, NoEstimate, NoContract };

    QString project; // the project's record id; empty on a total
    QString number;
    QString name;
    bool completed = false;
    qint64 contract = 0;        // C, the revised contract
    qint64 estimatedCost = 0;   // T, the larger of the revised budget and CTD; CTD once complete
    qint64 estimatedProfit = 0; // EGP = C - T
    qint64 costToDate = 0;      // CTD
    qint64 costToComplete = 0;  // ETC = T - CTD
    int percentTenths = 0;      // P in tenths of a percent, 0 to 1000, halves away from zero
    qint64 earned = 0;          // E = C x P, to the cent
    qint64 profitToDate = 0;    // E - CTD, or the whole loss EGP when one is foreseen
    qint64 lossProvision = 0;   // the part of a foreseen loss not yet in cost
    qint64 billed = 0;          // B, gross of retainage, net of tax
    qint64 overBilled = 0;      // max(B - E, 0)
    qint64 underBilled = 0;     // max(E - B, 0)
    qint64 backlog = 0;         // C - E
    Mark mark = Mark::None;
    bool operator==(const WipLine &) const = default;
};

// One section of the schedule with its total line.
struct WipSection
{
    QString title;
    QList<WipLine> lines;
    WipLine total;
};

// The whole schedule of the current company: jobs in progress, then completed.
struct WipSchedule
{
    WipSection inProgress;
    WipSection completed;
    WipLine total;

    // The schedule over every project of `db` but those still bidding, in list order.
    static WipSchedule of(const DB &db);
    // The schedule from figures already worked out, one pair per project in list order.
    static WipSchedule from(const QList<std::pair<Rec, ProjectFigures>> &projects);
    // One job's line from its figures.
    static WipLine line(const Rec &project, const ProjectFigures &figures);
    // Whether a project of this status is on the schedule at all.
    static bool listed(const QString &status);
    // Whether a project of this status is a completed contract.
    static bool completedStatus(const QString &status);

    // The method, in one line, as the screen and the document state it.
    static QString methodNote();
    // The words a marked row carries: "No estimate", "No contract", or nothing.
    static QString markText(WipLine::Mark mark);
    // One note per mark the schedule's jobs carry, for under the table.
    QStringList markNotes() const;
    // The CSV heads, then one row per job (no totals), money as plain numbers.
    QList<QStringList> csvRows() const;
    // Cents as a spreadsheet reads them: "1234.56", "-50.00".
    static QString plainMoney(qint64 cents);
    // Tenths of a percent with one decimal: 573 is "57.3".
    static QString percentText(int tenths);
};
