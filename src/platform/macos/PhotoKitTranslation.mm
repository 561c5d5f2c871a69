#include "platform/macos/PhotoKitTranslation.h"

#import <CoreLocation/CoreLocation.h>

#include <algorithm>

namespace quorvane::photokit {

namespace {

/// Objects translated between two drains of what PhotoKit autoreleases.
constexpr NSUInteger translatedAtOnce = 500;

/// Frees a result's assets, and holds PhotoKit's result as long as they live.
struct Fetched {
    PHFetchResult<PHAsset*>* result; ///< retained

    void operator()(const std::vector<PhotoAsset>* assets) const {
        delete assets;
        [result release];
    }
};

std::optional<Date> dateOf(NSDate* date) {
    return date ? dateFromUnixSeconds([date timeIntervalSince1970]) : std::nullopt;
}

/// A negative vertical accuracy says that the altitude is not known.
std::optional<GeoLocation> placeOf(CLLocation* location) {
    if (!location)
        return std::nullopt;
    const CLLocationCoordinate2D place = [location coordinate];
    if (!CLLocationCoordinate2DIsValid(place))
        return std::nullopt;
    const double altitude = [location verticalAccuracy] < 0 ? 0 : [location altitude];
    return GeoLocation{place.latitude, place.longitude, altitude};
}

} // namespace

PhotoAsset assetOf(PHAsset* asset) {
    return {textOf([asset localIdentifier]),
            static_cast<AssetMediaType>([asset mediaType]),
            static_cast<std::uint32_t>([asset mediaSubtypes]),
            dateOf([asset creationDate]),
            dateOf([asset modificationDate]),
            placeOf([asset location])};
}

AssetCollection collectionOf(PHAssetCollection* collection) {
    const NSUInteger count = [collection estimatedAssetCount];
    return {textOf([collection localIdentifier]), textOf([collection localizedTitle]),
            static_cast<CollectionType>([collection assetCollectionType]),
            static_cast<int>([collection assetCollectionSubtype]),
            count == static_cast<NSUInteger>(NSNotFound) ? std::nullopt
                                                         : std::optional(static_cast<int>(count))};
}

CollectionList listOf(PHCollectionList* list) {
    return {textOf([list localIdentifier]), textOf([list localizedTitle]),
            static_cast<CollectionListType>([list collectionListType])};
}

std::vector<Collection> collectionsOf(PHFetchResult<PHCollection*>* result) {
    std::vector<Collection> collections;
    for (PHCollection* collection in result) {
        if ([collection isKindOfClass:[PHCollectionList class]])
            collections.emplace_back(listOf(static_cast<PHCollectionList*>(collection)));
        else if ([collection isKindOfClass:[PHAssetCollection class]])
            collections.emplace_back(collectionOf(static_cast<PHAssetCollection*>(collection)));
    }
    return collections;
}

PHAsset* findAsset(const QString& localIdentifier) {
    return [[PHAsset fetchAssetsWithLocalIdentifiers:@[ stringOf(localIdentifier) ]
                                             options:nil] firstObject];
}

AssetFetchResult resultOf(PHFetchResult<PHAsset*>* result, const std::stop_token& stop) {
    auto assets = std::make_unique<std::vector<PhotoAsset>>();
    const NSUInteger count = [result count];
    assets->reserve(count);
    for (NSUInteger first = 0; first < count; first += translatedAtOnce) {
        if (stop.stop_requested())
            throw Cancelled();
        @autoreleasepool {
            for (NSUInteger i = first; i < std::min(count, first + translatedAtOnce); ++i)
                assets->push_back(assetOf([result objectAtIndex:i]));
        }
    }
    return AssetFetchResult(assets.release(), Fetched{[result retain]});
}

PHFetchResult<PHAsset*>* fetchedOf(const AssetFetchResult& result) {
    const Fetched* fetched = std::get_deleter<Fetched>(result);
    return fetched ? fetched->result : nil;
}

} // namespace quorvane::photokit
