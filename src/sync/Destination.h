#pragma once

#include "foundation/Date.h"
#include "foundation/Fault.h"
#include "google/UploadSource.h"
#include "library/RemoteItems.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace quorvane {

/// Uploaded bytes that are to become an item.
struct NewItem {
    QString uploadToken;
    QString fileName = {}; ///< empty leaves the name to the destination
    QString caption = {};  ///< becomes its description, as far as it fits
};

/// What became of one of them.
struct NewItemResult {
    enum class Outcome {
        created,       ///< carries the remote id
        alreadyExists, ///< made earlier from the same bytes; its id is not told
        refused,       ///< carries the reason
        heldBack,      ///< the target album is full
    };
    Outcome outcome = Outcome::refused;
    QString remoteID = {};
    QString reason = {};                 ///< for the record
    QString detail = {};                 ///< what the destination said, for the log
    std::optional<Fault> fault = {};     ///< whose fault it is that there is no item; none: its own
    std::optional<Date> filedUnder = {}; ///< the capture time that the destination read, if it says
};

/// The place that pictures are backed up to: one account, and the album in it that new items go to,
/// if one is the target. Any thread; every operation blocks. When a whole request fails, an `Error`
/// with the text for the records is thrown; a stop is `Cancelled`.
class Destination : public RemoteItems {
  public:
    using Progress = std::function<void(std::int64_t sent, std::int64_t total)>; ///< bytes

    /// Sends the bytes of a file and returns their upload token. A large upload that broke off goes
    /// on where `memory` knows. `progress` is called on this thread. Also throws `FileError`, and
    /// what the memory throws.
    virtual QString upload(const UploadSource& source, UploadMemory& memory,
                           const Progress& progress, std::stop_token stop) = 0;

    /// One result for each item, in their order.
    virtual std::vector<NewItemResult> create(const std::vector<NewItem>& items,
                                              std::stop_token stop) = 0;

    /// True when new items go into an album.
    virtual bool hasTargetAlbum() const = 0;

    /// Makes the album that continues the full one the target. False when it was there already.
    virtual bool makeNextAlbum(std::stop_token stop) = 0;
};

} // namespace quorvane
