#include "platform/bundle/PhotosBundleLibrary.h"

#include "foundation/Crypto.h"
#include "foundation/File.h"
#include "store/Sqlite.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

using test::TemporaryFolder;
using testing::ElementsAre;

constexpr const char* oldLibrary = "Test-10.15.5.photoslibrary";
constexpr const char* newLibrary = "Test-Media-Types-15.7.2.photoslibrary";

/// Every file below a folder, by its path inside it, and what is in it.
std::map<std::filesystem::path, QByteArray> contentsOf(const std::filesystem::path& folder) {
    std::map<std::filesystem::path, QByteArray> contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            contents[entry.path().lexically_relative(folder)] = test::readFile(entry.path());
    return contents;
}

std::map<std::filesystem::path, QByteArray> digestsOf(const std::filesystem::path& folder) {
    auto digests = contentsOf(folder);
    for (auto& [file, bytes] : digests)
        bytes = Sha256::digest(bytes);
    return digests;
}

std::string titleOf(const Collection& collection) {
    return std::visit([](const auto& c) { return c.title.toStdString(); }, collection);
}

std::vector<std::string> titlesOf(const std::vector<Collection>& collections) {
    std::vector<std::string> titles;
    std::ranges::transform(collections, std::back_inserter(titles), titleOf);
    return titles;
}

/// A copy of a real library; its files must be the same at the end.
class RealBundle : public testing::Test {
  protected:
    PhotosBundleLibrary& open(const char* name) {
        bundle = folder / name;
        for (const auto& [file, bytes] : contentsOf(test::realDataFolder() / name))
            folder.write(name / file, bytes);
        before = digestsOf(bundle);
        return library.emplace(bundle, work);
    }

    ~RealBundle() override {
        if (!library)
            return; // skipped
        library.reset();
        EXPECT_EQ(digestsOf(bundle), before);
        if (std::filesystem::exists(work)) {
            EXPECT_TRUE(std::filesystem::is_empty(work));
        }
    }

    std::vector<std::string> namesIn(const AssetFetchResult& assets) {
        std::vector<std::string> names;
        for (const PhotoAsset& asset : *assets)
            names.push_back(library->assetResources(asset).at(0).originalFilename.toStdString());
        return names;
    }

    PhotoAsset assetWith(const char* uuid) {
        const auto found =
            library->fetchAssets(QStringList{QLatin1String(uuid) + QLatin1String("/L0/001")});
        return found->empty() ? PhotoAsset() : found->front();
    }

    AssetCollection albumTitled(const char* title) {
        for (const auto& album : library->fetchAssetCollections(CollectionType::album, 2))
            if (album.title == QLatin1String(title))
                return album;
        ADD_FAILURE() << "no album " << title;
        return {};
    }

    TemporaryFolder folder;
    std::filesystem::path work = folder / "work", bundle;
    std::map<std::filesystem::path, QByteArray> before;
    std::optional<PhotosBundleLibrary> library;
};

} // namespace

TEST_F(RealBundle, ReadsEveryLiveAssetOfTheOldModelInOrder) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(oldLibrary);
    EXPECT_TRUE(PhotosBundleLibrary::looksLikeBundle(bundle));
    const auto assets = library->fetchAssets();
    EXPECT_THAT(namesIn(assets),
                ElementsAre("IMG_4547.jpg", "Pumkins1.jpg", "Pumpkins4.jpg", "Pumkins2.jpg",
                            "Pumpkins3.jpg", "St James Park.jpg", "wedding.jpg", "Tulips.jpg",
                            "DSC03584.dng", "IMG_1994.JPG", "IMG_1997.JPG", "IMG_2000.JPG",
                            "IMG_1693.tif"));
    const PhotoAsset& first = assets->front();
    EXPECT_EQ(first.localIdentifier, QStringLiteral("3DD2C897-F19E-4CA6-8C22-B027D5A71907/L0/001"));
    EXPECT_EQ(first.mediaType, AssetMediaType::image);
    EXPECT_EQ(describe(first.creationDate.value()), QStringLiteral("2017-06-20 07:48:56 +0000"));
    // The date of the last one is millions of years ahead: kept, for others to judge.
    EXPECT_GT(unixSeconds(assets->back().creationDate.value()), 1e14);

    int local = 0;
    for (const PhotoAsset& asset : *assets)
        local += library->assetResources(asset).at(0).fileSize.has_value();
    EXPECT_EQ(local, 7);
    EXPECT_FALSE(library->factsOf(QStringLiteral("6FD38366-3BF2-407D-81FE-7153EB6125B6/L0/001")))
        << "is in the trash";
    EXPECT_TRUE(library->factsOf(first.localIdentifier)->creationDate);
}

