#pragma once

#include "foundation/Fault.h"
#include "google/GoogleLibraryApi.h"

#include <set>

namespace quorvane {

/// A media item that is to be made of uploaded bytes.
struct NewMediaItem {
    QString uploadToken;
    QString fileName;         ///< empty leaves the name to Google
    QString description = {}; ///< of any length; the first 1,000 characters are taken
};

/// What Google says about one of them.
struct NewMediaItemResult {
    bool isAnswered = false;               ///< false: the answer held nothing about this item
    QString id;                            ///< of the item; counts only while `code` is 0
    std::optional<Date> creationTime = {}; ///< the capture time that Google files it under
    qint64 code = 0;                       ///< google.rpc.Code, 0 for success
    QString statusText;                    ///< the whole status as JSON; empty when there was none
    std::optional<Fault> fault = {};       ///< why there is no item; none when there is one
};

/// The requests about media items of the Google Photos Library API. Any thread; blocks its caller.
/// Nothing is retried. Each throws `GoogleError`, `TransportError`, the token provider's errors, or
/// `Cancelled`.
class GoogleMediaItems {
  public:
    explicit GoogleMediaItems(GoogleLibraryApi& api) : api_(api) {}

    /// One result for each item, in their order. Without an album they go to the library alone.
    std::vector<NewMediaItemResult> batchCreate(const std::vector<NewMediaItem>& items,
                                                const std::optional<QString>& albumID,
                                                const std::stop_token& stop);

    /// Those of at most 50 `ids` that Google still has; none when the account does not allow to
    /// read. An answer that leaves one of them open is a `GoogleError`.
    std::optional<std::set<QString>> batchGet(const QStringList& ids, const std::stop_token& stop);

  private:
    GoogleLibraryApi& api_;
};

} // namespace quorvane
