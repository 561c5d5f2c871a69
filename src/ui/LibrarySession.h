#pragma once

#include "library/PhotoAlbumService.h"
#include "library/PhotoLibraryObserver.h"
#include "sync/SyncCoordinator.h"

namespace quorvane {

/// The library that is open and the engine over it. Held by shared pointer: work in the background
/// keeps the services behind these references alive while it runs.
struct LibrarySession {
    PhotoLibrary& library;
    PhotoAlbumService& albums;
    PhotoLibraryObserver& observer;
    SyncCoordinator& coordinator;
    RunFlags& flags;
};

} // namespace quorvane