TEST_F(RealBundle, ReadsTheNewModelWithItsKinds) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(newLibrary);
    const auto assets = library->fetchAssets();
    EXPECT_EQ(assets->size(), 16u);
    const auto count = [&](auto predicate) { return std::ranges::count_if(*assets, predicate); };
    EXPECT_EQ(count([](const PhotoAsset& a) { return a.mediaType == AssetMediaType::video; }), 4);
    EXPECT_EQ(count([](const PhotoAsset& a) { return a.mediaSubtypes == mediaSubtypePhotoLive; }),
              5);
    EXPECT_TRUE(std::ranges::is_sorted(*assets, {}, &PhotoAsset::creationDate));
    std::map<std::string, int> smart;
    for (const auto& album :
         library->fetchAssetCollections(CollectionType::smartAlbum, std::nullopt)) {
        smart[album.title.toStdString()] = album.estimatedAssetCount.value();
        EXPECT_EQ(library->fetchAssets(album)->size(),
                  static_cast<std::size_t>(*album.estimatedAssetCount));
    }
    EXPECT_EQ(smart["Videolar"], 4);
    EXPECT_EQ(smart["Live Photo'lar"], 5);
    EXPECT_EQ(smart["Ekran Görüntüleri"], 1);
}

TEST_F(RealBundle, ListsTheFilesOfAnEditedLivePhotoInPhotoKitsOrder) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(newLibrary);
    const auto resources =
        library->assetResources(assetWith("B60C31AC-BE86-42C5-A383-A0A5710B18AE"));
    std::vector<std::pair<AssetResourceType, std::string>> listed;
    for (const auto& resource : resources) {
        listed.emplace_back(resource.type, resource.originalFilename.toStdString());
        EXPECT_EQ(resource.fileSize, std::filesystem::file_size(bundle / resource.location));
    }
    using enum AssetResourceType;
    EXPECT_THAT(listed, ElementsAre(std::pair(photo, "IMG_4394.HEIC"),
                                    std::pair(pairedVideo, "IMG_4394.MOV"),
                                    std::pair(adjustmentData, "Adjustments.plist"),
                                    std::pair(fullSizePhoto, "FullSizeRender.heic"),
                                    std::pair(fullSizePairedVideo, "FullSizeRender.mov")));
    library->writeData(resources[0], folder / "staged.heic", {});
    EXPECT_EQ(test::readFile(folder / "staged.heic"),
              test::readFile(bundle / resources[0].location));
}

TEST_F(RealBundle, SaysThatAnOriginalIsNotOnThisMachine) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(oldLibrary);
    for (const char* uuid : {"A92D9C26-3A50-4197-9388-CB5F7DB9FA91",    // in the cloud
                             "8E1D7BC9-9321-44F9-8CFB-4083F6B9232A"}) { // referenced
        const auto resources = library->assetResources(assetWith(uuid));
        ASSERT_FALSE(resources.empty());
        EXPECT_EQ(resources[0].type, AssetResourceType::photo);
        EXPECT_FALSE(resources[0].fileSize);
        try {
            library->writeData(resources[0], folder / "staged", {});
            FAIL() << "exported what is not there";
        } catch (const PhotoLibraryError& error) {
            EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("bu makinede değil")));
        }
        EXPECT_FALSE(std::filesystem::exists(folder / "staged"));
    }
}

