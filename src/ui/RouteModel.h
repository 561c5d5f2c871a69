#pragma once

#include "foundation/Preferences.h"
#include "foundation/TaskRunner.h"
#include "google/GoogleAlbumManager.h"
#include "ui/LibrarySession.h"
#include "ui/SettingsModel.h"

#include <QPointer>

namespace quorvane {

/// Where pictures come from and where they go, and what there is to choose from. Main thread; a
/// library and Google are asked in the background. An empty identifier is the whole library, or the
/// library stream.
class RouteModel final : public QObject {
    Q_OBJECT

  public:
    struct Services {
        GoogleAlbumManager& albums;
        Preferences& preferences;
        Log& log;
        SettingsModel& settings;
    };
    struct Route {
        QString sourceID;
        QString sourceTitle = QStringLiteral("Tüm Fotoğraflar");
        QString targetID;
        QString targetTitle = QStringLiteral("Google Fotoğraflar (Ana Akış)");
        bool operator==(const Route&) const = default;
    };

    explicit RouteModel(const Services& services) : s_(services) {}

    /// None before a library was chosen.
    void setLibrary(std::shared_ptr<const LibrarySession> session);
    /// Its albums and total are counted anew by the next refresh.
    void libraryDidChange();
    void refresh();

    const Route& route() const { return route_; }
    const std::vector<LocalAlbumItem>& localAlbums() const { return localAlbums_; }
    int totalPhotoCount() const { return totalPhotoCount_; }
    int sourceCount() const; ///< of the chosen source
    /// False where there is no such album. The source is to be scanned then.
    bool selectSource(const QString& id);

    const std::vector<GoogleAlbum>& googleAlbums() const { return googleAlbums_; }
    bool isLoadingAlbums() const { return isLoadingAlbums_; }
    bool lacksAlbumScopes() const { return lacksAlbumScopes_; }
    void loadAlbums();
    /// For an account whose albums nobody has asked for.
    void loadAlbumsOnce();
    void forgetAlbums();
    /// An unknown one changes nothing.
    void selectTarget(const QString& id);
    /// Makes the album and chooses it; `created` and `failed` are called on the main thread.
    void createAlbum(const QString& title, std::function<void(const GoogleAlbum&)> created,
                     std::function<void(const QString&)> failed);

    /// None for the library stream, and for an album that is not in the list.
    const GoogleAlbum* targetAlbum() const;
    bool isTargetFull() const;
    bool isTargetNearLimit() const;
    QString targetCountText() const; ///< "19.600 / 20.000"

    bool isWorking() { return !(libraryTasks_.isIdle() && googleTasks_.isIdle()); }

  Q_SIGNALS:
    void changed();
    void localAlbumsChanged();
    void googleAlbumsChanged();

  private:
    void readRoute();
    void countLibrary();
    void listAlbums(const LibrarySession& session, bool isAnew);
    void albumsLoaded(const std::optional<std::vector<GoogleAlbum>>& albums, bool lacksScopes);
    template <typename Work>
    void post(Work work);

    const Services s_;
    const QPointer<RouteModel> self_{this}; ///< none once the model is gone
    std::shared_ptr<const LibrarySession> session_;
    Route route_;
    std::vector<LocalAlbumItem> localAlbums_;
    int totalPhotoCount_ = 0;
    bool isLibraryStale_ = true;     ///< its albums and total are to be counted
    bool hasLibraryChanged_ = false; ///< since its albums were listed
    std::vector<GoogleAlbum> googleAlbums_;
    bool isLoadingAlbums_ = false;
    bool knowsAlbums_ = false; ///< of the account that is signed in
    bool lacksAlbumScopes_ = false;

    // Last: their work uses the rest. One thread each, so that nothing overtakes its like.
    TaskRunner libraryTasks_;
    TaskRunner googleTasks_;
};

} // namespace quorvane
