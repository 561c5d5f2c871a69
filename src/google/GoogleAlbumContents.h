#pragma once

#include "google/GoogleAlbum.h"
#include "google/GoogleLibraryApi.h"

#include <vector>

namespace quorvane {

/// The requests that put what is in the library into albums of this program. Nothing is remembered
/// and no target is chosen. Any thread; blocks its caller. Each throws `GoogleError`,
/// `TransportError`, the token provider's errors, or `Cancelled`.
class GoogleAlbumContents {
  public:
    static constexpr qsizetype atOnce = 50; ///< items in one request
    static constexpr qsizetype longestTitle = 500;

    explicit GoogleAlbumContents(GoogleLibraryApi& api) : api_(api) {}

    /// Every album that this program made and that is still there.
    std::vector<GoogleAlbum> ownAlbums(const std::stop_token& stop);

    GoogleAlbum make(const QString& title, const std::stop_token& stop);

    /// At most `atOnce` items that this program made, at the album's end: all of them or, with an
    /// `GoogleError`, none.
    void add(const QString& albumID, const QStringList& itemIDs, const std::stop_token& stop);

  private:
    HttpResponse post(const QString& path, const QJsonObject& body, const std::stop_token& stop);

    GoogleLibraryApi& api_;
};

} // namespace quorvane
