#include "app/Composition.h"
#include "app/cli/SignIn.h"
#include "emulator/GoogleEmulator.h"
#include "google/CurlHttpClient.h"
#include "macos/StandInPhotos.h"
#include "platform/FolderWorld.h"
#include "platform/macos/MacPorts.h"
#include "sample/SampleMedia.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace Qt::StringLiterals;
using Counts = std::map<SyncStatus, int>;

/// The product of a Mac over a home folder.
struct House {
    House(const std::filesystem::path& home, const QString& service, const QString& accessToken) {
        core.emplace(
            UserFolders{home, home / "Pictures", home / "temporary"},
            Ports{console, clock, http, keychain, confirmation, clock, service, &photosApp});
        google.emplace(*core, noSignIn);
        google->tokens.writeToken(tokenKeys::accessToken, accessToken);
        google->tokens.writeToken(tokenKeys::expiry, u"4000000000"_s);
        google->tokens.writeToken(tokenKeys::userID, u"1"_s);
        library.emplace(*core, *google, LibraryAt(*core, PhotosApp::libraryPath));
    }

    SyncRunOutcome run(
        bool deletes, const std::function<void()>& discovered = [] {}) {
        SyncRunCallbacks callbacks;
        callbacks.discovered = [&] {
            library->library->registerChangeObserver(library->observer);
            discovered();
        };
        const auto outcome = runSync(library->run, {.deletes = deletes}, callbacks, {});
        library->library->unregisterChangeObserver(library->observer);
        return outcome;
    }

    Counts counts() {
        const auto counts = library->state.db.countByStatus();
        return {counts.begin(), counts.end()};
    }

    Console console{Console::Channel::silent};
    SystemClock clock;
    CurlHttpClient http;
    KeychainStore keychain;
    FakeConfirmation confirmation;
    MacPhotos photosApp;
    cli::NoAuthSession noSignIn;
    std::optional<CoreServices> core;
    std::optional<GoogleServices> google;
    std::optional<LibraryServices> library;
};

/// The n-th picture, with the identifier that Photos would give it.
StandInPhotos::Asset picture(int n) {
    const std::string number = std::to_string(1000 + n);
    return {"00000000-0000-4000-8000-00000000" + number + "/L0/001",
            {{1, "IMG_" + number + ".JPG",
              sample::jpeg(static_cast<std::uint32_t>(n), QByteArray("2021:03:05 18:22:10"))}},
            1.6e9 + n,
            1.6e9 + n};
}

class PhotosBackup : public testing::Test {
  protected:
    PhotosBackup() {
        StandInPhotos::shared().reset();
        google.start();
    }
    ~PhotosBackup() override { StandInPhotos::shared().reset(); }

    std::set<QByteArray> contents() const {
        std::set<QByteArray> found;
        for (const auto& item : google.mediaItems())
            EXPECT_TRUE(found.insert(item.sha256).second) << "sent twice";
        return found;
    }

    TemporaryFolder folder;
    GoogleEmulator google;
    QString token = google.issueTokens().accessToken;
};

TEST_F(PhotosBackup, EndsWithTheOriginalsThatMayGoInTheTrashOfPhotos) {
    auto cloud = picture(1), live = picture(2);
    cloud.resources[0].isInCloud = true;
    live.subtypes = mediaSubtypePhotoLive;
    live.resources.push_back(
        {9, "IMG_1002.MOV", sample::movie(7, sample::MovieBrand::quickTime, 3'700'000'000u)});
    for (const auto& asset : {cloud, live, picture(3)})
        StandInPhotos::shared().put(asset);
    House house(folder / "home", google.baseURL(), token);
    auto mood = StandInPhotos::shared().mood();
    mood.agreesToDeletion = [] { return false; };
    StandInPhotos::shared().set(mood);
    const auto refused = house.run(true, [] {
        StandInPhotos::shared().put(picture(4)); // while the run goes on
        StandInPhotos::shared().settle();
    });
    EXPECT_FALSE(refused.error) << refused.error->toStdString();
    if (house.counts() != Counts{{SyncStatus::verified, 4}})
        house.run(false); // what came too late for the first run's last pass
    EXPECT_EQ(house.counts(), (Counts{{SyncStatus::verified, 4}}));
    EXPECT_EQ(contents().size(), 4u);
    EXPECT_EQ(StandInPhotos::shared().rows().size(), 4u);

    StandInPhotos::shared().set({});
    const auto agreed = house.run(true);
    EXPECT_FALSE(agreed.error);
    EXPECT_EQ(house.counts(), (Counts{{SyncStatus::verified, 1}, {SyncStatus::deletedLocally, 3}}));
    ASSERT_EQ(StandInPhotos::shared().rows().size(), 1u)
        << "the movie of the Live Photo went nowhere";
    EXPECT_EQ(StandInPhotos::shared().rows()[0]->identifier, live.identifier);
    EXPECT_EQ(contents().size(), 4u);
}

TEST_F(PhotosBackup, AnotherLibraryOfTheSystemHasAStateOfItsOwn) {
    constexpr int many = 10;
    for (const int first : {0, 500, 0}) { // the person made another one the system's, and went back
        StandInPhotos::shared().reset();
        for (int n = first; n < first + many; ++n)
            StandInPhotos::shared().put(picture(n));
        House house(folder / "home", google.baseURL(), token);
        EXPECT_FALSE(house.run(false).error);
        EXPECT_EQ(house.counts(), (Counts{{SyncStatus::verified, many}}));
    }
    EXPECT_EQ(contents().size(), 2u * many);
    EXPECT_EQ(google.requestCount(emulator::RequestKind::upload), 2 * many);
}

} // namespace

} // namespace quorvane::test