TEST_F(RealBundle, ShowsAlbumsInTheirFoldersAndOrder) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(oldLibrary);
    EXPECT_THAT(titlesOf(library->fetchTopLevelUserCollections()),
                ElementsAre("I have a deleted twin", "EmptyAlbum", "Test Album", "Test Album",
                            "Pumpkin Farm", "Folder1", "Folder2", "Pumpkin Farm"));
    const auto lists = library->fetchCollectionLists(CollectionListType::folder);
    ASSERT_EQ(lists.size(), 5u);
    EXPECT_THAT(titlesOf(library->fetchCollections(lists[0])),
                ElementsAre("SubFolder1", "SubFolder2"));
    EXPECT_EQ(library->fetchAssetCollections(CollectionType::album, 2).size(), 7u);
    EXPECT_THAT(namesIn(library->fetchAssets(albumTitled("Pumpkin Farm"))),
                ElementsAre("Pumpkins3.jpg", "Pumkins1.jpg", "Pumkins2.jpg"));
    const auto nested = albumTitled("AlbumInFolder");
    EXPECT_EQ(nested.estimatedAssetCount, 2);
    EXPECT_EQ(library->fetchAssetCollection(nested.localIdentifier)->title, nested.title);
    EXPECT_FALSE(library->fetchAssetCollection(QStringLiteral("gone/L0/040")));
    std::size_t imported = 0;
    for (const auto& album :
         library->fetchAssetCollections(CollectionType::album, collectionSubtype::albumImported)) {
        EXPECT_TRUE(album.title.startsWith(QStringLiteral("İçe Aktarma 20")));
        imported += library->fetchAssets(album)->size();
    }
    EXPECT_EQ(imported, 13u);
}

TEST_F(RealBundle, RefusesToDelete) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(newLibrary);
    EXPECT_THROW(library->deleteAssets(*library->fetchAssets()), PhotoLibraryError);
}

TEST_F(RealBundle, WorksOnADiskThatIsReadOnly) {
    QUORVANE_REQUIRE_REAL_DATA();
    open(oldLibrary);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(bundle))
        ::chmod(entry.path().c_str(), entry.is_directory() ? 0500 : 0400);
    ::chmod(bundle.c_str(), 0500);
    EXPECT_EQ(library->fetchAssets()->size(), 13u);
    if (::geteuid() != 0) {
        EXPECT_EQ(library->authorizationStatus(), AuthorizationStatus::limited);
    }
    ::chmod(bundle.c_str(), 0700);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(bundle))
        if (entry.is_directory())
            ::chmod(entry.path().c_str(), 0700);
}

namespace {

/// A library made of statements, for what the real ones do not have.
class MadeBundle : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(bundle / "database");
        database.emplace(bundle / "database/Photos.sqlite",
                         sqlite::Connection::Mode::readWriteCreate);
        database->execute("PRAGMA journal_mode = WAL");
    }

    /// A schema with these entity numbers.
    void make(const std::string& assetTable, int albumEntity, int assetEntity,
              const char* assetEntityName) {
        const std::string album = std::to_string(albumEntity), asset = std::to_string(assetEntity);
        table = assetTable;
        execute("CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER, Z_NAME TEXT);"
                "INSERT INTO Z_PRIMARYKEY VALUES (" +
                album + ", 'Album'), (" + asset + ", '" + assetEntityName +
                "'), (999, 'Asset');"
                "CREATE TABLE " +
                table +
                " (Z_PK INTEGER PRIMARY KEY, ZUUID, ZKIND DEFAULT 0, "
                "ZKINDSUBTYPE DEFAULT 0, ZDATECREATED, ZLATITUDE DEFAULT -180.0, "
                "ZLONGITUDE DEFAULT -180.0, ZDIRECTORY, ZFILENAME, ZTRASHEDSTATE DEFAULT 0, "
                "ZVISIBILITYSTATE DEFAULT 0, ZHIDDEN DEFAULT 0, ZFAVORITE DEFAULT 0, "
                "ZIMPORTSESSION);"
                "CREATE TABLE ZADDITIONALASSETATTRIBUTES (ZASSET, ZORIGINALFILENAME, ZTITLE);"
                "CREATE TABLE ZINTERNALRESOURCE (ZASSET, ZVERSION, ZDATASTORESUBTYPE, ZRECIPEID, "
                "ZDATASTORECLASSID DEFAULT 0, ZTRASHEDSTATE DEFAULT 0);"
                "CREATE TABLE ZGENERICALBUM (Z_PK INTEGER PRIMARY KEY, ZUUID, ZKIND, ZTITLE, "
                "ZPARENTFOLDER, ZCUSTOMSORTKEY DEFAULT 0, ZCUSTOMSORTASCENDING DEFAULT 1, "
                "ZSTARTDATE, ZTRASHEDSTATE DEFAULT 0);"
                "CREATE TABLE Z_31ASSETS (decoy);"
                "CREATE TABLE Z_" +
                album + "ASSETS (Z_" + album + "ALBUMS, Z_" + asset + "ASSETS, Z_FOK_" + asset +
                "ASSETS);");
    }

    void execute(const std::string& sql) { database->execute(sql.c_str()); }

    static std::string uuid(int number) {
        return QStringLiteral("00000000-0000-4000-8000-%1")
            .arg(number, 12, 10, QLatin1Char('0'))
            .toStdString();
    }

    void addAsset(int key, const std::string& columns = {}, const std::string& values = {}) {
        execute("INSERT INTO " + table + " (Z_PK, ZUUID" + columns + ") VALUES (" +
                std::to_string(key) + ", '" + uuid(key) + "'" + values + ")");
    }

    static std::vector<int> keysOf(const AssetFetchResult& assets) {
        std::vector<int> keys;
        for (const PhotoAsset& asset : *assets)
            keys.push_back(asset.localIdentifier.mid(24, 12).toInt());
        return keys;
    }

    PhotoAsset asset(int key) {
        const auto found =
            library.fetchAssets(QStringList{QString::fromStdString(uuid(key) + "/L0/001")});
        return found->at(0);
    }

    TemporaryFolder folder;
    std::filesystem::path bundle = folder / "Made.photoslibrary", work = folder / "work";
    std::optional<sqlite::Connection> database;
    std::string table;
    PhotosBundleLibrary library{bundle, work};
};

} // namespace

