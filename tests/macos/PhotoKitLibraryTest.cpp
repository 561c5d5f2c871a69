#include "platform/macos/PhotoKitLibrary.h"
#include "macos/StandInPhotos.h"
#include "platform/ChangeRecorder.h"
#include "platform/PhotoLibraryContract.h"
#include "support/Failures.h"
#include "support/Fakes.h"

#include <gmock/gmock.h>

#include <future>

/// GNUstep keeps what it made for itself until the process ends.
extern "C" int __lsan_is_turned_off() { // NOLINT: the sanitizer's name
    return 1;
}

namespace quorvane::test {

namespace {

/// GNUstep is not there yet when a process initialises its variables.
class BlocksAreObjects final : public testing::Environment {
    void SetUp() override { installBlockClasses(); }
};
const auto* const environment = testing::AddGlobalTestEnvironment(new BlocksAreObjects);

StandInPhotos& photos() {
    return StandInPhotos::shared();
}

class PhotoKitWorld final : public LibraryWorld {
  public:
    PhotoKitWorld() { photos().reset(); }
    ~PhotoKitWorld() override { photos().reset(); }

    PhotoLibrary& library() override { return photoKit; }
    void add(const std::string& name, const QByteArray& bytes, int date,
             const std::string& album) override {
        StandInPhotos::Asset asset{identifierOf(name), {{1, name, bytes}}, date, date};
        asset.mediaType = name.ends_with(".mov") ? 2 : 1;
        asset.resources[0].type = asset.mediaType;
        photos().put(asset);
        if (!album.empty())
            photos().put(StandInPhotos::Album{"ALBUM/L0/040", album, {asset.identifier}});
    }
    void replace(const std::string& name, const QByteArray& bytes) override {
        photos().put(StandInPhotos::Asset{identifierOf(name), {{1, name, bytes}}, 1000, 5000});
    }
    void takeBytes(const std::string& name) override {
        photos().put(StandInPhotos::Asset{identifierOf(name), {{1, name, "", true}}, 1000, 1000});
        set([](auto& mood) { mood.isCloudReachable = false; });
    }
    void answerDeletion(bool agreed) override {
        set([agreed](auto& mood) { mood.agreesToDeletion = [agreed] { return agreed; }; });
    }

    static std::string identifierOf(const std::string& name) { return name + "/L0/001"; }

    template <typename Change>
    void set(Change change) {
        StandInPhotos::Mood mood = photos().mood();
        change(mood);
        photos().set(mood);
    }

    FakeConfirmation confirmation;
    RecordingLog log;
    PhotoKitLibrary photoKit{confirmation, log};
};

class PhotoKitLibraryTest : public testing::Test {
  protected:
    PhotoAssetResource original(const char* name) {
        return library.assetResources(assetNamed(name)).at(0);
    }

    static PhotoAsset assetNamed(const char* name) {
        PhotoAsset asset;
        asset.localIdentifier = QString::fromStdString(PhotoKitWorld::identifierOf(name));
        return asset;
    }

