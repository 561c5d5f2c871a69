#include "app/RunLock.h"
#include "app/cli/Program.h"
#include "google/OAuthMessages.h"

#include <unistd.h>

namespace quorvane::cli {

namespace {

int login(Invocation& invocation) {
    SystemPorts system;
    TerminalConfirmation confirmation(invocation.console, false, invocation.stop);
    CoreServices core(invocation.folders, system.with(invocation.console, confirmation));
    const auto session =
        PlatformPorts::signIn(core.folders, STDIN_FILENO, core.console, core.logger);
    GoogleServices google(core, *session);
    const SignInOutcome outcome = google.oauth.signIn(invocation.stop);
    core.runState.signedIn();
    if (!outcome.mayListAlbums)
        core.console.print(oauth::readingDeclined);
    core.console.result(QStringLiteral("Oturum açıldı: ") +
                        google.oauth.email().value_or(QStringLiteral("e-posta bilinmiyor")));
    return done;
}

int logout(Invocation& invocation) {
    const RunLock lock(invocation.folders.runLock()); // not under the feet of a running sync
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    program.google.oauth.signOut(invocation.stop);
    program.core.preferences.removeDamaged();
    program.core.console.result(QStringLiteral("Oturum kapatıldı."));
    return done;
}

/// Called by the desktop with the URL that ends a sign-in.
int handleUrl(Invocation& invocation) {
    const QString url = invocation.arguments.operand();
    if (url.isEmpty())
        throw UsageError(QStringLiteral("handle-url: bir adres bekler"));
    if (PlatformPorts::handOver(invocation.folders, url))
        return done;
    throw Error(QStringLiteral("Bu adresi bekleyen bir giriş yok"));
}

} // namespace

Command loginCommand() {
    return {{QStringLiteral("login"), QStringLiteral("Google hesabında oturum açar"), {}}, login};
}

Command logoutCommand() {
    return {{QStringLiteral("logout"),
             QStringLiteral("oturumu kapatır ve saklanan tüm anahtarları siler"),
             {}},
            logout};
}

Command handleUrlCommand() {
    CommandSpec spec{QStringLiteral("handle-url"),
                     QStringLiteral("tarayıcının geri dönüş adresini bekleyen girişe iletir"),
                     {}};
    spec.operand = QStringLiteral("ADRES");
    spec.hidden = true;
    return {spec, handleUrl};
}

} // namespace quorvane::cli
