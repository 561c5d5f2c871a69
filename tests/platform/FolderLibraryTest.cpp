#include "platform/folder/FolderLibrary.h"
#include "FolderWorld.h"

#include "foundation/File.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

using test::setModified;
using test::TemporaryFolder;

std::vector<PhotoAsset> all(PhotoLibrary& library) {
    return *library.fetchAssets();
}

class FolderLibraryTest : public testing::Test {
  protected:
    ~FolderLibraryTest() override {
        // Names that are not text are beyond QTemporaryDir.
        std::filesystem::remove_all(folder.path());
    }

    void add(const std::filesystem::path& name, time_t modified = 1'500'000'000) {
        setModified(folder.write("library" / name, "picture"), modified);
    }

    std::vector<std::string> locations(const AssetFetchResult& assets) {
        std::vector<std::string> paths;
        for (const PhotoAsset& asset : *assets)
            paths.push_back(library.assetResources(asset).at(0).location.native());
        return paths;
    }

    PhotoAsset assetAt(const std::string& path) {
        for (const PhotoAsset& asset : all(library))
            if (library.assetResources(asset).at(0).location == path)
                return asset;
        ADD_FAILURE() << "no asset at " << path;
        return {};
    }

    TemporaryFolder folder;
    std::filesystem::path root = folder / "library";
    test::RememberedFiles known;
    NoKnownFiles nothing;
    test::FakeConfirmation confirmation;
    test::RecordingLog log;
    FolderLibrary library{root, known, confirmation, log};
};

QString titleOf(const Collection& collection) {
    return std::visit([](const auto& c) { return c.title; }, collection);
}

} // namespace

TEST_F(FolderLibraryTest, FindsPicturesAndMoviesByExtensionOldestFirst) {
    add("z/old.JPG", 1000);
    add("b.heic", 3000);
    add("a.Mov", 3000);
    add("new.m4v", 4000);
    add("camera.CR2", 5000);
    add("notes.txt");
    add("tape.avi", 6000);
    const auto assets = library.fetchAssets();
    EXPECT_THAT(locations(assets), testing::ElementsAre("z/old.JPG", "a.Mov", "b.heic", "new.m4v",
                                                        "camera.CR2", "tape.avi"));
    EXPECT_EQ(assets->at(0).mediaType, AssetMediaType::image);
    EXPECT_EQ(assets->at(1).mediaType, AssetMediaType::video);
    EXPECT_FALSE(assets->at(0).creationDate || assets->at(0).location);
    const auto resource = library.assetResources(assets->at(1)).at(0);
    EXPECT_EQ(resource.type, AssetResourceType::video);
    EXPECT_EQ(resource.originalFilename, QStringLiteral("a.Mov"));
    EXPECT_EQ(resource.fileSize, 7);
}

TEST_F(FolderLibraryTest, ExportsEveryFileUnderAnIdentifierOfItsOwnAcrossRunsAndPlaces) {
    std::vector<std::string> names = {"a.jpg",          "A.jpg",           "a.JPG",
                                      "a.jpeg",         "sub/a.jpg",       "gün batımı 🌅.jpg",
                                      "two\nlines.jpg", "caf\xc3\xa9.jpg", "cafe\xcc\x81.jpg",
                                      "latin\xe9.jpg",  "latin\xe8.jpg",   " .jpg"};
    names.push_back(std::string(240, 'x') + ".jpg");
    for (const std::string& name : names)
        add(name);
    const auto assets = library.fetchAssets();
    std::set<QString> identifiers;
    for (const PhotoAsset& asset : *assets) {
        EXPECT_TRUE(asset.localIdentifier.text().endsWith(QStringLiteral("/L0/001")));
        EXPECT_EQ(asset.localIdentifier, asset.localIdentifier.text().toUpper());
        EXPECT_EQ(asset.localIdentifier.text().size(), 43);
        identifiers.insert(asset.localIdentifier);
        const auto resource = library.assetResources(asset).at(0);
        EXPECT_LE(resource.originalFilename.toUtf8().size(), 255);
        EXPECT_TRUE(resource.originalFilename.endsWith(pathText(resource.location.extension())));
        EXPECT_FALSE(resource.originalFilename.contains(u'\n'));
        const auto exported = folder / std::to_string(identifiers.size());
        library.writeData(resource, exported, {});
        EXPECT_EQ(test::readFile(exported), "picture");
    }
    EXPECT_EQ(identifiers.size(), names.size());
    EXPECT_THAT(locations(assets), testing::UnorderedElementsAreArray(names));

    std::filesystem::create_directory_symlink(root, folder / "link");
    FolderLibrary same(folder / "link", nothing, confirmation, log);
    for (const PhotoAsset& asset : all(same))
        EXPECT_TRUE(identifiers.contains(asset.localIdentifier));

    // A file of the same name in another library is another picture.
    std::filesystem::copy(root, folder / "other");
    FolderLibrary other(folder / "other", nothing, confirmation, log);
    for (const PhotoAsset& asset : all(other))
        EXPECT_FALSE(identifiers.contains(asset.localIdentifier));
}

