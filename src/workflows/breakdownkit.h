#pragma once
// What the files of breakdown producers share.
#include "calc/parts.h"

#include <QtCore/QList>

#include <algorithm>

namespace Explain {

// Rows in the order a reader expects: by date, then number, then record.
inline void sortByDate(QList<Calc::Part> &rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const Calc::Part &a, const Calc::Part &b) {
        if (a.date != b.date)
            return a.date < b.date;
        if (a.number != b.number)
            return a.number < b.number;
        return a.record < b.record;
    });
}

} // namespace Explain
