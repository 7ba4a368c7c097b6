#include "numbering.h"

#include "calc/money.h"
#include "store/db.h"

qint64 nextNumber(const DB &db, const QString &kind, const QString &project)
{
    qint64 highest = 0;
    for (const Rec &r : db.list(kind, {.project = project}))
        highest = std::max(highest, r.i(u"number"));
    return Money::add(highest, 1);
}
