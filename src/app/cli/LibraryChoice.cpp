#include "app/cli/LibraryChoice.h"

#include "foundation/File.h"
#include "platform/folder/FolderIdentity.h"

#include <algorithm>
#include <set>

namespace quorvane::cli {

namespace {

std::optional<std::filesystem::path> firstBundle(const std::filesystem::path& pictures) {
    std::set<std::filesystem::path> bundles;
    std::error_code ignored; // an unreadable Pictures folder holds no bundle for us
    for (const auto& entry : std::filesystem::directory_iterator(pictures, ignored))
        if (entry.path().extension() == ".photoslibrary")
            bundles.insert(entry.path());
    return bundles.empty() ? std::nullopt : std::optional(*bundles.begin());
}

/// The one album whose identifier or title is `wanted`.
template <typename Album, typename Title>
const Album& findOne(const std::vector<Album>& albums, const QString& wanted, Title&& titleOf) {
    const auto byID = std::ranges::find(albums, wanted, &Album::id);
    if (byID != albums.end())
        return *byID;
    const Album* found = nullptr;
    for (const Album& album : albums) {
        if (titleOf(album) != wanted)
            continue;
        if (found != nullptr)
            throw Error(QStringLiteral("Bu adda birden çok albüm var, kimliğini verin: ") + wanted);
        found = &album;
    }
    if (found == nullptr)
        throw Error(QStringLiteral("Albüm bulunamadı: ") + wanted);
    return *found;
}

} // namespace

std::filesystem::path chooseLibrary(const std::optional<QString>& named, const CoreServices& core) {
    if (named == pathText(PhotosApp::libraryPath))
        return PhotosApp::libraryPath;
    if (named) {
        std::filesystem::path path = std::filesystem::absolute(pathFrom(*named));
        if (!std::filesystem::is_directory(path))
            throw Error(QStringLiteral("Arşiv bulunamadı: ") + pathText(path));
        if (isStagingFolder(path))
            throw Error(QStringLiteral("Bu klasör Quorvane'in kendi kopyalarını tutar, arşiv "
                                       "olamaz: ") +
                        pathText(path));
        return path;
    }
    if (const auto remembered = rememberedLibrary(core)) {
        if (!isThere(*remembered))
            throw Error(QStringLiteral("Son kullanılan arşiv artık yerinde değil: ") +
                        pathText(*remembered));
        return *remembered;
    }
    if (const auto bundle = firstBundle(core.folders.pictures))
        return *bundle;
    throw Error(QStringLiteral("Arşiv seçilmedi: --library ile bir Fotoğraflar arşivi veya resim "
                               "klasörü verin"));
}

void applyChoices(const Arguments& arguments, LibraryAt& library) {
    for (const auto& name : {QStringLiteral("originals"), QStringLiteral("versions"),
                             QStringLiteral("live"), QStringLiteral("captions")})
        if (arguments.has(name) && !library.isBundle())
            throw UsageError(
                QStringLiteral("--%1 yalnızca bir Fotoğraflar arşivinde geçerlidir: %2")
                    .arg(name, pathText(library.path())));
    LibraryChoices& choices = library.choices;
    if (const auto mapping = arguments.value(QStringLiteral("originals")))
        choices.add(OriginalsMapping::parse(*mapping));
    if (arguments.has(QStringLiteral("mirror-albums")))
        choices.mirrorAlbums = true;
    if (arguments.has(QStringLiteral("no-mirror-albums")))
        choices.mirrorAlbums = false;
    if (arguments.has(QStringLiteral("captions")))
        choices.captions = true;
    if (arguments.has(QStringLiteral("no-captions")))
        choices.captions = false;
    if (const auto live = arguments.value(QStringLiteral("live")))
        choices.live =
            *live == u"motion" ? LibraryChoices::Live::motion : LibraryChoices::Live::still;
    if (const auto versions = arguments.value(QStringLiteral("versions")))
        choices.versions = *versions == u"edited" ? LibraryChoices::Versions::edited
                                                  : LibraryChoices::Versions::original;
}

void requireOneUseOfAlbums(const LibraryChoices& choices, const GoogleAlbumManager& albums) {
    if (choices.mirrorAlbums && albums.targetAlbumID())
        throw Error(QStringLiteral("Albümler hedef albümle birlikte Google'a taşınamaz: ya hedef "
                                   "albümü kaldırın ya da --no-mirror-albums verin"));
}

std::vector<OptionSpec> choiceOptions() {
    return {{QStringLiteral("mirror-albums"),
             {},
             QStringLiteral("arşivin her albümü Google Photos'ta da bir albüm olur (hatırlanır)")},
            {QStringLiteral("no-mirror-albums"), {}, QStringLiteral("bunu yeniden kapatır")},
            {QStringLiteral("versions"),
             QStringLiteral("SÜRÜM"),
             QStringLiteral("düzenlenmiş öğelerin hangi hali yüklenir (hatırlanır)"),
             {QStringLiteral("original"), QStringLiteral("edited")}},
            {QStringLiteral("live"),
             QStringLiteral("BİÇİM"),
             QStringLiteral("canlı fotoğraflar: yalnızca fotoğrafı (still) ya da videosuyla tek "
                            "dosyada, Google'ın oynattığı Motion Photo olarak (hatırlanır)"),
             {QStringLiteral("still"), QStringLiteral("motion")}},
            {QStringLiteral("captions"),
             {},
             QStringLiteral("arşivde yazılan açıklamalar Google Photos'a da yazılır (hatırlanır)")},
            {QStringLiteral("no-captions"), {}, QStringLiteral("bunu yeniden kapatır")},
            {QStringLiteral("originals"), QStringLiteral("ESKİ=YENİ"),
             QStringLiteral("arşivin dışında duran özgün dosyalar: arşivin yazdığı yer ve buradaki "
                            "yeri (hatırlanır)")}};
}

void rememberLibrary(const SourceServices& library, Preferences& preferences) {
    preferences.setString(preferenceKeys::libraryPath, pathText(library.path));
    preferences.setString(preferenceKeys::libraryIdentity, library.identity);
    library.choices.save(library.identity, preferences);
}

std::optional<StatePlace> rememberedState(const CoreServices& core,
                                          const AccountIdentity& account) {
    const auto identity = core.preferences.string(preferenceKeys::libraryIdentity);
    if (identity)
        return core.states.find(*identity, account);
    const StatePlace first = core.states.first();
    std::error_code unreachable;
    const bool isThere = std::filesystem::exists(first.database, unreachable) || unreachable;
    return isThere ? std::optional(first) : std::nullopt;
}

void chooseSourceAlbum(const QString& idOrTitle, PhotoAlbumService& albums) {
    const std::vector<LocalAlbumItem> all = albums.performFetchLocalAlbums();
    albums.selectForThisRun(
        findOne(all, idOrTitle, [](const LocalAlbumItem& item) { return item.title; }));
}

std::vector<GoogleAlbum> listedAlbums(GoogleAlbumManager& albums, const std::stop_token& stop) {
    auto all = albums.listAlbums(stop);
    const auto fault = albums.listingFault();
    if (fault && !albums.lacksReadPermission())
        throw Error(QStringLiteral("Google albümleri alınamadı: ") + faultText(*fault), fault);
    return all;
}

void chooseTargetAlbum(const QString& idOrTitle, GoogleAlbumManager& albums,
                       Preferences& preferences, std::stop_token stop) {
    const std::vector<GoogleAlbum> all = listedAlbums(albums, stop);
    const GoogleAlbum& album = findOne(
        all, idOrTitle, [](const GoogleAlbum& item) { return item.title.value_or(QString()); });
    preferences.setVolatile(preferenceKeys::targetAlbumID, album.id);
    preferences.setVolatile(preferenceKeys::targetAlbumTitle, album.title.value_or(QString()));
}

} // namespace quorvane::cli
