#pragma once
#include "csv.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

class DB;

// The one-way export of the books for QuickBooks: IIF for the desktop edition,
// CSV for the online one. Without a project id every project of the current
// company is exported.
namespace QB {
// The IIF date ("MM/dd/yyyy") of a stored date; empty when unreadable.
QString d(const QString &text);
// Amount text of cents for the files ("1234.56", "-0.05"), exact to the cent.
QString amount(qint64 cents);
// Invoices (not Draft or Void) then pay applications (submitted, approved,
// paid; not the opening balance of an imported job), each transaction balancing to zero.
QString invoicesIIF(const DB &db, const std::optional<QString> &project = std::nullopt);
// Every expense as a bill to "Job Expenses:<cost code>".
QString billsIIF(const DB &db, const std::optional<QString> &project = std::nullopt);
// The company's contacts of the given types.
QString contactsCSV(const DB &db, const QStringList &types);
// Payments with direction, party and amount.
QString paymentsCSV(const DB &db, const std::optional<QString> &project = std::nullopt);
// Budget, committed and actual by cost code, for one project or each one.
QString jobCostCSV(const DB &db, const std::optional<QString> &project = std::nullopt);
// Writes the six files into "QuickBooks export <today>" under `parentDir`;
// stops at the first file that cannot be written (those before it stay).
ExportResult exportAll(const DB &db, const QString &parentDir,
                       const std::optional<QString> &project = std::nullopt);
} // namespace QB
