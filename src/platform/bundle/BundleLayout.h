#pragma once

#include "foundation/File.h"
#include "library/LibraryChoices.h"
#include "platform/bundle/FoldersBeneath.h"
#include "platform/bundle/PhotosDatabase.h"

namespace quorvane {

/// Where the files of a Photos bundle lie, in all versions since macOS 10.15:
///
///   originals/DIR/FILE                     what the library itself holds; beside it the movie of a
///                                          live photo (UUID_3.mov), the RAW half of a pair
///                                          (UUID_4.*) and the edits' description (UUID_5.aae)
///   resources/renders/X/UUID_H_L_a.*       rendered edits; X is the first letter of the UUID
///   scopes/momentshared/originals/X/FILE   moment shares
///   scopes/syndication/originals/X/FILE    shared with you, not yet saved
///   scopes/cloudsharing/data/DIR/FILE      shared albums since macOS 13; before, below
///   resources/cloudsharing/data/DIR/FILE   `resources`. A movie there is UUID.medium.MP4, and
///                                          FILE may be its poster image
///   /anything                              referenced originals, which stand outside the bundle
///
/// Everything the database says is foreign: nothing outside the bundle is ever opened, save below
/// the place that a mapping names. Any thread.
class BundleLayout {
  public:
    BundleLayout(std::filesystem::path bundle, const LibraryChoices& choices)
        : bundle_(std::move(bundle)), choices_(choices) {}

    /// The resources of an asset, the original first: what the file system has, and the original
    /// (with the movie of a live photo) even when its bytes are not on this machine. A location is
    /// relative to the bundle, or absolute below the place of a mapping. Where the edited version
    /// was chosen, a render that is there comes before all others, under the original's name. The
    /// movie of that very version joins it where Motion Photos were chosen.
    std::vector<PhotoAssetResource> resources(const PhotosAssetFiles& asset) const;

    /// Why the original is not on this machine; none when it is, or when nobody can tell. `bundle`
    /// serves the calls for many assets.
    std::optional<AbsentOriginal> absence(const PhotosAssetFiles& asset,
                                          FoldersBeneath& bundle) const;

    /// Throws `FileError`.
    FileDescriptor open(const std::filesystem::path& location) const;
    std::filesystem::path pathOf(const std::filesystem::path& location) const {
        return bundle_ / location; // an absolute one replaces it
    }
    /// Bytes; none when it cannot be opened.
    std::optional<std::int64_t> sizeOf(const std::filesystem::path& location) const;

  private:
    struct Original {
        std::filesystem::path location; ///< where it is, or would be; empty where none can be
        std::optional<std::int64_t> size;
        std::optional<AbsentOriginal> absence;
    };
    Original originalOf(const PhotosAssetFiles& asset) const;
    Original referenced(const PhotosAssetFiles& asset) const;

    const std::filesystem::path bundle_;
    const LibraryChoices choices_;
};

} // namespace quorvane
