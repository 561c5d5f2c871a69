#include "library/AlbumCollector.h"

namespace quorvane {

namespace {

/// Smart albums nobody should choose; the whole library is offered apart.
bool isSkipped(const AssetCollection& album) {
    return album.type == CollectionType::smartAlbum &&
           (album.subtype == collectionSubtype::smartAlbumAllHidden ||
            album.subtype == collectionSubtype::smartAlbumUserLibrary ||
            album.subtype == collectionSubtype::smartAlbumUnableToUpload);
}

} // namespace

std::vector<AssetCollection> AlbumCollector::collect() {
    collectAlbums(CollectionType::album, collectionSubtype::albumRegular);
    collectAlbums(CollectionType::album, collectionSubtype::albumCloudShared);
    collectAlbums(CollectionType::album, collectionSubtype::albumSyncedAlbum);
    collectAlbums(CollectionType::album, collectionSubtype::albumImported);
    for (const Collection& collection : library_.fetchTopLevelUserCollections())
        collectCollection(collection);
    for (const CollectionListType type :
         {CollectionListType::folder, CollectionListType::smartFolder})
        for (const CollectionList& list : library_.fetchCollectionLists(type))
            extractAssetCollections(list);
    collectAlbums(CollectionType::smartAlbum, std::nullopt);
    return std::move(albums_);
}

void AlbumCollector::collectAlbums(CollectionType type, std::optional<int> subtype) {
    for (const AssetCollection& album : library_.fetchAssetCollections(type, subtype))
        take(album);
}

void AlbumCollector::collectCollection(const Collection& collection) {
    if (const auto* album = std::get_if<AssetCollection>(&collection))
        take(*album);
    else
        extractAssetCollections(std::get<CollectionList>(collection));
}

void AlbumCollector::extractAssetCollections(const CollectionList& list) {
    if (!seen_.insert(list.localIdentifier).second)
        return;
    for (const Collection& collection : library_.fetchCollections(list))
        collectCollection(collection);
}

void AlbumCollector::take(const AssetCollection& album) {
    if (!isSkipped(album) && seen_.insert(album.localIdentifier).second)
        albums_.push_back(album);
}

} // namespace quorvane
