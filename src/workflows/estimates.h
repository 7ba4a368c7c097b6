#pragma once
#include "store/rec.h"

class DB;

// Makes the estimate the project's budget (cost by cost code), its contract
// (the estimate total) and its schedule of values (the cost grossed up to the
// total, adding up to it exactly). Change-order lines of the schedule stay.
void useEstimateAsBudget(DB &db, const Rec &estimate);

// Adds the lines of `assembly` to `estimate`, each at its quantity per unit times `qty`.
void addAssembly(DB &db, const Rec &assembly, const Rec &estimate, double qty);

// The text of a quantity as estimate lines hold it: the shortest text that
// reads back as the same double, with at least one decimal ("1200.0", "12.5").
QString qtyText(double value);

namespace EstimateText {
// Help of the button that makes the estimate the project's budget.
inline constexpr char16_t kUseAsBudgetHelp[] =
    u"Replaces the project budget and schedule of values with this estimate and sets the contract amount";
// How the assembly panel is used.
inline constexpr char16_t kAssemblyHint[] =
    u"Pick an assembly and a quantity (e.g. 1,200 SF) to add all its lines at once.";
// How the totals are worked out, shown with an estimate.
inline constexpr char16_t kTotalsExplained[] =
    u"Lines are quantity × unit cost. Markup applies to the subtotal; tax applies to subtotal + markup.";
} // namespace EstimateText
