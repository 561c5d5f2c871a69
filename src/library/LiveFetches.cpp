#include "library/LiveFetches.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace quorvane {

FetchResultChangeDetails differenceOf(const std::vector<PhotoAsset>& before,
                                      const AssetFetchResult& after) {
    const auto [oldRest, newRest] = std::ranges::mismatch(before, *after);
    const std::span<const PhotoAsset> old(oldRest, before.end());
    std::unordered_map<AssetIdentifier, const PhotoAsset*> gone;
    gone.reserve(old.size());
    for (const PhotoAsset& asset : old)
        gone.emplace(asset.localIdentifier, &asset);
    FetchResultChangeDetails details;
    details.fetchResultAfterChanges = after;
    for (const PhotoAsset& asset : std::span(newRest, after->end())) {
        const auto known = gone.find(asset.localIdentifier);
        if (known == gone.end()) {
            details.insertedObjects.push_back(asset);
            continue;
        }
        if (*known->second != asset)
            details.changedObjects.push_back(asset);
        gone.erase(known);
    }
    for (const PhotoAsset& asset : old)
        if (gone.contains(asset.localIdentifier))
            details.removedObjects.push_back(asset);
    return details;
}

AssetFetchResult LiveFetches::remember(AssetFetchResult result, Fetch again) {
    const auto entries = entries_.lock();
    std::erase_if(*entries, [](const Entry& entry) { return entry.result.expired(); });
    entries->push_back({result, std::move(again)});
    return result;
}

std::optional<FetchResultChangeDetails>
LiveFetches::changeDetails(const AssetFetchResult& before) const {
    Fetch again;
    {
        const auto entries = entries_.lock();
        const auto entry = std::ranges::find_if(
            *entries, [&](const Entry& e) { return e.result.lock() == before; });
        if (!before || entry == entries->end())
            return std::nullopt;
        again = entry->again;
    }
    const AssetFetchResult after = again();
    if (!after)
        return std::nullopt;
    FetchResultChangeDetails details = differenceOf(*before, after);
    if (details.insertedObjects.empty() && details.removedObjects.empty() &&
        details.changedObjects.empty())
        return std::nullopt;
    entries_.lock()->push_back({details.fetchResultAfterChanges, std::move(again)});
    return details;
}

} // namespace quorvane
