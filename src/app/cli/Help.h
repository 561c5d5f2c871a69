#pragma once

#include "foundation/CommandLine.h"

namespace quorvane::cli {

/// What `quorvane-cli --help` and `quorvane-cli COMMAND --help` print.
QString overview(const std::vector<CommandSpec>& commands);
QString helpOf(const CommandSpec& command);

} // namespace quorvane::cli
