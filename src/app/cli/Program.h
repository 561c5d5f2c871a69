#pragma once

#include "app/SystemPorts.h"
#include "app/cli/Command.h"
#include "app/cli/SignIn.h"
#include "app/cli/TerminalConfirmation.h"

namespace quorvane::cli {

/// The house as a command needs it: nobody is asked to sign in, and originals go only after a word
/// on the terminal. Throws what the services throw.
class Program {
  public:
    explicit Program(Invocation& invocation)
        : confirmation_(invocation.console, invocation.arguments.has(QStringLiteral("yes")),
                        invocation.stop),
          core(invocation.folders, system_.with(invocation.console, confirmation_)),
          google(core, noSignIn_) {}

  private:
    SystemPorts system_;
    NoAuthSession noSignIn_;
    TerminalConfirmation confirmation_;

  public:
    CoreServices core;
    GoogleServices google;
};

} // namespace quorvane::cli
