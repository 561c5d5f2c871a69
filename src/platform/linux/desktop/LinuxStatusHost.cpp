#include "platform/linux/desktop/LinuxStatusHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

#include <memory>
#include <utility>

#include <xcb/xcb.h>

namespace quorvane {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
constexpr int trayLookInterval = 500; // milliseconds

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&::free)>;

/// Null where there is no X11 screen; a platform without a screen offers the interface as well.
xcb_connection_t* x11Server() {
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

/// Whether somebody owns the tray's selection on the X11 screen.
bool hasTray() {
    xcb_connection_t* const server = x11Server();
    if (server == nullptr)
        return false;
    const QByteArray name = "_NET_SYSTEM_TRAY_S0";
    const Owned<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(
            server,
            xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.constData()),
            nullptr),
        &::free);
    if (!atom)
        return false;
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atom->atom), nullptr),
        &::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

void LinuxStatusHost::await(std::function<void()> appeared) {
    appeared_ = std::move(appeared);
    // A tray tells only windows of its coming.
    if (x11Server() != nullptr) {
        connect(&trayTimer_, &QTimer::timeout, this, &LinuxStatusHost::lookForTray);
        trayTimer_.start(trayLookInterval);
        lookForTray();
    }
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return; // no session: asking for its bus would start one
    QDBusConnection bus = QDBusConnection::sessionBus();
    const auto* watcher =
        new QDBusServiceWatcher(watcherName, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &LinuxStatusHost::askForHost);
    bus.connect(watcherName, watcherPath, watcherName,
                QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(askForHost()));
    askForHost();
}

void LinuxStatusHost::askForHost() {
    if (!appeared_)
        return;
    auto call = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call.setArguments({watcherName, QStringLiteral("IsStatusNotifierHostRegistered")});
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid() && reply.value().variant().toBool())
            found();
    });
}

void LinuxStatusHost::lookForTray() {
    if (hasTray())
        found();
}

void LinuxStatusHost::found() {
    trayTimer_.stop();
    if (appeared_)
        std::exchange(appeared_, nullptr)();
}

} // namespace quorvane
