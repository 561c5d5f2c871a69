#pragma once

#include "store/HeldRecords.h"
#include "ui/LibrarySession.h"

namespace quorvane {

/// One held back item as a person sees it.
struct HeldItem {
    HeldRecord held;
    QString name;               ///< in the library; the identifier of what is not there any more
    std::filesystem::path file; ///< its original; empty where this machine has none
    bool isMovie = false;
    QString reason; ///< why, and what to do; whole sentences
};

/// Reads those of the places in the store that are still held back. Throws `DBError`. Any thread;
/// blocks.
std::map<std::int64_t, HeldItem> readHeldItems(const LibrarySession& session,
                                               const std::vector<std::int64_t>& places, Date now);

} // namespace quorvane
