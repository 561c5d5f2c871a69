#pragma once

#include "foundation/CommandLine.h"
#include "foundation/Preferences.h"

namespace quorvane::cli {

/// --upload-limit, for the commands that upload.
OptionSpec uploadLimitOption();

/// The limit holds for this process only. Throws `UsageError`.
void applyUploadLimit(const Arguments& arguments, Preferences& preferences);

} // namespace quorvane::cli
