#pragma once
// The company reports: work in progress over all projects, and one project in full.
#include "store/rec.h"

#include <QtCore/QStringList>

class DB;
struct ProjectFigures;

namespace PrintReports {

// The work-in-progress report over every project.
QString wipHTML(const DB &db);
// One project's figures, change orders, open RFIs and open punch items.
QString projectReport(const DB &db, const Rec &project);
// One row of the work-in-progress table.
QStringList line(const Rec &project, const ProjectFigures &figures);

} // namespace PrintReports
