#pragma once
// The documents that are not a single record: list logs and the dashboard.
// The pay application, reports, schedule and cost documents have headers of their own.
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QList>

#include <optional>

class DB;

namespace PrintReports {

// "Printed " and today's date, in a small grey paragraph.
QString dateLine();
// The log of a list: the records as the screen shows them, `project` the chosen one if any.
QString listHTML(const DB &db, const ModuleDef &def, const QList<Rec> &rows,
                 const std::optional<QString> &project);
// The dashboard summary of all active projects, or of `project` alone; no money for field roles.
QString hubHTML(const DB &db, const std::optional<Rec> &project);

} // namespace PrintReports