    PhotoKitWorld world;
    PhotoKitLibrary& library = world.photoKit;
    TemporaryFolder out;
    AgreeingGuard guard;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(PhotoKit, PhotoLibraryContract,
                         testing::Values(+[]() -> std::shared_ptr<LibraryWorld> {
                             return std::make_shared<PhotoKitWorld>();
                         }));

TEST_F(PhotoKitLibraryTest, ShowsNoEmptyLibraryToWhomTheSystemRefuses) {
    for (const int status : {0, 1, 2}) {
        world.set([&](auto& mood) { mood.authorization = status; });
        EXPECT_EQ(static_cast<int>(*library.requestAuthorization({})), status);
        EXPECT_THROW(library.fetchAssets(), PhotoLibraryError);
        EXPECT_THROW(library.fetchTopLevelUserCollections(), PhotoLibraryError);
    }
    photos().hold(true); // the person does not answer
    std::stop_source stop;
    std::jthread impatient([&] { stop.request_stop(); });
    EXPECT_FALSE(library.requestAuthorization(stop.get_token()));
}

TEST_F(PhotoKitLibraryTest, TakesWhatIsMissingForMissing) {
    StandInPhotos::Asset bare{"U/L0/001", {{1, std::nullopt, "x"}}};
    bare.place = {{41.0, 29.0}};
    bare.subtypes = mediaSubtypePhotoLive;
    photos().put(bare);
    bare = {"V/L0/001", {{1, "a/b\n.jpg", "x"}}};
    bare.place = {{-180.0, -180.0}};
    photos().put(bare);
    const auto assets = library.fetchAssets();
    EXPECT_FALSE(assets->at(0).creationDate || assets->at(0).modificationDate);
    EXPECT_EQ(assets->at(0).location, (GeoLocation{41, 29, 0}));
    EXPECT_EQ(assets->at(0).mediaSubtypes, mediaSubtypePhotoLive);
    EXPECT_FALSE(assets->at(1).location);
    EXPECT_EQ(library.assetResources(assets->at(0)).at(0).originalFilename, QStringLiteral("U"));
    const auto named = library.assetResources(assets->at(1)).at(0);
    EXPECT_EQ(named.originalFilename, QStringLiteral("a_b_.jpg"));
    EXPECT_EQ(library.readContent(named, {}), library.writeData(named, out / "x", {}));

    photos().put(StandInPhotos::Album{"A/L0/040", std::nullopt, {"U/L0/001"}, false, false, true});
    photos().put(StandInPhotos::Album{"F/L0/020", "Klasör", {"A/L0/040"}, true, true});
    const auto top = library.fetchTopLevelUserCollections();
    ASSERT_EQ(top.size(), 1u);
    const auto inside = library.fetchCollections(std::get<CollectionList>(top[0]));
    const auto& album = std::get<AssetCollection>(inside.at(0));
    EXPECT_TRUE(album.title.isEmpty());
    EXPECT_FALSE(album.estimatedAssetCount);
    EXPECT_EQ(library.fetchCollectionLists(CollectionListType::folder).size(), 1u);
    EXPECT_TRUE(library.fetchCollectionLists(CollectionListType::smartFolder).empty());
    EXPECT_TRUE(library.fetchAssetCollections(CollectionType::smartAlbum, std::nullopt).empty());
}

TEST_F(PhotoKitLibraryTest, FetchesFromTheCloudAndSaysWhyItCannot) {
    const auto text = [&] {
        return messageOf([&] { library.writeData(original("a"), out / "a", {}); });
    };
    photos().put(StandInPhotos::Asset{"a/L0/001", {{1, "a", "bytes", true}}});
    world.set([](auto& mood) { mood.answersTwice = true; });
    EXPECT_EQ(text(), QString());
    photos().settle();
    EXPECT_EQ(readFile(out / "a"), "bytes");
    std::filesystem::remove(out / "a");
    world.set([](auto& mood) { mood.isCloudReachable = false; });
    EXPECT_TRUE(text().contains(QStringLiteral("It could not be done.")));
    world.set([](auto& mood) { mood.describesErrors = false; });
    EXPECT_TRUE(text().contains(QStringLiteral("PHPhotosErrorDomain 3164")));
    world.set([](auto& mood) { mood = {.diskIsFull = true}; });
    EXPECT_TRUE(text().contains(QStringLiteral("yer kalmadı"))) << text().toStdString();
    EXPECT_TRUE(std::filesystem::is_empty(out.path()));
}

TEST_F(PhotoKitLibraryTest, ReturnsWhenStoppedAndCleansUpAfterALateAnswer) {
    world.add("a", QByteArray(10'000, 'x'), 1000, {});
    const auto resource = original("a");
    photos().settle();
    for (const bool isExport : {true, false}) {
        photos().hold(true);
        std::stop_source stop;
        std::jthread stopper([&] {
            while (isExport && std::filesystem::is_empty(out.path()))
                std::this_thread::yield();
            stop.request_stop();
        });
        if (isExport)
            EXPECT_THROW(library.writeData(resource, out / "a", stop.get_token()), Cancelled);
        else
            EXPECT_THROW(library.readContent(resource, stop.get_token()), Cancelled);
        EXPECT_THROW(library.fetchAssets(stop.get_token()), Cancelled);
        photos().hold(false); // only now it goes on writing
        photos().settle();
        EXPECT_TRUE(std::filesystem::is_empty(out.path()));
    }
}

TEST_F(PhotoKitLibraryTest, TellsOfChangesHoweverTheyAreReported) {
    for (const bool isIncremental : {true, false}) {
        world.set([&](auto& mood) { mood.isIncremental = isIncremental; });
        world.add("stays", "x", 1000, "Albüm");
        world.add("goes", "x", 1000, {});
        ChangeRecorder whole(library.fetchAssets());
        photos().settle();
        library.registerChangeObserver(whole);
        photos().hold(true);
        world.replace("stays", "edited");
        world.add("comes", "x", 500, {});
        photos().removeAsset("goes/L0/001");
        photos().hold(false);
        photos().settle();
        EXPECT_EQ(whole.inserted(), QStringList{QStringLiteral("comes/L0/001")});
        EXPECT_EQ(whole.changed(), QStringList{QStringLiteral("stays/L0/001")});
        EXPECT_EQ(whole.removed(), QStringList{QStringLiteral("goes/L0/001")});
        library.unregisterChangeObserver(whole);
        photos().removeAsset("comes/L0/001");
    }
}

TEST_F(PhotoKitLibraryTest, LeavesInThePhotosLibraryWhatMayNotGo) {
    std::vector<DeletionCandidate> all;
    const auto add = [&](const char* name, auto change) {
        StandInPhotos::Asset asset{world.identifierOf(name), {{1, name, "x"}}};
        change(asset);
        photos().put(asset);
        all.push_back({assetNamed(name), library.readContent(original(name), {})});
    };
    add("good", [](auto&) {});
    add("burst", [](auto& asset) { asset.isBurst = true; });
    add("shared", [](auto& asset) { asset.mayBeDeleted = false; });
    add("gone", [](auto&) {});
    photos().removeAsset("gone/L0/001");
    world.confirmation.answer = false;
    EXPECT_THROW(library.deleteAssets(all, {0, 0, {}, QStringLiteral("dikkat"), {}}, guard, {}),
                 PhotoLibraryError);
    EXPECT_EQ(world.confirmation.asked.at(0).warning, QStringLiteral("dikkat"));
    EXPECT_TRUE(guard.groups.empty());
    library.deleteAssets(all, {}, guard, {});
    EXPECT_EQ(guard.deleted, 1);
    EXPECT_EQ(guard.reasons.size(), 3);

    // A stop while the system asks: nobody knows yet.
    add("asked", [](auto&) {});
    guard = {};
    std::stop_source stop;
    std::promise<void> answered;
    world.set([&](auto& mood) {
        mood.agreesToDeletion = [&] {
            stop.request_stop();
            answered.get_future().wait();
            return true;
        };
    });
    library.deleteAssets({all.back()}, {}, guard, stop.get_token());
    EXPECT_TRUE(guard.deleted == 0 && guard.reasons.isEmpty());
    answered.set_value();
    photos().settle();
    EXPECT_FALSE(library.factsOf(QStringLiteral("asked/L0/001")));
}

} // namespace quorvane::test
