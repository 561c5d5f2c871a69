#include "World.h"

#include "library/PhotoLibraryObserver.h"
#include "platform/folder/FolderLibrary.h"

#include <map>

namespace quorvane::test {

namespace {

std::map<std::filesystem::path, QByteArray> contentOf(const std::filesystem::path& folder) {
    std::map<std::filesystem::path, QByteArray> content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            content[entry.path()] = readFile(entry.path());
    return content;
}

std::map<QString, std::optional<QString>> digests(DatabaseManager& database) {
    std::map<QString, std::optional<QString>> digests;
    for (const SyncRecord& record : database.fetchPendingRecords(1000)) {
        EXPECT_EQ(record.syncStatus, SyncStatus::staged);
        digests[record.assetLocalIdentifier] = record.sha256Hash;
    }
    return digests;
}

} // namespace

TEST(StagingRealPictures, AFolderIsStagedToTheSameBytesEveryTimeAndStaysAsItIs) {
    QUORVANE_REQUIRE_REAL_DATA();
    World world;
    const auto root = world.folder / "photos";
    std::filesystem::copy(realDataFolder() / "media", root);
    const auto originals = contentOf(root);
    NoConsent consent;
    FolderLibrary library(root, consent, world.log);
    MediaMetadataService metadata(library, world.folders.pictures, world.log, world.clock);
    AssetStagingService staging(library, world.database, metadata, world.folders, world.console);
    Preferences preferences(world.folders.preferences());
    PhotoAlbumService albums(library, preferences, world.log);
    PhotoLibraryObserver observer(library, world.database, staging, albums, preferences,
                                  world.console);
    observer.initialScan();
    const auto identifiers = library.fetchAssets();
    ASSERT_GT(identifiers->size(), 10U);
    const auto stageAll = [&] {
        for (const PhotoAsset& asset : *identifiers) {
            while (world.status(asset.localIdentifier) == SyncStatus::discovered)
                staging.stageDiscoveredAssets();
            world.setStatus(asset.localIdentifier, SyncStatus::verified); // makes room
        }
        for (const PhotoAsset& asset : *identifiers)
            world.setStatus(asset.localIdentifier, SyncStatus::staged);
        return digests(world.database);
    };
    const auto first = stageAll();
    ASSERT_EQ(first.size(), identifiers->size());
    for (const auto& [identifier, digest] : first) {
        const auto file = staging.findStagingFile(identifier);
        ASSERT_TRUE(file);
        EXPECT_EQ(AssetStagingService::computeHashAndSize(*file).sha256, digest);
        staging.removeFromStaging(identifier);
        world.setStatus(identifier, SyncStatus::discovered);
    }
    EXPECT_EQ(world.stagedNames(), QStringList());
    EXPECT_EQ(stageAll(), first);
    EXPECT_EQ(contentOf(root), originals);
}

TEST(StagingRealPictures, HashesAfterTheDateWasWrittenAndARerunChangesNothing) {
    QUORVANE_REQUIRE_REAL_DATA();
    World world;
    const QByteArray original = readFile(realDataFolder() / "media/no_exif_jfif_only.jpg");
    FakePhotoLibrary::Entry entry;
    entry.asset.localIdentifier = assetID(1);
    entry.asset.creationDate = dateFromUnixSeconds(1'500'000'000);
    entry.resources = {{AssetResourceType::photo, QStringLiteral("a.jpg"), std::nullopt, {}}};
    entry.bytes = original;
    world.library.add(entry);
    world.discoverRecord(assetID(1));
    world.staging.stageDiscoveredAssets();

    const auto file = world.staging.findStagingFile(assetID(1));
    ASSERT_TRUE(file);
    EXPECT_NE(readFile(*file), original);
    const auto resolved =
        world.metadata.resolveDate(*file, std::nullopt, std::nullopt, DateFallbackMode::strictNone);
    ASSERT_TRUE(resolved);
    EXPECT_EQ(resolved->date, entry.asset.creationDate);
    const auto digest = world.record(assetID(1))->sha256Hash;
    EXPECT_EQ(AssetStagingService::computeHashAndSize(*file).sha256, digest);

    world.setStatus(assetID(1), SyncStatus::discovered); // a run that died before it recorded
    world.staging.stageDiscoveredAssets();
    EXPECT_EQ(world.record(assetID(1))->sha256Hash, digest);
    EXPECT_EQ(world.library.exported().size(), 1);
}

} // namespace quorvane::test
