#include "ui/RouteModel.h"

#include "foundation/MainThread.h"
#include "ui/AlbumLimit.h"

#include <algorithm>

namespace quorvane {

namespace {

QString boolText(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString storedOr(const Preferences& preferences, const QString& key, const QString& fallback) {
    const QString value = preferences.string(key).value_or(QString());
    return value.isEmpty() ? fallback : value;
}

} // namespace

/// Runs `work` on the main thread, unless the model is gone by then. Any thread.
template <typename Work>
void RouteModel::post(Work work) {
    onMainThread([self = self_, work = std::move(work)] {
        if (self)
            work();
    });
}

void RouteModel::setLibrary(std::shared_ptr<const LibrarySession> session) {
    session_ = std::move(session);
    isLibraryStale_ = true;
    localAlbums_.clear();
    Q_EMIT localAlbumsChanged();
    Q_EMIT changed();
}

void RouteModel::libraryDidChange() {
    isLibraryStale_ = true;
    hasLibraryChanged_ = true;
}

void RouteModel::refresh() {
    readRoute();
    countLibrary();
}

void RouteModel::readRoute() {
    const Route none;
    const bool isForeign = session_ && !session_->albums.ownsSelectedSource();
    const auto text = [&](const QString& key, const QString& fallback) {
        return storedOr(s_.preferences, key, fallback);
    };
    const Route next{isForeign ? none.sourceID : text(preferenceKeys::sourceAlbumID, {}),
                     isForeign ? none.sourceTitle
                               : text(preferenceKeys::sourceAlbumTitle, none.sourceTitle),
                     text(preferenceKeys::targetAlbumID, {}),
                     text(preferenceKeys::targetAlbumTitle, none.targetTitle)};
    if (next == route_)
        return;
    route_ = next;
    Q_EMIT changed();
}

/// Albums and the total are read when the library is opened and when it changed: on a large library
/// that takes seconds.
void RouteModel::countLibrary() {
    if (!session_ || !isLibraryStale_)
        return;
    isLibraryStale_ = false;
    libraryTasks_.post([this, session = session_,
                        isAnew = std::exchange(hasLibraryChanged_, false)](const std::stop_token&) {
        try {
            listAlbums(*session, isAnew);
            const AuthorizationStatus status = session->run.library.authorizationStatus();
            if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited)
                return;
            const int total = static_cast<int>(session->run.library.fetchAssets()->size());
            post([this, session, total] {
                if (session != session_ || total == totalPhotoCount_)
                    return;
                totalPhotoCount_ = total;
                Q_EMIT localAlbumsChanged();
            });
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Kitaplık okunamadı: ") +
                       error.localizedDescription());
        }
    });
}

void RouteModel::listAlbums(const LibrarySession& session, bool isAnew) {
    std::vector<LocalAlbumItem> albums = session.albums.cachedAlbums();
    if (albums.empty() || isAnew)
        albums = session.albums.performFetchLocalAlbums();
    post([this, of = &session, albums = std::move(albums)] {
        if (of != session_.get() || albums == localAlbums_)
            return;
        localAlbums_ = albums;
        Q_EMIT localAlbumsChanged();
    });
}

int RouteModel::sourceCount() const {
    const auto selected = std::ranges::find(localAlbums_, route_.sourceID, &LocalAlbumItem::id);
    return selected == localAlbums_.end() ? totalPhotoCount_ : selected->count;
}

bool RouteModel::selectSource(const QString& id) {
    const auto album = std::ranges::find(localAlbums_, id, &LocalAlbumItem::id);
    if (!session_ || (!id.isEmpty() && album == localAlbums_.end()))
        return false;
    const QString title = id.isEmpty() ? Route().sourceTitle : album->title;
    s_.settings.store([&] {
        session_->albums.setSelectedSourceAlbumID(id.isEmpty() ? std::nullopt : std::optional(id));
        s_.preferences.setString(preferenceKeys::sourceAlbumTitle, title);
    });
    readRoute();
    return true;
}

void RouteModel::selectTarget(const QString& id) {
    const auto album = std::ranges::find(googleAlbums_, id, &GoogleAlbum::id);
    if (!id.isEmpty() && album == googleAlbums_.end())
        return;
    s_.settings.store(
        [&] { s_.albums.selectTargetAlbum(id.isEmpty() ? std::nullopt : std::optional(*album)); });
    readRoute();
}

void RouteModel::loadAlbumsOnce() {
    if (googleAlbums_.empty() && !knowsAlbums_)
        loadAlbums();
}

void RouteModel::forgetAlbums() {
    knowsAlbums_ = false;
    googleAlbums_.clear();
    Q_EMIT googleAlbumsChanged();
}

void RouteModel::loadAlbums() {
    if (std::exchange(isLoadingAlbums_, true))
        return;
    Q_EMIT googleAlbumsChanged();
    googleTasks_.post([this](const std::stop_token& end) {
        std::optional<std::vector<GoogleAlbum>> albums;
        try {
            albums = s_.albums.listAlbums(end);
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Google albümleri alınamadı: ") +
                       error.localizedDescription());
        }
        post([this, albums, lacksScopes = s_.albums.lacksReadPermission()] {
            albumsLoaded(albums, lacksScopes);
        });
    });
}

void RouteModel::albumsLoaded(const std::optional<std::vector<GoogleAlbum>>& albums,
                              bool lacksScopes) {
    isLoadingAlbums_ = false;
    knowsAlbums_ = true; // also after a failure: the person asks again
    if (albums) {
        googleAlbums_ = *albums;
        lacksAlbumScopes_ = lacksScopes;
        s_.log.log(QStringLiteral("[MenuBarViewModel] %1 Google albümü yüklendi (scopeEksik: %2)")
                       .arg(albums->size())
                       .arg(boolText(lacksScopes)));
    }
    Q_EMIT googleAlbumsChanged();
}

void RouteModel::createAlbum(const QString& title, std::function<void(const GoogleAlbum&)> created,
                             std::function<void(const QString&)> failed) {
    googleTasks_.post([this, title, created = std::move(created),
                       failed = std::move(failed)](const std::stop_token& end) {
        try {
            const GoogleAlbum album = s_.albums.createAlbum(title, end);
            post([this, album, created] {
                std::erase_if(googleAlbums_,
                              [&](const GoogleAlbum& known) { return known.id == album.id; });
                googleAlbums_.push_back(album);
                Q_EMIT googleAlbumsChanged();
                readRoute();
                created(album);
            });
        } catch (const Error& error) {
            post([failed, text = error.localizedDescription()] { failed(text); });
        }
    });
}

const GoogleAlbum* RouteModel::targetAlbum() const {
    if (route_.targetID.isEmpty())
        return nullptr;
    const auto selected = std::ranges::find(googleAlbums_, route_.targetID, &GoogleAlbum::id);
    return selected == googleAlbums_.end() ? nullptr : &*selected;
}

bool RouteModel::isTargetFull() const {
    const GoogleAlbum* album = targetAlbum();
    return album != nullptr && albumLimit::isFull(album->itemCount());
}

bool RouteModel::isTargetNearLimit() const {
    const GoogleAlbum* album = targetAlbum();
    return album != nullptr && albumLimit::isNear(album->itemCount());
}

QString RouteModel::targetCountText() const {
    const GoogleAlbum* album = targetAlbum();
    return album == nullptr ? QString()
                            : album->formattedCountString() + QStringLiteral(" / 20.000");
}

} // namespace quorvane
