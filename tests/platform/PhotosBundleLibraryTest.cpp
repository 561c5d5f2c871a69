#include "MadeBundle.h"
#include "platform/bundle/FoldersBeneath.h"
#include "store/RecordRemainders.h"
#include "support/Failures.h"

#include <gmock/gmock.h>

#include <map>

namespace quorvane::test {

using testing::ElementsAre;
using namespace Qt::StringLiterals;

TEST_F(MadeBundle, TakesAbsurdDatesAndPlacesAsTheyCome) {
    make();
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
    make();
    execute("INSERT INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE, ZPARENTFOLDER) VALUES "
            "(1, 'ROOT', 3999, NULL, NULL), (2, 'F2', 4000, 'top', 1), (3, 'F3', 4000, 'a', 4), "
            "(4, 'F4', 4000, 'b', 3), (5, 'F5', 4000, 'deep', 2), (6, 'A6', 2, 'lost', 4)");
    EXPECT_EQ(library.fetchCollectionLists(CollectionListType::folder).size(), 2u);
    EXPECT_EQ(library.fetchAssetCollections(CollectionType::album, 2).size(), 1u);
}

TEST_F(MadeBundle, StaysInsideTheBundleWhateverTheDatabaseSays) {
    make();
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
    EXPECT_TRUE(library.absentOriginals(*library.fetchAssets(), {}).empty()) << "nobody can tell";
}

TEST_F(MadeBundle, GivesUpOnADatabaseThatNeverEndsOrIsLargerThanItself) {
    make();
    const auto refusal = [this] {
        return messageOf([&] { library.absentOriginals(*library.fetchAssets(), {}); });
    };
    addAsset(1, ", ZFILENAME", ", printf('%.2000000c', 'x')");
    EXPECT_TRUE(refusal().contains(u"too big")) << qUtf8Printable(refusal());
    execute("UPDATE ZASSET SET ZFILENAME = 'a.jpg'; DROP TABLE ZADDITIONALASSETATTRIBUTES;"
            "CREATE VIEW ZADDITIONALASSETATTRIBUTES AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
            "SELECT i + 1 FROM n) SELECT 1 ZASSET, 'x' ZORIGINALFILENAME, '' ZTITLE FROM n");
    EXPECT_TRUE(refusal().contains(u"kendi boyuna sığmayacak")) << qUtf8Printable(refusal());
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_THROW(library.absentOriginals({}, stopped.get_token()), Cancelled);
}

TEST_F(MadeBundle, FindsOriginalsWhereTheyLieAndTellsWhyOthersAreNotThere) {
    make();
    const std::string place = "'/Volumes/Disk/a', 'x.jpg'";
    folder.write("disk/a/x.jpg", "outside");
    folder.write("disk2/a/x.jpg", "outside");
    using Why = AbsentOriginal::Why;
    const struct {
        const char* file; ///< in the bundle; @ stands for the UUID
        int kind, saved;
        std::string names; ///< directory and file in the row
        std::optional<std::string> found;
        std::optional<Why> why = {};
    } rows[] = {
        {"originals/0/@.jpeg", 0, 3, "'0', '@.jpeg'", "originals/0/@.jpeg"},
        {"scopes/cloudsharing/data/7/A/@.JPG", 0, 3, "'7/A', '@.JPG'",
         "scopes/cloudsharing/data/7/A/@.JPG"},
        {"resources/cloudsharing/data/7/A/@.JPG", 0, 3, "'7/A', '@.JPG'",
         "resources/cloudsharing/data/7/A/@.JPG"},
        {"scopes/cloudsharing/data/7/A/@.medium.MP4", 1, 3, "'7/A', '@.poster.JPG'",
         "scopes/cloudsharing/data/7/A/@.medium.MP4"},
        {"scopes/cloudsharing/data/7/A/@.poster.JPG",
         1,
         3,
         "'7/A', '@.poster.JPG'",
         {},
         Why::onlyInCloud},
        {"scopes/momentshared/originals/0/@.heic", 0, 3, "'0', '@.heic'",
         "scopes/momentshared/originals/0/@.heic"},
        {"scopes/syndication/originals/0/@.mov", 1, 3, "'0', '@.mov'",
         "scopes/syndication/originals/0/@.mov"},
        {nullptr, 0, 3, "'0', '@.heic'", {}, Why::onlyInCloud},
        {nullptr, 0, 10, place, "disk/a/x.jpg"},
        {nullptr, 0, 10, "'/Volumes/Disk2/a', 'x.jpg'", {}, Why::elsewhere},
        {nullptr, 0, 10, "'/Volumes/Disk/../Disk2/a', 'x.jpg'", {}, Why::elsewhere},
        {nullptr, 0, 3, place, {}},
        {nullptr, 0, 3, "'0', '/Volumes/Disk/a/x.jpg'", {}},
    };
    int key = 0;
    const auto filled = [&](std::string text) {
        for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;)
            text.replace(at, 1, uuid(key));
        return text;
    };
    LibraryChoices choices;
    choices.add(OriginalsMapping::parse(u"/Volumes/Disk="_s + pathText(folder / "disk")));
    library.use(choices);
    for (const auto& row : rows) {
        SCOPED_TRACE(++key);
        if (row.file != nullptr)
            folder.write("Made.photoslibrary/" + filled(row.file), "bytes");
        addAsset(key, ", ZDIRECTORY, ZFILENAME, ZKIND, ZSAVEDASSETTYPE",
                 filled(", " + row.names + ", ") + std::to_string(row.kind) + ", " +
                     std::to_string(row.saved));
        const auto all = library.fetchAssets();
        const auto resource = library.assetResources(asset(key)).at(0);
        EXPECT_EQ(resource.fileSize.has_value(), row.found.has_value());
        if (row.found)
            EXPECT_EQ(resource.location, row.found->starts_with("disk")
                                             ? folder / *row.found
                                             : std::filesystem::path(filled(*row.found)));
        else
            EXPECT_THROW(library.readContent(resource, {}), PhotoLibraryError);
        const auto absent = library.absentOriginals({asset(key)}, {});
        EXPECT_EQ(absent.empty() ? std::nullopt : std::optional(absent.begin()->second.why),
                  row.why);
        EXPECT_EQ(absent.empty() ? std::nullopt : std::optional(absent.begin()->second),
                  resource.absence);
    }
    for (const char* wrong : {"/Volumes/Disk", "=/mnt", "Disk=/mnt", "/Volumes/Disk=mnt"})
        EXPECT_THROW(OriginalsMapping::parse(QString::fromLatin1(wrong)), Error) << wrong;
}

