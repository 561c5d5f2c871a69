#pragma once

#include "library/PhotoLibrary.h"

#include <set>
#include <vector>

namespace quorvane {

/// Gathers a library's albums from all the places where it lists them, each once, in the order of
/// first appearance. Not shared between threads. Throws `PhotoLibraryError`.
class AlbumCollector {
  public:
    explicit AlbumCollector(PhotoLibrary& library) : library_(library) {}

    std::vector<AssetCollection> collect();

  private:
    void collectAlbums(CollectionType type, std::optional<int> subtype);
    /// An album is taken, a folder is walked; each once, so that folders in a circle end.
    void collectCollection(const Collection& collection);
    void extractAssetCollections(const CollectionList& list);
    void take(const AssetCollection& album);

    PhotoLibrary& library_;
    std::set<QString> seen_; ///< identifiers of albums and folders
    std::vector<AssetCollection> albums_;
};

} // namespace quorvane
