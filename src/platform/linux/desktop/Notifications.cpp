#include "platform/linux/desktop/Notifications.h"

#include "platform/linux/desktop/ActivationToken.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace quorvane {

namespace {

const QString notifierService = QStringLiteral("org.freedesktop.Notifications");
const QString notifierPath = QStringLiteral("/org/freedesktop/Notifications");
constexpr std::size_t mostRemembered = 20; // a panel may keep notices, to be clicked much later

} // namespace

void Notifications::listen() {
    if (std::exchange(isListening_, true))
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(notifierService, notifierPath, notifierService, QStringLiteral("ActivationToken"),
                this, SLOT(activationToken(uint, QString)));
    bus.connect(notifierService, notifierPath, notifierService, QStringLiteral("ActionInvoked"),
                this, SLOT(actionInvoked(uint, QString)));
}

void Notifications::show(const Notice& notice) {
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return; // no session: asking for its bus would start one
    listen();
    auto call = QDBusMessage::createMethodCall(notifierService, notifierPath, notifierService,
                                               QStringLiteral("Notify"));
    const uint replacesNone = 0;
    const int serversOwnTime = -1;
    const QStringList actions{QStringLiteral("default"), QStringLiteral("Aç")}; // a click's
    call.setArguments({QStringLiteral("Quorvane"), replacesNone, QStringLiteral("quorvane"),
                       notice.title, notice.text.toHtmlEscaped(), actions,
                       QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("quorvane")}},
                       serversOwnTime});
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, about = notice.about] {
        answer->deleteLater();
        const QDBusPendingReply<uint> id = *answer;
        if (!id.isValid())
            return;
        shown_[id.value()] = about;
        if (shown_.size() > mostRemembered)
            shown_.erase(shown_.begin());
    });
}

void Notifications::activationToken(uint id, const QString& token) {
    if (shown_.contains(id))
        useActivationToken(token);
}

void Notifications::actionInvoked(uint id, const QString&) {
    const auto notice = shown_.find(id);
    if (notice == shown_.end())
        return; // another program's
    const Notice::About about = notice->second;
    shown_.erase(notice);
    if (onOpened)
        onOpened(about);
}

} // namespace quorvane
