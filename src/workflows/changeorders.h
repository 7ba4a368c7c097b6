#pragma once
#include "store/rec.h"

class DB;

// Sets a change order's status, who decided it and when, and keeps its one
// "CO-n" schedule-of-values line: present exactly while it is an approved
// owner change order, rebuilt (with a new id) on every approval.
void setCOStatus(DB &db, Rec co, const QString &status);

namespace COText {
// What approving does, shown with an owner change order.
inline constexpr char16_t kOwnerEffect[] =
    u"Approving an owner change order revises the contract, adds its cost lines to the budget and adds a "
    u"billable line to the schedule of values.";
// What approving does, shown with a sub change order.
inline constexpr char16_t kSubEffect[] =
    u"Approved sub change orders change the cost budget of their cost codes.";
} // namespace COText
