#pragma once

#include "app/Composition.h"

namespace quorvane::cli {

/// While this lives, what is added to the library is recorded.
class Watching {
  public:
    explicit Watching(LibraryServices& services) : services_(services) {
        services_.library->registerChangeObserver(services_.observer);
    }
    ~Watching() { services_.library->unregisterChangeObserver(services_.observer); }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

  private:
    LibraryServices& services_;
};

} // namespace quorvane::cli
