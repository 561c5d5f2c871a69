#include "platform/linux/desktop/DesktopLook.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace quorvane {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme"); // 0: no preference, 1: dark, 2: light
const QString gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
const QString enableAnimations = QStringLiteral("enable-animations");

/// The portal's older calls put the value into a variant within a variant.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

void DesktopLook::watch() {
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return; // no session: asking for its bus would start one
    QDBusConnection::sessionBus().connect(portalService, portalPath, interface,
                                          QStringLiteral("SettingChanged"), this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
    read(appearance, colorScheme);
    read(gnomeInterface, enableAnimations);
}

void DesktopLook::read(const QString& space, const QString& key) {
    auto call = QDBusMessage::createMethodCall(portalService, portalPath, interface,
                                               QStringLiteral("Read"));
    call.setArguments({space, key});
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, space, key] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            settingChanged(space, key, reply.value());
    });
}

void DesktopLook::settingChanged(const QString& space, const QString& key,
                                 const QDBusVariant& value) {
    const QVariant setting = unwrapped(value.variant());
    if (space == appearance && key == colorScheme) {
        const uint scheme = setting.toUInt();
        isDark_ = scheme == 1   ? std::optional(true)
                  : scheme == 2 ? std::optional(false)
                                : std::nullopt;
    } else if (space == gnomeInterface && key == enableAnimations) {
        reducesMotion_ = !setting.toBool();
    } else {
        return;
    }
    Q_EMIT changed();
}

} // namespace quorvane
