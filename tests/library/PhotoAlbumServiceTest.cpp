#include "library/PhotoAlbumService.h"
#include "FakePhotoLibrary.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <thread>

namespace quorvane::test {

namespace {

const QString tag = QStringLiteral("[PhotoAlbumService] ");

class FakeScripts final : public PhotosAppScripts {
  public:
    QString run(const QString& program) override {
        programs.append(program);
        if (fail)
            fail();
        return answer;
    }
    QString answer;
    std::function<void()> fail;
    QStringList programs;
};

AssetCollection album(const QString& id, int subtype = collectionSubtype::albumRegular,
                      std::optional<int> count = 1) {
    const bool isSmart = subtype >= 200;
    return {id, id, isSmart ? CollectionType::smartAlbum : CollectionType::album, subtype, count};
}

struct AlbumWorld {
    TemporaryFolder folder;
    Preferences preferences{folder / "preferences.json"};
    RecordingLog log;
    FakePhotoLibrary library;
    FakeScripts scripts;
    PhotoAlbumService albums{library, preferences, log, &scripts};

    QStringList identifiers(const std::optional<QString>& albumID) {
        QStringList found;
        const AssetFetchResult assets = albums.fetchAssets(albumID);
        for (const PhotoAsset& asset : *assets)
            found.append(asset.localIdentifier);
        return found;
    }
};

} // namespace

TEST(PhotoAlbumService, ListsEachAlbumOnceInTheOrderOfItsSources) {
    AlbumWorld world;
    const auto text = [](const char* latin) { return QString::fromLatin1(latin); };
    AssetCollection unnamed = album(text("unnamed"), collectionSubtype::albumImported);
    unnamed.title.clear();
    AssetCollection uncounted = album(text("inner"), collectionSubtype::albumRegular, std::nullopt);
    world.library.add(text("x"), text("x.jpg"));
    world.library.inAlbum[text("inner")] = {text("x"), text("absent")};
    const CollectionList outer{text("folder"), text("folder"), CollectionListType::folder};
    const CollectionList inner{text("subfolder"), text("subfolder"), CollectionListType::folder};
    world.library.albums = {
        unnamed,
        album(text("shared"), collectionSubtype::albumCloudShared),
        album(text("regular")),
        album(text("synced"), collectionSubtype::albumSyncedAlbum),
        album(text("hidden"), collectionSubtype::smartAlbumAllHidden),
        album(text("favorites"), 203),
        album(text("library"), collectionSubtype::smartAlbumUserLibrary),
        album(text("stuck"), collectionSubtype::smartAlbumUnableToUpload),
    };
    world.library.topLevel = {album(text("top")), outer, album(text("regular"))};
    world.library.inList[text("folder")] = {inner, album(text("top"))};
    world.library.inList[text("subfolder")] = {uncounted, outer}; // a circle
    world.library.lists = {inner, {text("smart"), text("smart"), CollectionListType::smartFolder}};
    world.library.inList[text("smart")] = {album(text("in smart"))};
    world.scripts.answer = text("A1:::Tatil ::: 2020:::7\nA2::::::0\r\nbroken\nA3:::x:::many\n"
                                "A1:::again:::1\n:::x:::1\n");

    const std::vector<LocalAlbumItem> list = world.albums.performFetchLocalAlbums();
    QStringList shown;
    for (const LocalAlbumItem& item : list)
        shown.append(QStringLiteral("%1|%2|%3").arg(item.id, item.title).arg(item.count));
    EXPECT_EQ(shown, (QStringList{
                         text("regular|regular|1"),
                         text("shared|shared|1"),
                         text("synced|synced|1"),
                         QStringLiteral("unnamed|İsimsiz|1"),
                         text("top|top|1"),
                         text("inner|inner|1"),
                         text("in smart|in smart|1"),
                         text("favorites|favorites|1"),
                         text("photos_app_album:A1|Tatil ::: 2020|7"),
                         QStringLiteral("photos_app_album:A2|İsimsiz|0"),
                     }));
    EXPECT_EQ(world.albums.cachedAlbums(), list);
    const QStringList log = world.log.messages();
    EXPECT_EQ(log.first(),
              tag + QStringLiteral("📁 Albüm bulundu: 'regular' (type: 1, subtype: 2, adet: 1)"));
    EXPECT_TRUE(log.contains(
        tag + QStringLiteral("📁 Albüm bulundu: 'favorites' (type: 2, subtype: 203, adet: 1)")));
    EXPECT_TRUE(log[log.size() - 2].startsWith(
        tag + QStringLiteral("Apple Photos uygulamasından 3 özel albüm alındı: ")));
    EXPECT_EQ(log.last(), tag + QStringLiteral("Toplam 10 albüm listelendi (9 kullanıcı albümü, "
                                               "1 sistem/diğer albüm)"));
}

TEST(PhotoAlbumService, ListsNothingWithoutPermission) {
    AlbumWorld world;
    world.library.albums = {album(QStringLiteral("a"))};
    for (const auto status : {AuthorizationStatus::notDetermined, AuthorizationStatus::restricted,
                              AuthorizationStatus::denied}) {
        world.library.status = status;
        EXPECT_TRUE(world.albums.performFetchLocalAlbums().empty());
        EXPECT_EQ(world.log.messages().last(),
                  tag + QStringLiteral("Yetki yok (status: %1) — albümler listelenemedi")
                            .arg(static_cast<int>(status)));
    }
    world.library.status = AuthorizationStatus::limited;
    EXPECT_EQ(world.albums.performFetchLocalAlbums().size(), 1U);
}

TEST(PhotoAlbumService, RefreshesInTheBackgroundAndAnswersOnTheMainThread) {
    AlbumWorld world;
    world.library.albums = {album(QStringLiteral("a"))};
    std::vector<LocalAlbumItem> list;
    const auto mainThread = std::this_thread::get_id();
    world.albums.refreshLocalAlbumsAsync([&](const std::vector<LocalAlbumItem>& answer) {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        list = answer;
    });
    EXPECT_TRUE(waitOnMainThread([&] { return !list.empty(); }));
    EXPECT_EQ(list, world.albums.cachedAlbums());
}

TEST(PhotoAlbumService, RemembersTheChosenSource) {
    AlbumWorld world;
    EXPECT_EQ(world.albums.selectedSourceAlbumID(), std::nullopt);
    world.albums.setSelectedSourceAlbumID(QStringLiteral("album"));
    EXPECT_EQ(Preferences(world.folder / "preferences.json").string(preferenceKeys::sourceAlbumID),
              QStringLiteral("album"));
    EXPECT_EQ(world.albums.selectedSourceAlbumID(), QStringLiteral("album"));
    world.albums.setSelectedSourceAlbumID(std::nullopt);
    EXPECT_EQ(world.albums.selectedSourceAlbumID(), std::nullopt);
}

TEST(PhotoAlbumService, AnAlbumGivesItsAssetsAndAVanishedOneTheWholeLibrary) {
    AlbumWorld world;
    const auto add = [&](const QString& identifier, std::optional<Date> date) {
        PhotoAsset asset;
        asset.localIdentifier = identifier;
        asset.creationDate = date;
        world.library.add({asset, {}, {}});
    };
    add(QStringLiteral("new"), dateFromUnixSeconds(2000));
    add(QStringLiteral("old"), dateFromUnixSeconds(1000));
    add(QStringLiteral("undated"), std::nullopt);
    world.library.albums = {album(QStringLiteral("a"))};
    world.library.inAlbum[QStringLiteral("a")] = {QStringLiteral("new"), QStringLiteral("undated"),
                                                  QStringLiteral("old")};
    EXPECT_EQ(world.identifiers(QStringLiteral("a")).join(u' '), QStringLiteral("undated old new"));
    EXPECT_EQ(world.identifiers(std::nullopt).size(), 3);
    world.library.albums.clear();
    EXPECT_EQ(world.identifiers(QStringLiteral("a")).size(), 3);
}

TEST(PhotoAlbumService, AsksThePhotosApplicationInItsOwnWords) {
    AlbumWorld world;
    world.albums.fetchApplePhotosAlbums();
    EXPECT_EQ(world.scripts.programs.last(), QStringLiteral(R"(tell application "Photos"
    set out to ""
    repeat with a in albums
        set out to out & (id of a) & ":::" & (name of a) & ":::" & (count of media items of a) & "
"
    end repeat
    return out
end tell)"));

    world.library.add(QStringLiteral("x"), QStringLiteral("x.jpg"));
    world.library.add(QStringLiteral("y"), QStringLiteral("y.jpg"));
    world.scripts.answer = QStringLiteral("y\n\nabsent\n");
    EXPECT_EQ(world.identifiers(QStringLiteral("photos_app_album:7A/L0/040")),
              QStringList{QStringLiteral("y")});
    EXPECT_EQ(world.scripts.programs.last(), QStringLiteral(R"(tell application "Photos"
    set prevTIDs to AppleScript's text item delimiters
    set AppleScript's text item delimiters to linefeed
    set theIDs to (id of media items of album id "7A/L0/040") as text
    set AppleScript's text item delimiters to prevTIDs
    return theIDs
end tell)"));
    EXPECT_EQ(world.log.messages().last(),
              tag + QStringLiteral("Albümden (7A/L0/040) 2 adet yerel ID çekildi"));
    world.albums.fetchItemIDsFromApplePhotos(QStringLiteral("a\" & quit & \"\\"));
    EXPECT_TRUE(world.scripts.programs.last().contains(
        QStringLiteral(R"(album id "a\" & quit & \"\\") as text)")));
}

TEST(PhotoAlbumService, AFailedProgramYieldsNoAlbumAndNoAsset) {
    AlbumWorld world;
    world.library.add(QStringLiteral("x"), QStringLiteral("x.jpg"));
    const auto failsWith = [&](const std::function<void()>& fail, const QString& albumsLine,
                               const QString& itemsLine) {
        world.scripts.fail = fail;
        EXPECT_TRUE(world.albums.fetchApplePhotosAlbums().empty());
        EXPECT_EQ(world.log.messages().last(), tag + albumsLine);
        EXPECT_EQ(world.identifiers(QStringLiteral("photos_app_album:A")), QStringList());
        EXPECT_EQ(world.log.messages().last(), tag + itemsLine);
    };
    failsWith([] { throw ScriptNotCreated(QString()); }, QStringLiteral("AppleScript derlenemedi"),
              QStringLiteral("Media item IDs AppleScript derlenemedi"));
    failsWith([] { throw ScriptFailed(QStringLiteral("-1743")); },
              QStringLiteral("AppleScript albüm sorgusu hatası: -1743"),
              QStringLiteral("Media item IDs AppleScript hatası: -1743"));

    PhotoAlbumService nowhere(world.library, world.preferences, world.log);
    EXPECT_TRUE(nowhere.fetchApplePhotosAlbums().empty());
    EXPECT_TRUE(nowhere.fetchAssets(QStringLiteral("photos_app_album:A"))->empty());
}

} // namespace quorvane::test
