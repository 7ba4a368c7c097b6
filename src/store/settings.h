#pragma once
#include <QtCore/QString>

// The user defaults of the program (organisation "Fenwright", application "Trestle").
namespace Settings {
QString text(const QString &key);
void setText(const QString &key, const QString &value);
} // namespace Settings
