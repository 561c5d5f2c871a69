#pragma once

#include "platform/bundle/PhotosDatabase.h"
#include "platform/bundle/SmartAlbums.h"

/// The albums and folders of a Photos database in PhotoKit's words. Pure.
namespace quorvane {

/// None for folders and for an import session that is empty by now.
std::optional<AssetCollection> collectionOf(const PhotosAlbum& album);
AssetCollection collectionOf(const SmartAlbum& album, int count);

/// Null when there is none.
const PhotosAlbum* find(const std::vector<PhotosAlbum>& albums, const QString& uuid);
const SmartAlbum* findSmart(const QString& identifier);

/// The albums and folders that stand directly in a folder; without a parent, at the top.
std::vector<const PhotosAlbum*> childrenOf(const std::vector<PhotosAlbum>& albums,
                                           const PhotosAlbum* parent);
std::vector<Collection> collectionsIn(const std::vector<PhotosAlbum>& albums,
                                      const PhotosAlbum* parent);
CollectionList listOf(const PhotosAlbum& folder);

} // namespace quorvane
