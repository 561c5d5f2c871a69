#include "ChangeRecorder.h"
#include "FolderWorld.h"
#include "platform/folder/FolderLibrary.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

/// A watched folder. Every file is expected to be told of once, whatever happens to it.
class FolderChanges : public testing::Test {
  protected:
    FolderChanges() {
        folder.write("library/old.jpg", "x");
        folder.write("outside/moved.jpg", "x");
        folder.write("outside/tree/deep/1.jpg", "x");
    }
    ~FolderChanges() override {
        if (observer)
            library.unregisterChangeObserver(*observer);
    }

    void observe(const AssetFetchResult& assets) {
        observer.emplace(assets);
        library.registerChangeObserver(*observer);
        // The first call means that the folders are watched now.
        EXPECT_TRUE(observer->waitFor([&] { return observer->calls() > 0; }));
    }

    /// What was told, once `count` files were.
    std::vector<std::string> told(qsizetype count) {
        EXPECT_TRUE(observer->waitFor([&] { return observer->inserted().size() >= count; }));
        const AssetFetchResult assets = library.fetchAssets(observer->inserted());
        std::vector<std::string> paths;
        for (const PhotoAsset& asset : *assets)
            paths.push_back(library.assetResources(asset).at(0).location.native());
        return paths;
    }

    TemporaryFolder folder;
    std::filesystem::path root = folder / "library";
    FakeConfirmation confirmation;
    RecordingLog log;
    NoKnownFiles known;
    FolderLibrary library{root, known, confirmation, log, {20ms, 200ms, 100ms, 300ms}};
    std::optional<ChangeRecorder> observer;
};

} // namespace

TEST_F(FolderChanges, TellsOfEveryNewFileOnce) {
    observe(library.fetchAssets());
    folder.write("library/dropped.jpg", "x");
    folder.write("library/new/deep/first.jpg", "x"); // before anybody can watch the folder
    std::filesystem::rename(folder / "outside/moved.jpg", root / "moved.jpg");
    std::filesystem::rename(folder / "outside/tree", root / "tree");
    folder.write("library/notes.txt", "x");
    EXPECT_THAT(told(4), testing::UnorderedElementsAre("dropped.jpg", "new/deep/first.jpg",
                                                       "moved.jpg", "tree/deep/1.jpg"));
    folder.write("library/new/deep/second.jpg", "x");
    folder.write("library/tree/deep/2.jpg", "x");
    told(6);
    std::filesystem::remove(root / "old.jpg");
    EXPECT_TRUE(observer->waitFor([&] { return !observer->removed().isEmpty(); }));
    EXPECT_EQ(observer->inserted().size(), 6);
    EXPECT_EQ(observer->removed().size(), 1);
}

TEST_F(FolderChanges, TellsOfAFileWhenItWasWrittenAndClosed) {
    folder.write("library/slow.jpg", "first part");
    FileDescriptor slow = openFile(root / "slow.jpg", O_WRONLY | O_APPEND);
    EXPECT_EQ(library.fetchAssets()->size(), 1u) << "is not whole yet";
    FileDescriptor old = openFile(root / "old.jpg", O_WRONLY | O_APPEND);
    EXPECT_EQ(library.fetchAssets()->size(), 1u) << "is what it was, whoever has it open";
    ASSERT_EQ(::write(old.get(), "more", 4), 4);
    EXPECT_EQ(library.fetchAssets()->size(), 0u) << "is being changed";
    old = FileDescriptor();
    observe(library.fetchAssets());
    FileDescriptor other = openFile(root / "other.jpg", O_WRONLY | O_CREAT, 0644);
    std::filesystem::create_hard_link(root / "old.jpg", root / "linked.jpg"); // never closed
    EXPECT_THAT(told(1), testing::ElementsAre("linked.jpg"));
    slow = FileDescriptor();
    EXPECT_THAT(told(2), testing::ElementsAre("linked.jpg", "slow.jpg"));
    other = FileDescriptor();
    EXPECT_THAT(told(3), testing::ElementsAre("linked.jpg", "slow.jpg", "other.jpg"));
}

TEST_F(FolderChanges, LosesNothingWhenTheKernelsQueueOverflows) {
    observe(library.fetchAssets());
    observer->hold(true);
    const int calls = observer->calls();
    folder.write("library/one.jpg", "x");
    EXPECT_TRUE(observer->waitFor([&] { return observer->calls() > calls; }));
    for (int i = 0; i < 5'000; ++i) { // four events each; the queue takes 16,384
        std::filesystem::rename(root / "old.jpg", root / "other.jpg");
        std::filesystem::rename(root / "other.jpg", root / "old.jpg");
    }
    folder.write("library/two.jpg", "x"); // of which the kernel cannot tell any more
    observer->hold(false);
    EXPECT_THAT(told(2), testing::ElementsAre("one.jpg", "two.jpg"));
    EXPECT_TRUE(observer->removed().isEmpty());
}

TEST_F(FolderChanges, TakesALibraryThatIsGoneForUnreadableAndNotForEmpty) {
    observe(library.fetchAssets());
    std::filesystem::rename(root, folder / "unplugged");
    EXPECT_TRUE(waitOnMainThread([&] { return log.contains(QStringLiteral("okunamıyor")); }));
    std::filesystem::rename(folder / "unplugged", root);
    folder.write("library/new.jpg", "x");
    EXPECT_THAT(told(1), testing::ElementsAre("new.jpg"));
    EXPECT_TRUE(observer->removed().isEmpty());
}

TEST_F(FolderChanges, TellsOfTheAlbumThatTheObserverHolds) {
    folder.write("library/album/1.jpg", "x");
    const auto albums = library.fetchAssetCollections(CollectionType::album, std::nullopt);
    observe(library.fetchAssets(albums.at(0)));
    folder.write("library/elsewhere.jpg", "x");
    folder.write("library/album/2.jpg", "x");
    EXPECT_THAT(told(1), testing::ElementsAre("album/2.jpg"));
    folder.write("library/album/1.jpg", "edited"); // another picture
    EXPECT_TRUE(observer->waitFor([&] { return !observer->removed().isEmpty(); }));
    EXPECT_EQ(observer->inserted().size(), 2);
}

} // namespace quorvane::test
