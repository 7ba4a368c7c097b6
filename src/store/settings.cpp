#include "settings.h"

#include <QtCore/QSettings>

namespace Settings {

QString text(const QString &key)
{
    return QSettings(QStringLiteral("Fenwright"), QStringLiteral("Trestle")).value(key).toString();
}

void setText(const QString &key, const QString &value)
{
    QSettings s(QStringLiteral("Fenwright"), QStringLiteral("Trestle"));
    s.setValue(key, value);
    s.sync();
}

} // namespace Settings
