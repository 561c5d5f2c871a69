#include "platform/linux/desktop/ActivationToken.h"

#include <QGuiApplication>

namespace quorvane {

namespace {

constexpr const char* variable = "XDG_ACTIVATION_TOKEN";

} // namespace

QString givenActivationToken() {
    const QString token = qEnvironmentVariable(variable);
    return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
}

/// The toolkit takes it from the environment, once, and only where the compositor asks for one; the
/// others' windows come to the front without, and programs that are started inherit nothing.
void useActivationToken(const QString& token) {
    if (!token.isEmpty() && QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        qputenv(variable, token.toUtf8());
}

} // namespace quorvane
