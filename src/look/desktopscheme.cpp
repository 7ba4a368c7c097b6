#include "desktopscheme.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>

#include <optional>

using namespace Qt::StringLiterals;

namespace DesktopScheme {

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString colorScheme = u"color-scheme"_s;

// Receives the portal's change signal, which needs a slot with the exact signature.
class Listener : public QObject
{
    Q_OBJECT
public:
    Listener(QObject *owner, std::function<void(bool)> light)
        : QObject(owner)
        , m_light(std::move(light))
    {}
    void report(const QVariant &value)
    {
        if (const std::optional<bool> light = prefersLight(value))
            m_light(*light);
    }

public Q_SLOTS:
    void settingChanged(const QString &ns, const QString &key, const QDBusVariant &value)
    {
        if (ns == appearance && key == colorScheme)
            report(value.variant());
    }

private:
    std::function<void(bool)> m_light;
};

} // namespace

std::optional<bool> prefersLight(const QVariant &portalValue)
{
    // Older portals wrap the value in one more variant.
    QVariant v = portalValue;
    while (v.canConvert<QDBusVariant>() && v.metaType() == QMetaType::fromType<QDBusVariant>())
        v = v.value<QDBusVariant>().variant();
    bool ok = false;
    const uint scheme = v.toUInt(&ok);
    if (!ok || v.metaType() == QMetaType::fromType<QString>())
        return std::nullopt;
    if (scheme == 1)
        return false;
    if (scheme == 2)
        return true;
    return std::nullopt;
}

void watch(QObject *owner, std::function<void(bool light)> light)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto *listener = new Listener(owner, std::move(light));
    bus.connect(service, path, settingsInterface, u"SettingChanged"_s, listener,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(service, path, settingsInterface, u"Read"_s);
    read << appearance << colorScheme;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(read, 2000), listener);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, listener,
                     [listener](QDBusPendingCallWatcher *w) {
                         const QDBusPendingReply<QDBusVariant> reply = *w;
                         if (!reply.isError())
                             listener->report(QVariant::fromValue(reply.value()));
                         w->deleteLater();
                     });
}

} // namespace DesktopScheme

#include "desktopscheme.moc"
