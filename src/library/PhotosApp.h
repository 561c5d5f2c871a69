#pragma once

#include "foundation/Log.h"
#include "library/DeletionConfirmation.h"
#include "library/PhotoLibrary.h"
#include "library/PhotosAppScripts.h"

#include <memory>
#include <stop_token>

namespace quorvane {

/// The Photos application of this computer, where there is one. Any thread.
class PhotosApp {
  public:
    virtual ~PhotosApp() = default;

    /// Its library. The arguments outlive what is returned.
    virtual std::unique_ptr<PhotoLibrary> open(DeletionConfirmation& confirmation, Log& log) = 0;

    /// Has the system ask the person for the library unless they answered before. Blocks until they
    /// do, or until `stop`.
    virtual void requestAuthorization(const std::stop_token& stop) = 0;

    virtual PhotosAppScripts& scripts() = 0;

    /// What stands for its library where others have a path, and tells it from them.
    static const inline std::filesystem::path libraryPath = "photos:";
};

} // namespace quorvane
