#include "platform/linux/desktop/NetworkMeter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace quorvane {

namespace {

const QString managerService = QStringLiteral("org.freedesktop.NetworkManager");
const QString managerPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString metered = QStringLiteral("Metered");

// NMMetered: 0 unknown, 1 yes, 2 no, 3 guessed yes, 4 guessed no.
constexpr uint yes = 1;
constexpr uint guessedYes = 3;

} // namespace

void NetworkMeter::watch(std::function<void()> changed) {
    changed_ = std::move(changed);
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(managerService, managerPath, properties, QStringLiteral("PropertiesChanged"), this,
                SLOT(propertiesChanged(QString, QVariantMap)));
    auto call = QDBusMessage::createMethodCall(managerService, managerPath, properties,
                                               QStringLiteral("Get"));
    call.setArguments({managerService, metered});
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            learn(reply.value().variant().toUInt());
    });
}

void NetworkMeter::propertiesChanged(const QString& interface, const QVariantMap& values) {
    if (interface == managerService && values.contains(metered))
        learn(values.value(metered).toUInt());
}

void NetworkMeter::learn(uint value) {
    const bool isMetered = value == yes || value == guessedYes;
    if (std::exchange(isMetered_, isMetered) != isMetered && changed_)
        changed_();
}

} // namespace quorvane
