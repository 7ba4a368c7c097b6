#pragma once
#include "calc/datefmt.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

class DB;

// Severity of an alert, most urgent first.
enum class AlertColor { red, orange, yellow, blue };

// One thing that needs attention; `id` is new on every computation.
struct HubAlert
{
    QString id;
    QString symbol;
    QString text;
    AlertColor color = AlertColor::blue;
    QString module;                 // the module a click opens
    std::optional<QString> record;  // the record to select there
    std::optional<QString> project; // the project to switch to
};

namespace Alerts {
// Everything that needs attention, for one project or (absent) the whole
// company, by family; certificates and equipment are always company-wide.
QList<HubAlert> all(const DB &db, const std::optional<QString> &project,
                    const QDateTime &now = DateFmt::now());
} // namespace Alerts
