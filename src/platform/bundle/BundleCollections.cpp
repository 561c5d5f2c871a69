#include "platform/bundle/BundleCollections.h"

#include "library/LocalIdentifier.h"

#include <algorithm>

namespace quorvane {

using namespace localIdentifier;

namespace {

/// PhotoKit's type and subtype; none for folders and for an import session that is empty by now.
std::optional<std::pair<CollectionType, int>> typeOf(const PhotosAlbum& album) {
    using namespace collectionSubtype;
    switch (album.kind) {
    case PhotosAlbum::album:
        return {{CollectionType::album, albumRegular}};
    case PhotosAlbum::sharedAlbum:
        return {{CollectionType::album, albumCloudShared}};
    case PhotosAlbum::importSession:
        if (album.count == 0)
            return std::nullopt;
        return {{CollectionType::album, albumImported}};
    case PhotosAlbum::smartAlbum:
        return {{CollectionType::smartAlbum, smartAlbumRegular}};
    default:
        return std::nullopt;
    }
}

QString titleOf(const PhotosAlbum& album) {
    if (album.kind != PhotosAlbum::importSession || !album.title.isEmpty())
        return album.title;
    return album.started ? QStringLiteral("İçe Aktarma %1").arg(describe(*album.started).left(10))
                         : QStringLiteral("İçe Aktarma");
}

} // namespace

std::optional<AssetCollection> collectionOf(const PhotosAlbum& album) {
    const auto type = typeOf(album);
    if (!type)
        return std::nullopt;
    return AssetCollection{album.uuid + albumTail, titleOf(album), type->first, type->second,
                           album.count};
}

AssetCollection collectionOf(const SmartAlbum& album, int count) {
    return {album.identifier(), QString::fromUtf8(album.title), CollectionType::smartAlbum,
            album.subtype, count};
}

const PhotosAlbum* find(const std::vector<PhotosAlbum>& albums, const QString& uuid) {
    const auto found = std::ranges::find(albums, uuid, &PhotosAlbum::uuid);
    return found == albums.end() ? nullptr : &*found;
}

const SmartAlbum* findSmart(const QString& identifier) {
    const auto found = std::ranges::find_if(
        smartAlbums(), [&](const SmartAlbum& album) { return album.identifier() == identifier; });
    return found == smartAlbums().end() ? nullptr : &*found;
}

std::vector<const PhotosAlbum*> childrenOf(const std::vector<PhotosAlbum>& albums,
                                           const PhotosAlbum* parent) {
    std::vector<const PhotosAlbum*> children;
    const auto isTop = [&](const PhotosAlbum& album) {
        return !album.parent || std::ranges::any_of(albums, [&](const PhotosAlbum& other) {
            return other.kind == PhotosAlbum::rootFolder && other.key == *album.parent;
        });
    };
    for (const PhotosAlbum& album : albums)
        if ((album.kind == PhotosAlbum::album || album.kind == PhotosAlbum::folder) &&
            (parent ? album.parent == parent->key : isTop(album)))
            children.push_back(&album);
    return children;
}

CollectionList listOf(const PhotosAlbum& folder) {
    return {folder.uuid + folderTail, folder.title, CollectionListType::folder};
}

std::vector<Collection> collectionsIn(const std::vector<PhotosAlbum>& albums,
                                      const PhotosAlbum* parent) {
    std::vector<Collection> collections;
    for (const PhotosAlbum* child : childrenOf(albums, parent)) {
        if (child->kind == PhotosAlbum::folder)
            collections.emplace_back(listOf(*child));
        else if (auto collection = collectionOf(*child))
            collections.emplace_back(std::move(*collection));
    }
    return collections;
}

} // namespace quorvane
