#pragma once

#include "app/Composition.h"
#include "app/Diagnosis.h"

#include <functional>

namespace quorvane {

/// Looks at everything that can stand between a person and their backup, and changes nothing.
/// `library` says where the library is, or throws the `Error` that tells why nobody knows. Blocks;
/// any thread; throws `Cancelled` when stopped.
std::vector<Finding> checkSession(CoreServices& core, GoogleServices& services,
                                  const std::function<std::filesystem::path()>& library,
                                  const std::stop_token& stop);

} // namespace quorvane