TEST_F(MadeBundle, ReadsSharedAlbumsFromTheTableOfShares) {
    make();
    addAsset(1, ", ZVISIBILITYSTATE, ZCOLLECTIONSHARE", ", 2, 5");
    addAsset(2, ", ZVISIBILITYSTATE, ZCOLLECTIONSHARE, ZTRASHEDSTATE", ", 2, 5, 1");
    execute("INSERT INTO ZSHARE VALUES (5, 'S5', 'family', 0), (6, 'S6', 'empty', 0)");
    const auto shared = library.fetchAssetCollections(CollectionType::album, 101);
    ASSERT_EQ(shared.size(), 1u);
    EXPECT_EQ(shared[0].title, u"family"_s);
    EXPECT_EQ(shared[0].estimatedAssetCount, 1);
    EXPECT_THAT(keysOf(library.fetchAssets(shared[0])), ElementsAre(1));
}

TEST_F(MadeBundle, FindsRawTwinsAndVideoEdits) {
    make();
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
    using Remainders = RecordRemainders;
    EXPECT_EQ(remainderOf(library.assetResources(asset(1))), Remainders::raw);
    EXPECT_EQ(remainderOf(library.assetResources(asset(2))), Remainders::edit);

    LibraryChoices choices;
    choices.versions = LibraryChoices::Versions::edited;
    library.use(choices);
    EXPECT_THAT(listed(1), ElementsAre("IMG_1.JPG", "IMG_1.cr2")) << "there is no render";
    EXPECT_THAT(listed(2), ElementsAre("IMG_2.mov", "IMG_2.MOV", "IMG_2.AAE"));
    EXPECT_EQ(resourceToStage(library.assetResources(asset(2)))->location.parent_path(),
              "resources/renders/0");
    EXPECT_EQ(remainderOf(library.assetResources(asset(2))), Remainders::original);
}

/// An unplugged disk must not turn its pictures into ones that are only in iCloud.
TEST(FoldersBeneath, TellNothingOfARootThatIsAway) {
    const TemporaryFolder folder;
    EXPECT_TRUE(FoldersBeneath(folder.path()).isMissing("originals/0/a.jpg"));
    EXPECT_FALSE(FoldersBeneath(folder.path() / "away").isMissing("originals/0/a.jpg"));
}

TEST(PhotosBundleLibrary, RefusesWhatItCannotReadWithAReason) {
    const TemporaryFolder folder;
    RecordingLog log;
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
        PhotosBundleLibrary library(folder / row.name, folder / "work", log);
        const QString refusal = messageOf([&] { library.fetchAssets(); });
        EXPECT_TRUE(refusal.contains(QString::fromUtf8(row.reason)))
            << row.name << ": " << refusal.toStdString();
    }
    EXPECT_EQ(PhotosBundleLibrary(folder / "gone", folder / "work", log).authorizationStatus(),
              AuthorizationStatus::denied);
    EXPECT_EQ(PhotosBundleLibrary({}, folder / "work", log).authorizationStatus(),
              AuthorizationStatus::notDetermined);
    EXPECT_EQ(PhotosBundleLibrary(folder.path(), folder / "work", log).authorizationStatus(),
              AuthorizationStatus::authorized);
    EXPECT_FALSE(PhotosBundleLibrary::looksLikeBundle(folder.path()));
}

} // namespace quorvane::test
