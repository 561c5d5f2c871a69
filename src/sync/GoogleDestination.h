#pragma once

#include "google/GoogleAlbumManager.h"
#include "google/GoogleMediaItems.h"
#include "google/GoogleUploadTask.h"
#include "sync/Destination.h"

namespace quorvane {

/// Google Photos. The target is the album that the album manager has stored as such.
class GoogleDestination final : public Destination {
  public:
    GoogleDestination(GoogleLibraryApi& api, GoogleAlbumManager& albums);

    QString upload(const UploadSource& source, UploadMemory& memory, const Progress& progress,
                   std::stop_token stop) override;
    std::vector<NewItemResult> create(const std::vector<NewItem>& items,
                                      std::stop_token stop) override;
    bool hasTargetAlbum() const override;
    bool makeNextAlbum(std::stop_token stop) override;
    std::optional<std::set<QString>> existing(const QStringList& remoteIDs,
                                              std::stop_token stop) override;

  private:
    GoogleUploadTask uploadTask_;
    GoogleMediaItems mediaItems_;
    GoogleAlbumManager& albums_;
};

} // namespace quorvane
