#pragma once

#include "library/DateEvidence.h"
#include "library/PhotoLibrary.h"
#include "metadata/MediaMetadataService.h"
#include "store/RecordDates.h"

namespace quorvane {

/// An item that was held back for want of a date, and what speaks for one.
struct UndatedItem {
    SyncRecord record;
    QString name;             ///< in the library; the identifier of what is not there any more
    QString folder;           ///< inside a folder library
    bool isUndatable = false; ///< its file takes no date: nothing speaks for one
    std::vector<DateEvidence> evidence; ///< the strongest first
};

/// Not owned.
struct UndatedServices {
    DatabaseManager& db;
    PhotoLibrary& library;
    MediaMetadataService& metadata;
    const std::filesystem::path& root; ///< of the library
    Clock& clock;
};

/// Every held back item, in the order of the library, those that left it last. Lists the library
/// once; of the other items only those are opened whose date was never noted, and at most
/// `filesRead` of them. Throws `PhotoLibraryError`, `DBError`, and `Cancelled`. Any thread; blocks.
std::vector<UndatedItem> reviewUndated(const UndatedServices& services,
                                       const std::stop_token& stop = {}, int filesRead = 20000);

} // namespace quorvane
