#pragma once

#include "library/LibraryChoices.h"
#include "library/PhotoAlbumService.h"
#include "sync/SyncRun.h"

namespace quorvane {

/// A library that was chosen and is not where it was.
struct AwayLibrary {
    std::filesystem::path root;
    bool isBundle = false;   ///< as its name says
    Date since{};            ///< when that was noticed
    StoreCounts counts = {}; ///< of its state
};

/// The library that is open, with the state of the account. Held by shared pointer: work in the
/// background keeps the services behind these references alive while it runs.
struct LibrarySession {
    SyncRunServices run;
    RecordLife& life;
    PhotoAlbumService& albums;
    MediaMetadataService& metadata;
    std::filesystem::path root; ///< of the library
    LibraryChoices choices = {};
    bool isBundle = false; ///< a Photos bundle
    /// Remembers other choices, and opens the library again with them. Main thread.
    std::function<void(const LibraryChoices&)> choose = [](const LibraryChoices&) {};
};

/// A run that came to its end.
struct FinishedRun {
    std::shared_ptr<const LibrarySession> session = {};
    SyncRunOutcome outcome = {};
    Date end{};
    double seconds = 0;
};

} // namespace quorvane
