#pragma once

#include "foundation/Log.h"
#include "library/PhotoLibrary.h"
#include "store/KnownContents.h"
#include "store/RecordLife.h"
#include "sync/Destination.h"

#include <map>
#include <set>

namespace quorvane {

/// Recognises originals whose very bytes are at the destination already, or on their way there:
/// moved, renamed or copied files, and those of another library. An original is read whole for it
/// only when one of the same sample is known. One thread at a time.
class Recognition {
  public:
    Recognition(PhotoLibrary& library, KnownContents& known, RecordLife& life,
                Destination& destination, RemoteItems& remote, Log& log)
        : library_(library),
          known_(known),
          life_(life),
          destination_(destination),
          remote_(remote),
          log_(log) {}

    struct Result {
        int recognised = 0;        ///< records that became VERIFIED
        std::set<QString> waiting; ///< assets whose bytes another record is about to send
    };

    /// Looks at the DISCOVERED ones of `records`, in their order. With a target album nothing is
    /// recognised: the item is wanted there. What cannot be read or asked counts as unknown. Throws
    /// `DBError`, or `Cancelled`.
    Result examine(const std::vector<SyncRecord>& records, const std::stop_token& stop);

  private:
    struct Candidate {
        const SyncRecord* record;
        SourceContent content;
        QString remoteID;
        int behind;
    };
    struct Original {
        const SyncRecord* record;
        PhotoAssetResource resource;
        std::int64_t sample;
        int behind; ///< see `remainderOf`
    };

    std::vector<PhotoAssetResource> resourcesOf(const SyncRecord& record);
    std::optional<SourceContent> contentOf(const SyncRecord& record,
                                           const PhotoAssetResource& resource,
                                           const std::stop_token& stop);
    int confirm(const std::vector<Candidate>& candidates, const std::stop_token& stop);

    PhotoLibrary& library_;
    KnownContents& known_;
    RecordLife& life_;
    Destination& destination_;
    RemoteItems& remote_;
    Log& log_;
    std::map<QString, SourceContent> contents_; ///< by asset, of the records looked at last
};

} // namespace quorvane
