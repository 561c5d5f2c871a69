#pragma once

#include "foundation/Guarded.h"
#include "library/PhotoLibrary.h"

#include <functional>

namespace quorvane {

/// What came, went and is different, in linear time, and in memory only for what is not alike at
/// the beginning.
FetchResultChangeDetails differenceOf(const std::vector<PhotoAsset>& before,
                                      const AssetFetchResult& after);

/// The fetch results that a library handed out and that somebody still holds, each with the way to
/// fetch it again. So a change can be told against the very result that the observer has. Any
/// thread.
class LiveFetches final : public LibraryChange {
  public:
    /// None when the library is known to be as it was at the last fetch.
    using Fetch = std::function<AssetFetchResult()>;

    /// Returns `result`. `again` fetches what there is now, cheaply and without `remember`.
    AssetFetchResult remember(AssetFetchResult result, Fetch again);

    /// None when the same assets are there as before, in whatever order, or when `before` is
    /// nobody's. Throws what the fetch throws.
    std::optional<FetchResultChangeDetails>
    changeDetails(const AssetFetchResult& before) const override;

  private:
    struct Entry {
        std::weak_ptr<const std::vector<PhotoAsset>> result;
        Fetch again;
    };

    mutable Guarded<std::vector<Entry>> entries_; ///< not locked while a result is fetched again
};

} // namespace quorvane
