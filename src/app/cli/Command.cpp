#include "app/cli/Command.h"

#include "app/RunLock.h"
#include "app/cli/Help.h"
#include "google/OAuthError.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace quorvane::cli {

namespace {

std::vector<CommandSpec> specs() {
    std::vector<CommandSpec> result;
    for (const Command& command : allCommands())
        result.push_back(command.spec);
    return result;
}

const Command& find(const QString& name) {
    for (const Command& command : allCommands())
        if (command.spec.name == name)
            return command;
    throw UsageError(QStringLiteral("bilinmeyen komut: ") + name);
}

int runChecked(const QStringList& words, Console& console, std::stop_token stop) {
    if (words.isEmpty() || words.first() == u"--help" || words.first() == u"-h") {
        console.result(overview(specs()));
        return words.isEmpty() ? usage : done;
    }
    if (words.first() == u"--version") {
        console.result(QStringLiteral("quorvane-cli ") + QStringLiteral(QUORVANE_VERSION));
        return done;
    }
    const Command& command = find(words.first());
    const QStringList rest = words.mid(1);
    if (rest.contains(u"--help") || rest.contains(u"-h")) {
        console.result(helpOf(command.spec));
        return done;
    }
    Invocation invocation{parse(command.spec, rest), UserFolders::ofCurrentUser(), console, stop};
    return command.work(invocation);
}

} // namespace

const std::vector<Command>& allCommands() {
    static const std::vector<Command> commands{
        loginCommand(),  logoutCommand(), statusCommand(),  syncCommand(),
        albumsCommand(), retryCommand(),  undatedCommand(), stagingCommand(),
        watchCommand(),  logCommand(),    doctorCommand(),  handleUrlCommand(),
    };
    return commands;
}

int run(const QStringList& words, Console& console, std::stop_token stop) {
    try {
        return runChecked(words, console, stop);
    } catch (const UsageError& error) {
        console.error(error.localizedDescription());
        console.error(QStringLiteral("Yardım: quorvane-cli --help"));
        return usage;
    } catch (const OAuthError& error) {
        console.error(error.localizedDescription());
        if (error.which() == OAuthError::Case::notSignedIn)
            return notSignedIn;
        return error.fault() ? exitCodeOf(*error.fault()) : failedToRun;
    } catch (const RunLockHeld& error) {
        console.error(error.localizedDescription());
        return anotherRunActive;
    } catch (const Cancelled&) {
        console.error(QStringLiteral("Durduruldu."));
        return stopped;
    } catch (const Error& error) {
        console.error(error.localizedDescription());
        return error.fault() ? exitCodeOf(*error.fault()) : failedToRun;
    } catch (const std::exception& error) {
        console.error(describe(error));
        return failedToRun;
    }
}

ExitCode exitCodeOf(const Fault& fault) {
    if (fault.code == FaultCode::fileTrouble)
        return failedToRun; // a record's never ends a run
    switch (kindOf(fault.code)) {
    case FaultKind::moment:
    case FaultKind::day:
        return putOff;
    case FaultKind::session:
        return notSignedIn;
    case FaultKind::target:
    case FaultKind::item:
        return someItemsLeft;
    case FaultKind::account:
    case FaultKind::machine:
        break;
    }
    return failedToRun;
}

void printJson(Console& console, const QJsonObject& object) {
    console.result(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

} // namespace quorvane::cli