TEST_F(MadeBundle, TakesAbsurdDatesAndPlacesAsTheyCome) {
    make("ZASSET", 30, 3, "Asset");
    addAsset(1, ", ZDATECREATED", ", 123456789012345");
    addAsset(2, ", ZDATECREATED", ", -978307200.0");
    addAsset(3, ", ZDATECREATED", ", 1e300");
    addAsset(4, ", ZDATECREATED", ", 9e999");
    addAsset(5, ", ZLATITUDE, ZLONGITUDE", ", 41.0, 29.0");
    addAsset(6, ", ZLATITUDE, ZLONGITUDE", ", 1e9, NULL");
    addAsset(7, ", ZDATECREATED, ZKIND", ", 'text', 7");
    addAsset(8, ", ZTRASHEDSTATE", ", 1");
    addAsset(9, ", ZVISIBILITYSTATE", ", 2");
    addAsset(10, ", ZHIDDEN", ", 1");
    execute("INSERT INTO ZASSET (Z_PK, ZUUID) VALUES (11, '../../x'), (12, NULL)");
    const auto assets = library.fetchAssets();
    EXPECT_THAT(keysOf(assets), ElementsAre(5, 6, 10, 2, 1, 3, 4, 7));
    EXPECT_EQ(asset(2).creationDate, Date());
    EXPECT_TRUE(asset(1).creationDate);
    EXPECT_FALSE(asset(3).creationDate || asset(4).creationDate || asset(5).creationDate);
    EXPECT_EQ(asset(5).location->latitude, 41.0);
    EXPECT_FALSE(asset(1).location || asset(6).location);
    EXPECT_EQ(asset(7).mediaType, AssetMediaType::unknown);
}

