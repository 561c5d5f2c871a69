#include "platform/macos/PhotoKitLibrary.h"

#include "platform/macos/Answer.h"
#include "platform/macos/PhotoKitResources.h"
#include "platform/macos/PhotoKitTranslation.h"

#include <map>

namespace quorvane {

using namespace photokit;

namespace {

PHFetchOptions* oldestFirst() {
    auto* options = [[[PHFetchOptions alloc] init] autorelease];
    [options setSortDescriptors:@[ [NSSortDescriptor sortDescriptorWithKey:@"creationDate"
                                                                 ascending:YES] ]];
    return options;
}

PHAssetCollection* findCollection(const QString& localIdentifier) {
    return
        [[PHAssetCollection fetchAssetCollectionsWithLocalIdentifiers:@[ stringOf(localIdentifier) ]
                                                              options:nil] firstObject];
}

} // namespace

PhotoKitLibrary::PhotoKitLibrary(DeletionConfirmation& confirmation, Log& log)
    : confirmation_(confirmation), changes_(log) {}

AuthorizationStatus PhotoKitLibrary::authorizationStatus() const {
    return static_cast<AuthorizationStatus>(
        [PHPhotoLibrary authorizationStatusForAccessLevel:PHAccessLevelReadWrite]);
}

std::optional<AuthorizationStatus>
PhotoKitLibrary::requestAuthorization(const std::stop_token& stop) {
    const auto answer = std::make_shared<Answer<AuthorizationStatus>>();
    @autoreleasepool {
        [PHPhotoLibrary
            requestAuthorizationForAccessLevel:PHAccessLevelReadWrite
                                       handler:^(PHAuthorizationStatus status) {
                                         answer->give(static_cast<AuthorizationStatus>(status));
                                       }];
    }
    return answer->wait(stop);
}

void PhotoKitLibrary::requireReadable() const {
    const AuthorizationStatus status = authorizationStatus();
    if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited)
        throw PhotoLibraryError(QStringLiteral("Fotoğraflar arşivine erişim izni yok"));
}

AssetFetchResult PhotoKitLibrary::fetchAssets(std::stop_token stop) {
    requireReadable();
    @autoreleasepool {
        return resultOf([PHAsset fetchAssetsWithOptions:oldestFirst()], stop);
    }
}

AssetFetchResult PhotoKitLibrary::fetchAssets(const AssetCollection& collection) {
    requireReadable();
    @autoreleasepool {
        PHAssetCollection* found = findCollection(collection.localIdentifier);
        if (!found)
            return std::make_shared<const std::vector<PhotoAsset>>();
        return resultOf([PHAsset fetchAssetsInAssetCollection:found options:nil]);
    }
}

/// PhotoKit answers in an order of its own.
AssetFetchResult PhotoKitLibrary::fetchAssets(const QStringList& localIdentifiers) {
    requireReadable();
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    @autoreleasepool {
        std::map<QString, PhotoAsset> found;
        for (PHAsset* asset in [PHAsset fetchAssetsWithLocalIdentifiers:stringsOf(localIdentifiers)
                                                                options:nil])
            found.emplace(textOf([asset localIdentifier]), assetOf(asset));
        for (const QString& identifier : localIdentifiers)
            if (const auto asset = found.find(identifier); asset != found.end())
                assets->push_back(asset->second);
    }
    return assets;
}

std::vector<AssetCollection> PhotoKitLibrary::fetchAssetCollections(CollectionType type,
                                                                    std::optional<int> subtype) {
    requireReadable();
    @autoreleasepool {
        std::vector<AssetCollection> collections;
        for (PHAssetCollection* collection in [PHAssetCollection
                 fetchAssetCollectionsWithType:static_cast<PHAssetCollectionType>(type)
                                       subtype:subtype
                                                   ? static_cast<PHAssetCollectionSubtype>(*subtype)
                                                   : PHAssetCollectionSubtypeAny
                                       options:nil])
            collections.push_back(collectionOf(collection));
        return collections;
    }
}

std::optional<AssetCollection>
PhotoKitLibrary::fetchAssetCollection(const QString& localIdentifier) {
    requireReadable();
    @autoreleasepool {
        PHAssetCollection* found = findCollection(localIdentifier);
        return found ? std::optional(collectionOf(found)) : std::nullopt;
    }
}

std::vector<Collection> PhotoKitLibrary::fetchTopLevelUserCollections() {
    requireReadable();
    @autoreleasepool {
        return collectionsOf([PHCollection fetchTopLevelUserCollectionsWithOptions:nil]);
    }
}

std::vector<CollectionList> PhotoKitLibrary::fetchCollectionLists(CollectionListType type) {
    requireReadable();
    @autoreleasepool {
        std::vector<CollectionList> lists;
        for (PHCollectionList* list in
             [PHCollectionList fetchCollectionListsWithType:static_cast<PHCollectionListType>(type)
                                                    subtype:PHCollectionListSubtypeAny
                                                    options:nil])
            lists.push_back(listOf(list));
        return lists;
    }
}

std::vector<Collection> PhotoKitLibrary::fetchCollections(const CollectionList& list) {
    requireReadable();
    @autoreleasepool {
        PHCollectionList* found = [[PHCollectionList
            fetchCollectionListsWithLocalIdentifiers:@[ stringOf(list.localIdentifier) ]
                                             options:nil] firstObject];
        if (!found)
            return {};
        return collectionsOf([PHCollection fetchCollectionsInCollectionList:found options:nil]);
    }
}

std::optional<AssetFacts> PhotoKitLibrary::factsOf(const QString& localIdentifier) {
    requireReadable();
    @autoreleasepool {
        PHAsset* asset = findAsset(localIdentifier);
        return asset ? std::optional(assetOf(asset).facts()) : std::nullopt;
    }
}

std::vector<PhotoAssetResource> PhotoKitLibrary::assetResources(const PhotoAsset& asset) {
    requireReadable();
    return resourcesOf(asset.localIdentifier);
}

std::optional<std::int64_t> PhotoKitLibrary::sampleOf(const PhotoAssetResource&) {
    return std::nullopt;
}

std::optional<FileVersion> PhotoKitLibrary::versionOf(const PhotoAssetResource& resource) {
    return photokit::versionOf(resource);
}

void PhotoKitLibrary::registerChangeObserver(LibraryChangeObserver& observer) {
    changes_.observe(observer);
}

void PhotoKitLibrary::unregisterChangeObserver(LibraryChangeObserver& observer) {
    changes_.unobserve(observer);
}

} // namespace quorvane
