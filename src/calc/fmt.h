#pragma once
#include "catalog/moduledef.h"
#include "store/rec.h"

class DB;

// Display texts of numbers and fields.
namespace Fmt {
// The field `fd` of `rec` formatted by its type (references through the store's labels).
QString value(const DB &db, const Rec &rec, const FD &fd);
// A quantity with US grouping and at most two decimals (half-even): 1,234.57.
QString qty(double value);
// A number for editing: plain digits for whole numbers, else the shortest exact text.
QString num(double value);
// An abbreviated dollar label for chart axes: $2.5M, $45K, $750.
QString shortMoney(double dollars);
} // namespace Fmt