TEST_F(MadeBundle, FindsTheJoinTableByItsEntities) {
    make("ZGENERICASSET", 26, 34, "GenericAsset");
    addAsset(1, ", ZDATECREATED", ", 30");
    addAsset(2, ", ZDATECREATED", ", 10");
    addAsset(3, ", ZDATECREATED, ZVISIBILITYSTATE", ", 20, 2");
    execute("INSERT INTO ZADDITIONALASSETATTRIBUTES VALUES (1, 'a', 'A'), (2, 'b', 'B')");
    execute("INSERT INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE, ZCUSTOMSORTKEY, "
            "ZCUSTOMSORTASCENDING) VALUES (1, 'U1', 2, 'hand/made', 0, 1), "
            "(2, 'U2', 2, 'date', 1, 1), (3, 'U3', 2, 'newest', 1, 0), (4, 'U4', 2, 'title', 5, 1),"
            "(5, 'U5', 1505, 'shared', 0, 1), (6, 'U6', 1507, 'clever', 0, 1)");
    for (int album = 1; album <= 5; ++album)
        for (const auto& [key, order] : {std::pair(1, 100), {2, 200}, {3, 150}})
            execute("INSERT INTO Z_26ASSETS VALUES (" + std::to_string(album) + ", " +
                    std::to_string(key) + ", " + std::to_string(order) + ")");
    const std::map<std::string, std::vector<int>> expected = {{"hand/made", {1, 2}},
                                                              {"date", {2, 1}},
                                                              {"newest", {1, 2}},
                                                              {"title", {1, 2}},
                                                              {"shared", {1, 3, 2}}};
    std::map<std::string, std::vector<int>> found;
    for (const auto& album : library.fetchAssetCollections(CollectionType::album, std::nullopt)) {
        found[album.title.toStdString()] = keysOf(library.fetchAssets(album));
        EXPECT_EQ(album.estimatedAssetCount, found[album.title.toStdString()].size());
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(library.fetchAssetCollections(CollectionType::album, 101).size(), 1u);
    EXPECT_EQ(library.fetchAssetCollections(CollectionType::smartAlbum, 200).size(), 1u);
}

TEST_F(MadeBundle, NeverWalksInCirclesOfFolders) {
    make("ZASSET", 30, 3, "Asset");
    execute("INSERT INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE, ZPARENTFOLDER) VALUES "
            "(1, 'ROOT', 3999, NULL, NULL), (2, 'F2', 4000, 'top', 1), (3, 'F3', 4000, 'a', 4), "
            "(4, 'F4', 4000, 'b', 3), (5, 'F5', 4000, 'deep', 2), (6, 'A6', 2, 'lost', 4)");
    EXPECT_EQ(library.fetchCollectionLists(CollectionListType::folder).size(), 2u);
    EXPECT_EQ(library.fetchAssetCollections(CollectionType::album, 2).size(), 1u);
}

TEST_F(MadeBundle, StaysInsideTheBundleWhateverTheDatabaseSays) {
    make("ZASSET", 30, 3, "Asset");
    folder.write("secret.jpg", "secret");
    std::filesystem::create_directories(bundle / "originals");
    std::filesystem::create_symlink(folder.path(), bundle / "originals/S");
    addAsset(1, ", ZDIRECTORY, ZFILENAME", ", '../..', 'secret.jpg'");
    addAsset(2, ", ZDIRECTORY, ZFILENAME", ", 'S', 'secret.jpg'");
    addAsset(3, ", ZDIRECTORY, ZFILENAME", ", '', '../../secret.jpg'");
    addAsset(4, ", ZDIRECTORY, ZFILENAME", ", NULL, NULL");
    for (int key = 1; key <= 4; ++key) {
        const auto resource = library.assetResources(asset(key)).at(0);
        EXPECT_FALSE(resource.fileSize) << key;
        EXPECT_FALSE(resource.originalFilename.contains(u'/')) << key;
        EXPECT_THROW(library.writeData(resource, folder / "out", {}), PhotoLibraryError) << key;
    }
    // A referenced original may stand anywhere.
    addAsset(5, ", ZDIRECTORY, ZFILENAME", ", '" + folder.path().native() + "', 'secret.jpg'");
    library.fetchAssets();
    library.writeData(library.assetResources(asset(5)).at(0), folder / "out", {});
    EXPECT_EQ(test::readFile(folder / "out"), "secret");
}

TEST_F(MadeBundle, FindsRawTwinsAndVideoEdits) {
    make("ZASSET", 30, 3, "Asset");
    addAsset(1, ", ZDIRECTORY, ZFILENAME", ", '0', '" + uuid(1) + ".jpeg'");
    addAsset(2, ", ZDIRECTORY, ZFILENAME, ZKIND", ", '0', '" + uuid(2) + ".mov', 1");
    execute("INSERT INTO ZADDITIONALASSETATTRIBUTES VALUES (1, 'IMG_1.JPG', NULL), "
            "(2, 'IMG_2.MOV', NULL)");
    execute("INSERT INTO ZINTERNALRESOURCE (ZASSET, ZVERSION, ZDATASTORESUBTYPE, ZRECIPEID) VALUES "
            "(1, 0, 17, 0), (1, 2, 2, 65938), (2, 2, 16, 131272)");
    const auto bundled = [&](const std::string& name) {
        folder.write("Made.photoslibrary/" + name, "bytes");
    };
    bundled("originals/0/" + uuid(1) + ".jpeg");
    bundled("originals/0/" + uuid(1) + "_4.cr2");
    bundled("originals/0/" + uuid(2) + ".mov");
    bundled("originals/0/" + uuid(2) + "_5.aae");
    bundled("resources/renders/0/" + uuid(2) + "_2_100_a.mov"); // of 1 there is none
    const auto listed = [&](int key) {
        std::vector<std::string> names;
        for (const auto& resource : library.assetResources(asset(key)))
            names.push_back(resource.originalFilename.toStdString());
        return names;
    };
    EXPECT_THAT(listed(1), ElementsAre("IMG_1.JPG", "IMG_1.cr2"));
    EXPECT_THAT(listed(2), ElementsAre("IMG_2.MOV", "IMG_2.AAE", "FullSizeRender.mov"));
}

TEST_F(MadeBundle, SeesRowsThatStandOnlyInTheLogAndLaterOnes) {
    make("ZASSET", 30, 3, "Asset");
    addAsset(1);
    ASSERT_GT(std::filesystem::file_size(bundle / "database/Photos.sqlite-wal"), 0u);
    EXPECT_EQ(library.fetchAssets()->size(), 1u);
    addAsset(2);
    EXPECT_EQ(library.fetchAssets()->size(), 2u);
    database.reset(); // closing takes the log into the file
    EXPECT_FALSE(std::filesystem::exists(bundle / "database/Photos.sqlite-wal"));
    EXPECT_EQ(library.fetchAssets()->size(), 2u);
}

TEST_F(MadeBundle, RemovesTheCopiesOfDeadRunsOnly) {
    make("ZASSET", 30, 3, "Asset");
    folder.write("work/quorvane-photos-dead00/Photos.sqlite", "old");
    folder.write("work/other/file", "somebody else's");
    PhotosBundleLibrary second(bundle, work);
    second.fetchAssets();
    library.fetchAssets(); // must not remove the copy of the other one, which lives
    EXPECT_EQ(second.fetchAssets()->size(), 0u);
    EXPECT_FALSE(second.factsOf(QString::fromStdString(uuid(1) + "/L0/001")));
    EXPECT_FALSE(std::filesystem::exists(work / "quorvane-photos-dead00"));
    EXPECT_TRUE(std::filesystem::exists(work / "other/file"));
    int copies = 0;
    for (const auto& entry : std::filesystem::directory_iterator(work)) {
        if (!entry.path().filename().native().starts_with("quorvane-photos-"))
            continue;
        ++copies;
        EXPECT_EQ(entry.status().permissions(), std::filesystem::perms::owner_all);
    }
    EXPECT_EQ(copies, 2);
}

TEST(PhotosBundleLibrary, RefusesWhatItCannotReadWithAReason) {
    const TemporaryFolder folder;
    folder.write("old.photoslibrary/database/photos.db", "iPhoto");
    folder.write("none.photoslibrary/readme.txt", "");
    folder.write("noise.photoslibrary/database/Photos.sqlite", QByteArray(5000, 'x'));
    folder.write("empty.photoslibrary/database/Photos.sqlite", "");
    folder.write("short.photoslibrary/database/Photos.sqlite", "SQLite format 3");
    const struct {
        const char* name;
        const char* reason;
    } rows[] = {
        {"old.photoslibrary", "macOS 10.15 veya sonrasının Fotoğraflar arşivi gerekir"},
        {"none.photoslibrary", "Fotoğraflar arşivi değil"},
        {"noise.photoslibrary", "okunamıyor"},
        {"empty.photoslibrary", "tanınmıyor"},
        {"short.photoslibrary", "okunamıyor"},
        {"gone.photoslibrary", "ulaşılamıyor"},
    };
    for (const auto& row : rows) {
        PhotosBundleLibrary library(folder / row.name, folder / "work");
        try {
            library.fetchAssets();
            ADD_FAILURE() << row.name << " was read";
        } catch (const PhotoLibraryError& error) {
            EXPECT_TRUE(error.localizedDescription().contains(QString::fromUtf8(row.reason)))
                << row.name << ": " << error.what();
        }
    }
    EXPECT_EQ(PhotosBundleLibrary(folder / "gone", folder / "work").authorizationStatus(),
              AuthorizationStatus::denied);
    EXPECT_EQ(PhotosBundleLibrary({}, folder / "work").authorizationStatus(),
              AuthorizationStatus::notDetermined);
    EXPECT_EQ(PhotosBundleLibrary(folder.path(), folder / "work").authorizationStatus(),
              AuthorizationStatus::authorized);
    EXPECT_FALSE(PhotosBundleLibrary::looksLikeBundle(folder.path()));
}

} // namespace quorvane
