#pragma once

#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "google/AccessTokenProvider.h"
#include "google/AlbumError.h"
#include "google/GoogleAlbum.h"
#include "google/GoogleEndpoints.h"
#include "google/HttpClient.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace quorvane {

/// Lists and creates Google Photos albums, remembers those seen, and keeps the target album (the
/// one that new media items are added to; none means the library stream). Any thread; operations
/// with a stop token block on the network.
class GoogleAlbumManager {
  public:
    GoogleAlbumManager(HttpClient& http, AccessTokenProvider& tokens, Preferences& preferences,
                       Log& log, const GoogleEndpoints& endpoints);

    /// The remembered albums in their order, then new ones: own before shared. What Google says now
    /// replaces what was remembered. A failing endpoint is logged and shortens the list; only the
    /// token provider's errors, `FileError` for the memory, and `Cancelled` are thrown.
    std::vector<GoogleAlbum> listAlbums(std::stop_token stop);

    /// True when a part of the last listing was refused (403). Google refuses everybody the shared
    /// albums, so this is no reason to ask the person for anything.
    bool hasInsufficientScopes() const { return hasInsufficientScopes_; }

    /// True when the last listing was refused the own albums for want of the reading scopes, which
    /// a new consent can give.
    bool lacksReadPermission() const { return lacksReadPermission_; }

    /// Makes an album, remembers it and makes it the target. Throws `AlbumError`, `TransportError`,
    /// `FileError`, the token provider's errors, or `Cancelled`.
    GoogleAlbum createAlbum(const QString& title, std::stop_token stop);

    /// `createAlbum` with the title that follows the target album's.
    GoogleAlbum createAndSelectNextPartAlbum(std::stop_token stop);

    /// "Aile" → "Aile - Parça 2" → "Aile - Parça 3".
    static QString nextPartTitle(const QString& title);

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
        bool isServiceDisabled = false; ///< the same status, for a project without the API
    };

    Listing fetchEndpointAlbums(const QUrl& endpoint, const QString& jsonArrayKey,
                                const QString& token, std::stop_token stop);
    std::optional<QJsonObject> fetchPage(const QUrl& endpoint, const QString& pageToken,
                                         const QString& token, Listing& listing,
                                         std::stop_token stop);
    void saveLocalCreatedAlbum(const GoogleAlbum& album);
    void saveDiscoveredAlbums(const std::vector<GoogleAlbum>& albums);
    std::vector<GoogleAlbum> remember(const std::vector<GoogleAlbum>& fetched);

    HttpClient& http_;
    AccessTokenProvider& tokens_;
    Preferences& preferences_;
    Log& log_;
    const QUrl albumsEndpoint_;
    const QUrl sharedAlbumsEndpoint_;
    std::atomic<bool> hasInsufficientScopes_ = false;
    std::atomic<bool> lacksReadPermission_ = false;
    std::mutex
        memory_; ///< makes a change of the remembered list one step; never held on the network
};

} // namespace quorvane
