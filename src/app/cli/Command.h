#pragma once

#include "app/Composition.h"
#include "foundation/CommandLine.h"

#include <functional>
#include <stop_token>

namespace quorvane::cli {

enum ExitCode : int {
    done = 0,
    failedToRun = 1,
    usage = 2,
    notSignedIn = 3,
    someItemsLeft = 4, ///< or, of the doctor, some faults found
    anotherRunActive = 5,
    putOff = 6, ///< Google or the network asked to wait; everything is kept
    stopped = 130,
};

/// What a command gets. Commands run on a worker thread; the main thread serves the event loop.
struct Invocation {
    Arguments arguments;
    UserFolders folders;
    Console& console;
    std::stop_token stop; ///< requested by SIGINT, SIGTERM and SIGHUP
};

/// A command: its grammar and its work. The work returns an exit code; what it throws is turned
/// into a text and a code by `run`.
struct Command {
    CommandSpec spec;
    std::function<int(Invocation&)> work;
};

const std::vector<Command>& allCommands();

/// Runs the command that `words` (without the program's name) ask for and returns the exit code.
int run(const QStringList& words, Console& console, std::stop_token stop);

/// What a command ends with when the world kept it from its work.
ExitCode exitCodeOf(const Fault& fault);

/// The JSON object on one line of standard output.
void printJson(Console& console, const QJsonObject& object);

Command loginCommand();
Command logoutCommand();
Command statusCommand();
Command syncCommand();
Command albumsCommand();
Command retryCommand();
Command undatedCommand();
Command stagingCommand();
Command logCommand();
Command doctorCommand();
Command watchCommand();
Command handleUrlCommand();

} // namespace quorvane::cli
