#include "library/PhotoAlbumService.h"
#include "FakePhotoLibrary.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const QString tag = u"[PhotoAlbumService] "_s;

class FakeScripts final : public PhotosAppScripts {
  public:
    QString run(const QString& program) override {
        programs.append(program);
        return answer;
    }
    QString answer;
    QStringList programs;
};

AssetCollection album(const QString& id, int subtype = collectionSubtype::albumRegular,
                      std::optional<int> count = 1) {
    const bool isSmart = subtype >= 200;
    return {id, id, isSmart ? CollectionType::smartAlbum : CollectionType::album, subtype, count};
}

class PhotoAlbumServiceTest : public testing::Test {
  protected:
    TemporaryFolder folder;
    Preferences preferences{folder / "preferences.json"};
    RecordingLog log;
    FakePhotoLibrary library;
    FakeScripts scripts;
    PhotoAlbumService albums{library, preferences, log, u"library"_s, &scripts};

    QStringList identifiers(const std::optional<QString>& albumID) {
        QStringList found;
        const AssetFetchResult assets = albums.fetchAssets(albumID).oldestFirst;
        for (const PhotoAsset& asset : *assets)
            found.append(asset.localIdentifier);
        return found;
    }
};

} // namespace

TEST_F(PhotoAlbumServiceTest, ListsEachAlbumOnceInTheOrderOfItsSources) {
    AssetCollection unnamed = album(u"unnamed"_s, collectionSubtype::albumImported);
    unnamed.title.clear();
    AssetCollection uncounted = album(u"inner"_s, collectionSubtype::albumRegular, std::nullopt);
    library.add(u"x"_s, u"x.jpg"_s);
    library.inAlbum[u"inner"_s] = {u"x"_s, u"absent"_s};
    const CollectionList outer{u"folder"_s, u"folder"_s, CollectionListType::folder};
    const CollectionList inner{u"subfolder"_s, u"subfolder"_s, CollectionListType::folder};
    library.albums = {
        unnamed,
        album(u"shared"_s, collectionSubtype::albumCloudShared),
        album(u"regular"_s),
        album(u"synced"_s, collectionSubtype::albumSyncedAlbum),
        album(u"hidden"_s, collectionSubtype::smartAlbumAllHidden),
        album(u"favorites"_s, 203),
        album(u"library"_s, collectionSubtype::smartAlbumUserLibrary),
        album(u"stuck"_s, collectionSubtype::smartAlbumUnableToUpload),
    };
    library.topLevel = {album(u"top"_s), outer, album(u"regular"_s)};
    library.inList[u"folder"_s] = {inner, album(u"top"_s)};
    library.inList[u"subfolder"_s] = {uncounted, outer}; // a circle
    library.lists = {inner, {u"smart"_s, u"smart"_s, CollectionListType::smartFolder}};
    library.inList[u"smart"_s] = {album(u"in smart"_s)};
    scripts.answer = u"A1:::Tatil ::: 2020:::7\nA2::::::0\r\nbroken\nA3:::x:::many\n"
                     "A1:::again:::1\n:::x:::1\n"_s;

    const std::vector<LocalAlbumItem> list = albums.performFetchLocalAlbums();
    QStringList shown;
    for (const LocalAlbumItem& item : list)
        shown.append(u"%1|%2|%3"_s.arg(item.id, item.title).arg(item.count));
    EXPECT_EQ(shown, (QStringList{
                         u"regular|regular|1"_s,
                         u"shared|shared|1"_s,
                         u"synced|synced|1"_s,
                         u"unnamed|İsimsiz|1"_s,
                         u"top|top|1"_s,
                         u"inner|inner|1"_s,
                         u"in smart|in smart|1"_s,
                         u"favorites|favorites|1"_s,
                         u"photos_app_album:A1|Tatil ::: 2020|7"_s,
                         u"photos_app_album:A2|İsimsiz|0"_s,
                     }));
    EXPECT_EQ(albums.cachedAlbums(), list);
    const QStringList lines = log.messages();
    EXPECT_EQ(lines.first(), tag + u"📁 Albüm bulundu: 'regular' (type: 1, subtype: 2, adet: 1)"_s);
    EXPECT_TRUE(
        lines.contains(tag + u"📁 Albüm bulundu: 'favorites' (type: 2, subtype: 203, adet: 1)"_s));
    EXPECT_TRUE(lines[lines.size() - 2].startsWith(
        tag + u"Apple Photos uygulamasından 3 özel albüm alındı: "_s));
    EXPECT_EQ(lines.last(), tag + u"Toplam 10 albüm listelendi (9 kullanıcı albümü, "
                                  "1 sistem/diğer albüm)"_s);
}

TEST_F(PhotoAlbumServiceTest, RemembersTheChosenSource) {
    EXPECT_EQ(albums.selectedSourceAlbumID(), std::nullopt);
    albums.setSelectedSourceAlbumID(u"album"_s);
    EXPECT_EQ(Preferences(folder / "preferences.json").string(preferenceKeys::sourceAlbumID),
              u"album"_s);
    EXPECT_EQ(albums.selectedSourceAlbumID(), u"album"_s);
    PhotoAlbumService elsewhere{library, preferences, log, u"another"_s};
    EXPECT_EQ(elsewhere.selectedSourceAlbumID(), std::nullopt) << "chosen in another library";
    EXPECT_TRUE(log.contains(u"başka bir arşive ait"_s));
    elsewhere.selectForThisRun({u"theirs"_s, u"t"_s});
    EXPECT_EQ(elsewhere.selectedSourceAlbumID(), u"theirs"_s);
    EXPECT_EQ(Preferences(folder / "preferences.json").string(preferenceKeys::sourceAlbumID),
              u"album"_s);
    albums.setSelectedSourceAlbumID(std::nullopt);
    EXPECT_EQ(albums.selectedSourceAlbumID(), std::nullopt);
}

TEST_F(PhotoAlbumServiceTest, AnAlbumGivesItsAssetsAndAVanishedOneTheWholeLibrary) {
    const auto add = [&](const QString& identifier, std::optional<Date> date) {
        PhotoAsset asset;
        asset.localIdentifier = identifier;
        asset.creationDate = date;
        library.add({asset, {}, {}, {}});
    };
    add(u"new"_s, dateFromUnixSeconds(2000));
    add(u"old"_s, dateFromUnixSeconds(1000));
    add(u"undated"_s, std::nullopt);
    library.albums = {album(u"a"_s)};
    library.inAlbum[u"a"_s] = {u"new"_s, u"undated"_s, u"old"_s};
    EXPECT_EQ(identifiers(u"a"_s).join(u' '), u"undated old new"_s);
    EXPECT_EQ(identifiers(std::nullopt).size(), 3);
    library.albums.clear();
    EXPECT_EQ(identifiers(u"a"_s).size(), 3);
}

TEST_F(PhotoAlbumServiceTest, AsksThePhotosApplicationForTheItemsOfAnAlbum) {
    library.add(u"x"_s, u"x.jpg"_s);
    library.add(u"y"_s, u"y.jpg"_s);
    scripts.answer = u"y\n\nabsent\n"_s;
    EXPECT_EQ(identifiers(u"photos_app_album:7A/L0/040"_s), QStringList{u"y"_s});
    EXPECT_EQ(log.messages().last(), tag + u"Albümden (7A/L0/040) 2 adet yerel ID çekildi"_s);
    albums.fetchItemIDsFromApplePhotos(u"a\" & quit & \"\\"_s);
    EXPECT_TRUE(scripts.programs.last().contains(uR"(album id "a\" & quit & \"\\") as text)"_s));
}

} // namespace quorvane::test
