#pragma once

#include "foundation/Error.h"

#include <QString>

namespace quorvane {

/// A program that could not be created at all (its description is not shown).
class ScriptNotCreated : public Error {
  public:
    using Error::Error;
};

/// A program that ran and failed; the description is the system's.
class ScriptFailed : public Error {
  public:
    using Error::Error;
};

/// Runs programs that speak to the Photos application, where there is one.
class PhotosAppScripts {
  public:
    virtual ~PhotosAppScripts() = default;

    /// The program's text result. Blocks; any thread. Throws `ScriptNotCreated`, `ScriptFailed`.
    virtual QString run(const QString& program) = 0;
};

} // namespace quorvane
