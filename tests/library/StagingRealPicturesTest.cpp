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
    NoKnownFiles known;
    FolderLibrary library(root, known, consent, world.log);
    MediaMetadataService metadata(library, world.folders.pictures, world.log, world.clock);
    AssetStagingService staging(
        {library, world.database, world.life, world.known, metadata, world.console}, world.place,
        world.folders.stagingLock());
    Preferences preferences(world.folders.preferences());
    PhotoAlbumService albums(library, preferences, world.log);
    PhotoLibraryObserver observer(library, world.database, world.life, staging, albums, preferences,
                                  world.console);
    observer.initialScan();
    const auto identifiers = library.fetchAssets();
    ASSERT_GT(identifiers->size(), 10U);
    const auto stageAll = [&] {
        for (const PhotoAsset& asset : *identifiers) {
            const auto record = world.record(asset.localIdentifier);
            EXPECT_TRUE(staging.stage(record.value(), {}));
        }
        return digests(world.database);
    };
    const auto first = stageAll();
    ASSERT_EQ(first.size(), identifiers->size());
    for (const auto& [identifier, digest] : first) {
        const auto file = staging.findStagingFile(identifier);
        ASSERT_TRUE(file);
        EXPECT_EQ(computeHashAndSize(*file).sha256, digest);
        staging.removeFromStaging(identifier);
        world.setStatus(identifier, SyncStatus::discovered);
    }
    EXPECT_EQ(world.stagedNames(), QStringList());
    EXPECT_EQ(stageAll(), first);
    EXPECT_EQ(contentOf(root), originals);
}

} // namespace quorvane::test
