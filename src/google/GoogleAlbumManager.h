#pragma once

#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "google/GoogleAlbum.h"
#include "google/GoogleLibraryApi.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace quorvane {

/// Lists and creates Google Photos albums, remembers those seen, and keeps the target album (the
/// one that new media items are added to; none means the library stream). Any thread; operations
/// with a stop token block on the network.
class GoogleAlbumManager {
  public:
    GoogleAlbumManager(GoogleLibraryApi& api, Preferences& preferences, Log& log);

    /// The remembered albums in their order, then new ones: own before shared. What Google says now
    /// replaces what was remembered. A failing endpoint is logged and shortens the list; only the
    /// token provider's errors, `FileError` for the memory, and `Cancelled` are thrown.
    std::vector<GoogleAlbum> listAlbums(std::stop_token stop);

    /// True when a part of the last listing was refused (403). Google refuses everybody the shared
    /// albums, so this is no reason to ask the person for anything.
    bool hasInsufficientScopes() const { return hasInsufficientScopes_; }

    /// True when the last listing was refused the own albums for want of the reading scopes, which
    /// a new consent can give.
    bool lacksReadPermission() const;

    /// Why the last listing of the own albums ended early; none when it was whole.
    std::optional<Fault> listingFault() const;

    /// Makes an album, remembers it and makes it the target. Throws `GoogleError`,
    /// `TransportError`, `FileError`, the token provider's errors, or `Cancelled`.
    GoogleAlbum createAlbum(const QString& title, std::stop_token stop);

    /// `createAlbum` with the title that follows the target album's.
    GoogleAlbum createAndSelectNextPartAlbum(std::stop_token stop);

    /// Makes the newest album that earlier calls made to continue the target, or one that continued
    /// it, the target; where there is none, `createAndSelectNextPartAlbum`. One whose answer never
    /// came is found instead of made again. True when it is new. Throws what `createAlbum` throws.
    bool continueInNextPart(std::stop_token stop);

    /// "Aile" → "Aile - Parça 2" → "Aile - Parça 3".
    static QString nextPartTitle(const QString& title);

    /// Whether Google counts as many items in the album as one holds; false when it does not tell.
    /// Throws `Cancelled`.
    bool isFull(const QString& id, const std::stop_token& stop);

    /// Stores the target album; none is the library stream.
    void selectTargetAlbum(const std::optional<GoogleAlbum>& album);

    /// None when no album or an empty id is stored.
    std::optional<QString> targetAlbumID() const;

    /// The remembered albums; an unreadable memory is an empty one.
    std::vector<GoogleAlbum> getLocalCreatedAlbums() const;

  private:
    struct Listing {
        std::vector<GoogleAlbum> albums;
        bool insufficientScopes = false;
        std::optional<Fault> fault;
    };

    Listing fetchEndpointAlbums(const QString& path, const QString& jsonArrayKey,
                                const std::stop_token& stop);
    std::optional<QJsonObject> fetchPage(const QUrl& endpoint, const QString& pageToken,
                                         Listing& listing, const std::stop_token& stop);
    std::optional<GoogleAlbum> lostPart(const std::stop_token& stop);
    GoogleAlbum adopted(const GoogleAlbum& album);
    QJsonObject rolloverParts() const;
    void saveRolloverParts(const QJsonObject& parts);
    void saveLocalCreatedAlbum(const GoogleAlbum& album);
    void saveDiscoveredAlbums(const std::vector<GoogleAlbum>& albums);
    std::vector<GoogleAlbum> remember(const std::vector<GoogleAlbum>& fetched);

    GoogleLibraryApi& api_;
    Preferences& preferences_;
    Log& log_;
    std::atomic<bool> hasInsufficientScopes_ = false;
    Guarded<std::optional<Fault>> listingFault_;
    std::mutex memory_; ///< a change of the remembered list is one step; never held on the network
};

} // namespace quorvane
