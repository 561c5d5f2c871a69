#include "FolderWorld.h"
#include "platform/bundle/PhotosBundleLibrary.h"

#include "store/RecordRemainders.h"
#include "support/Fakes.h"
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

std::string narrowTitleOf(const Collection& collection) {
    return std::visit([](const auto& c) { return c.title.toStdString(); }, collection);
}

std::vector<std::string> titlesOf(const std::vector<Collection>& collections) {
    std::vector<std::string> titles;
    std::ranges::transform(collections, std::back_inserter(titles), narrowTitleOf);
    return titles;
}

/// A copy of a real library; its files must be the same at the end.
class RealBundle : public testing::Test {
  protected:
    void SetUp() override { QUORVANE_REQUIRE_REAL_DATA(); }

    void open(const char* name) {
        bundle = folder / name;
        for (const auto& [file, bytes] : contentsOf(test::realDataFolder() / name))
            folder.write(name / file, bytes);
        before = contentsOf(bundle);
        library.emplace(bundle, work, log);
    }

    ~RealBundle() override {
        if (!library)
            return; // skipped
        library.reset();
        EXPECT_TRUE(contentsOf(bundle) == before) << "it was written to";
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
    test::RecordingLog log;
    std::filesystem::path work = folder / "work", bundle;
    std::map<std::filesystem::path, QByteArray> before;
    std::optional<PhotosBundleLibrary> library;
};

} // namespace

TEST_F(RealBundle, ReadsEveryLiveAssetOfTheOldModelInOrder) {
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

    const QString tulips = QStringLiteral("6191423D-8DB8-4D4C-92BE-9BBBA308AAC4/L0/001");
    EXPECT_EQ(library->captionOf(tulips), QString()) << "nobody asked for captions";
    LibraryChoices choices;
    choices.captions = true;
    library->use(choices);
    EXPECT_EQ(library->captionOf(tulips), QStringLiteral("Wedding tulips"));
}

TEST_F(RealBundle, ReadsTheNewModelWithItsKinds) {
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
    open(newLibrary);
    const PhotoAsset live = assetWith("B60C31AC-BE86-42C5-A383-A0A5710B18AE");
    const auto resources = library->assetResources(live);
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
    const SourceContent content = library->writeData(resources[0], folder / "staged.heic", {});
    EXPECT_EQ(test::readFile(folder / "staged.heic"),
              test::readFile(bundle / resources[0].location));
    EXPECT_EQ(content, library->readContent(resources[0], {}));
    EXPECT_EQ(content.version, library->versionOf(resources[0]));
    EXPECT_EQ(remainderOf(resources), RecordRemainders::edit | RecordRemainders::movie);
    for (const auto& [versions, movie] :
         {std::pair{LibraryChoices::Versions::original, "IMG_4394.MOV"},
          {LibraryChoices::Versions::edited, "FullSizeRender.mov"}}) {
        LibraryChoices choices;
        choices.versions = versions;
        choices.live = LibraryChoices::Live::motion;
        library->use(choices);
        const auto joined = movieToJoin(library->assetResources(live));
        EXPECT_EQ(joined.value().originalFilename, QString::fromLatin1(movie));
    }
    EXPECT_EQ(library->identity(), QStringLiteral("photos:3C434AF9-440E-438B-8D5C-7E017CAAA61D"));
}

TEST_F(RealBundle, ShowsAlbumsInTheirFoldersAndOrder) {
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

TEST_F(RealBundle, IsNeverWrittenNorNeedsToBe) {
    open(oldLibrary);
    const auto permit = [&](mode_t folders, mode_t files) {
        ::chmod(bundle.c_str(), 0700);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(bundle))
            ::chmod(entry.path().c_str(), entry.is_directory() ? folders : files);
        ::chmod(bundle.c_str(), folders);
    };
    permit(0500, 0400);
    const auto assets = library->fetchAssets();
    EXPECT_EQ(assets->size(), 13u);
    if (::geteuid() != 0) {
        EXPECT_EQ(library->authorizationStatus(), AuthorizationStatus::limited);
    }
    permit(0700, 0600);
    test::AgreeingGuard guard;
    EXPECT_THROW(library->deleteAssets({{assets->front(), {}}}, {}, guard, {}), PhotoLibraryError);
}

} // namespace quorvane
