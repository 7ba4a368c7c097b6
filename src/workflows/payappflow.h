#pragma once
#include "calc/payapp.h"
#include "store/rec.h"

class DB;

// The next pay application of the project, saved: numbered after the last,
// "draft", dated today, its retainage percentages carried from the last one
// (the project's retainage for the first).
Rec newPayApp(DB &db, const Rec &project);

// Bills every line's remaining balance this period, bringing each to exactly
// 100 percent (negative on an overbilled line); stored amounts stay.
void billBalanceOfThisPeriod(DB &db, const Rec &payApp, const PayAppData &data);

// Makes and saves a lien waiver for `amount` on the application:
// unconditional final when `final`, conditional progress otherwise.
Rec makeWaiver(DB &db, const Rec &payApp, qint64 amount, bool final);

// The `final` flag of the "Unconditional (after paid)" button: only once the
// whole contract is billed (line 9 equals line 5).
bool finalAfterPaid(const Calc::G702 &g702);

// Approved and paid applications are locked on screen.
bool isLocked(const Rec &payApp);

// The notice shown above a locked application's figures.
QString lockNotice(const Rec &payApp);

// The "Add Line" button: an empty schedule-of-values line at the end of the
// ordinary lines, numbered after all lines of the project.
Rec addSOVLine(DB &db, const QString &projectId);

namespace PayAppText {
// Why approved and paid applications are locked.
inline constexpr char16_t kLockReason[] =
    u"Approved and Paid applications are locked so certified numbers can't change by accident.";
// Label and help of the fill button.
inline constexpr char16_t kFill[] = u"Fill This Period to 100%";
inline constexpr char16_t kFillHelp[] =
    u"Bills every line's remaining balance this period (final application)";
// Shown while the project has no applications.
inline constexpr char16_t kNoPayApps[] =
    u"No pay apps yet. Set up the schedule of values, then click New Pay App.";
// The schedule-of-values caption; the total follows.
inline constexpr char16_t kSOVCaption[] = u"Schedule of values — total ";
// Help of the link mark on a change order's line.
inline constexpr char16_t kCOLineHelp[] = u"Added by an approved owner change order";
// The two waiver buttons.
inline constexpr char16_t kConditionalWaiver[] = u"Conditional Lien Waiver";
inline constexpr char16_t kUnconditionalWaiver[] = u"Unconditional (after paid)";
// The four statuses in the order offered.
inline constexpr const char16_t *kStatuses[] = {u"draft", u"submitted", u"approved", u"paid"};
// How retainage is worked out, shown on the application.
inline constexpr char16_t kRetainageExplained[] =
    u"Retainage on work is a percentage of previous + this period; retainage on stored materials has its "
    u"own percentage. Line 7 is line 6 of the previous application. Setting retainage to 0% on the final "
    u"application releases it.";
// What choosing a pay app in a waiver does.
inline constexpr char16_t kWaiverPayAppFills[] =
    u"Choosing a pay app fills the amount (current payment due), the date and the customer.";
} // namespace PayAppText
