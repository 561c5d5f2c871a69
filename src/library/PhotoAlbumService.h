#pragma once

#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "foundation/TaskRunner.h"
#include "library/PhotoLibrary.h"
#include "library/PhotosAppScripts.h"

#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// One album that can be the source of the backup. The identifier is the library's own, or
/// "photos_app_album:" and the Photos application's album id.
struct LocalAlbumItem {
    QString id;
    QString title;
    int count = 0;
    bool isSmart = false; ///< filled by the library itself

    bool operator==(const LocalAlbumItem&) const = default;
};

/// The assets of a source.
struct SourceAssets {
    AssetFetchResult fetched;     ///< the library's own result, against which it tells of changes
    AssetFetchResult oldestFirst; ///< the same, in the order in which they are sent
};

/// Lists the albums a person may choose as the source, remembers the choice, and turns it into
/// assets. Failures are logged and yield empty lists. Any thread.
class PhotoAlbumService {
  public:
    /// `libraryIdentity` tells this library from every other. `photosApp` is none where there is no
    /// Photos application; else it must outlive this.
    PhotoAlbumService(PhotoLibrary& library, Preferences& preferences, Log& log,
                      QString libraryIdentity = {}, PhotosAppScripts* photosApp = nullptr);

    /// Builds the list of albums, keeps and returns it. Blocks.
    std::vector<LocalAlbumItem> performFetchLocalAlbums();

    /// The same in the background; `done` is called on the main thread.
    void refreshLocalAlbumsAsync(std::function<void(const std::vector<LocalAlbumItem>&)> done);

    /// The list last built; empty before the first.
    std::vector<LocalAlbumItem> cachedAlbums() const;

    /// None is the whole library. A choice that was made in another library does not hold here,
    /// which is logged.
    std::optional<QString> selectedSourceAlbumID() const;
    void setSelectedSourceAlbumID(const std::optional<QString>& albumID);
    /// False when the source that was chosen is an album of another library.
    bool ownsSelectedSource() const;
    /// The source of this process only.
    void selectForThisRun(const LocalAlbumItem& album);

    /// The album's assets. Those of the whole library when `albumID` is none or names an album that
    /// is no more. Throws `PhotoLibraryError` when the library cannot be read.
    SourceAssets fetchAssets(const std::optional<QString>& albumID, std::stop_token stop = {});

    /// Albums as the Photos application tells them; empty where there is none.
    std::vector<LocalAlbumItem> fetchApplePhotosAlbums();

    /// Local identifiers of the assets in one of the Photos application's albums.
    QStringList fetchItemIDsFromApplePhotos(const QString& albumID);

  private:
    std::vector<LocalAlbumItem> listAlbums();
    int assetCount(const AssetCollection& album);

    PhotoLibrary& library_;
    Preferences& preferences_;
    Log& log_;
    const QString libraryIdentity_;
    PhotosAppScripts* photosApp_;
    Guarded<std::vector<LocalAlbumItem>> cachedAlbums_;
    TaskRunner tasks_; ///< last: its work uses the rest
};

} // namespace quorvane