TEST_F(FolderLibraryTest, LeavesOutHiddenLinkedAndForeignThingsWithOneLineEach) {
    add("kept.jpg");
    add(".hidden.jpg");
    add("._kept.jpg");
    add(".cache/inside.jpg");
    add("QuorvaneStaging_Permanent/staged.jpg");
    add("album/QuorvaneStaging_Other/staged.jpg");
    add("notes.txt");
    add("tape.flv");
    add("Fotoğraflar.photoslibrary/originals/1/x.jpg");
    folder.write("outside/elsewhere.jpg", "other");
    std::filesystem::create_symlink(folder / "outside", root / "away");
    std::filesystem::create_symlink(folder / "outside/elsewhere.jpg", root / "away.jpg");
    std::filesystem::create_symlink(root, root / "loop");
    std::filesystem::create_symlink(root / "nowhere", root / "broken.jpg");
    ASSERT_EQ(::mkfifo((root / "pipe.jpg").c_str(), 0600), 0);
    EXPECT_THAT(locations(library.fetchAssets()), testing::ElementsAre("kept.jpg"));
    library.fetchAssets(); // a second scan does not repeat the lines
    // Hidden: a file, links to a folder, to a picture, to the library and to nothing.
    EXPECT_EQ(library.leftOut(), (LeftOut{0, 0, 5, 3}));
    EXPECT_EQ(log.messages().filter(QStringLiteral("Resim veya film olmayan 3 dosya")).size(), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("tape.flv")));
    QStringList skipped;
    for (const QString& line : log.messages())
        if (line.startsWith(QStringLiteral("[FolderLibrary] Atlandı: ")))
            skipped.append(line.section(u' ', 2, -1).section(QStringLiteral(" ("), 0, 0));
    skipped.sort();
    EXPECT_EQ(skipped.join(u'|'),
              QStringLiteral(".cache|.hidden.jpg|Fotoğraflar.photoslibrary|away|away.jpg|"
                             "broken.jpg|loop|pipe.jpg"));
}

TEST_F(FolderLibraryTest, SkipsWhatItMayNotRead) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may read everything";
    add("kept.jpg");
    add("locked.jpg");
    add("closed/inside.jpg");
    ::chmod((root / "locked.jpg").c_str(), 0);
    ::chmod((root / "closed").c_str(), 0);
    EXPECT_THAT(locations(library.fetchAssets()), testing::ElementsAre("kept.jpg"));
    EXPECT_TRUE(log.contains(QStringLiteral("locked.jpg (izin yok)")));
    EXPECT_TRUE(log.contains(QStringLiteral("closed (izin yok)")));
    EXPECT_EQ(library.leftOut().unreadable, 2);
    ::chmod((root / "closed").c_str(), 0700);
}

TEST_F(FolderLibraryTest, ShowsFoldersAsAlbumsAndListsOfAlbums) {
    add("loose.jpg");
    add("2020/spring.jpg");
    add("2020/Yaz/beach.jpg", 2000);
    add("2020/Yaz/sea.jpg", 1000);
    add("Yaz/other.jpg");
    add("Documents/letter.txt");
    const auto top = library.fetchTopLevelUserCollections();
    ASSERT_EQ(top.size(), 3u); // the album 2020, the list 2020, the album Yaz
    EXPECT_EQ(titleOf(top[0]), QStringLiteral("2020"));
    EXPECT_TRUE(std::holds_alternative<AssetCollection>(top[0]));
    const auto inside = library.fetchCollections(std::get<CollectionList>(top[1]));
    ASSERT_EQ(inside.size(), 1u);
    const auto& summer = std::get<AssetCollection>(inside[0]);
    EXPECT_EQ(summer.title, QStringLiteral("Yaz"));
    EXPECT_EQ(summer.estimatedAssetCount, 2);
    EXPECT_NE(summer.localIdentifier, std::get<AssetCollection>(top[2]).localIdentifier);
    EXPECT_THAT(locations(library.fetchAssets(summer)),
                testing::ElementsAre("2020/Yaz/sea.jpg", "2020/Yaz/beach.jpg"));

    EXPECT_EQ(library.fetchAssetCollections(CollectionType::album, std::nullopt).size(), 3u);
    EXPECT_TRUE(
        library.fetchAssetCollections(CollectionType::album, collectionSubtype::albumCloudShared)
            .empty());
    EXPECT_TRUE(library.fetchAssetCollections(CollectionType::smartAlbum, std::nullopt).empty());
    EXPECT_EQ(library.fetchCollectionLists(CollectionListType::folder).size(), 1u);
    EXPECT_EQ(library.fetchAssetCollection(summer.localIdentifier)->title, summer.title);
    EXPECT_FALSE(library.fetchAssetCollection(QStringLiteral("gone/L0/040")));
}

TEST_F(FolderLibraryTest, AnswersForItsAuthorization) {
    add("a.jpg");
    EXPECT_EQ(FolderLibrary({}, nothing, confirmation, log).authorizationStatus(),
              AuthorizationStatus::notDetermined);
    EXPECT_EQ(library.authorizationStatus(), AuthorizationStatus::authorized);
    FolderLibrary gone(folder / "gone", nothing, confirmation, log);
    EXPECT_EQ(gone.authorizationStatus(), AuthorizationStatus::denied);
    EXPECT_THROW(gone.fetchAssets(), PhotoLibraryError); // never an empty library
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everywhere";
    ::chmod(root.c_str(), 0500);
    EXPECT_EQ(library.authorizationStatus(), AuthorizationStatus::limited);
    test::AgreeingGuard guard;
    EXPECT_THROW(library.deleteAssets({{assetAt("a.jpg"), {}}}, {}, guard, {}), PhotoLibraryError);
    ::chmod(root.c_str(), 0700);
}

} // namespace quorvane
