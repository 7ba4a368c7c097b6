#pragma once
// The printed WIP schedule: both sections with their totals, on Letter
// turned sideways so that thirteen columns of figures stay legible.
#include "printsource.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

class DB;
struct WipLine;
struct WipSchedule;

namespace PrintReports {

// The title of the document, its print job and its default file name.
inline const QString kWipScheduleTitle = QStringLiteral("WIP Schedule");

// The column heads of the printed schedule and of the screen's table.
QStringList wipScheduleHeads();
// The cells of one line as printed: number, project, then the figures with grouping.
QStringList wipScheduleCells(const WipLine &line);
// The document body: letterhead, "As of" today, the method, both sections and totals.
QString wipScheduleHTML(const DB &db, const WipSchedule &schedule);
// The source for the print engine, to be set in landscape.
PrintSource wipScheduleSource(const DB &db);

} // namespace PrintReports

namespace PDFOut {
// Writes the schedule of the current company as a landscape PDF; false when it could not be written.
bool wipSchedule(const DB &db, const QString &path);
} // namespace PDFOut
