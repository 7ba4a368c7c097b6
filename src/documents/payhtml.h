#pragma once
// The pay application document: the G702 summary and the G703 continuation sheet.
#include "calc/payapp.h"
#include "store/rec.h"

class DB;

namespace PrintReports {

// The G702 and G703 of `payApp` from figures already worked out for it.
QString payHTML(const DB &db, const Rec &payApp, const PayAppData &data);
// The same, working the figures out afresh.
QString payHTML(const DB &db, const Rec &payApp);

} // namespace PrintReports
