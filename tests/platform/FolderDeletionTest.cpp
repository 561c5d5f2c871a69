#include "platform/folder/FolderDeletion.h"
#include "platform/folder/Mount.h"
#include "platform/folder/Trash.h"

#include "FolderWorld.h"
#include "platform/folder/FolderLibrary.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include <unistd.h>

namespace quorvane::test {

namespace {

using std::filesystem::path;

std::set<std::string> namesIn(const path& folder) {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        names.insert(entry.path().filename().native());
    return names;
}

/// A library and a Trash, both below the temporary folder.
class FolderDeletionTest : public testing::Test {
  protected:
    FolderDeletionTest() { qputenv("XDG_DATA_HOME", QByteArray::fromStdString(data.native())); }
    ~FolderDeletionTest() override {
        qunsetenv("XDG_DATA_HOME");
        std::filesystem::remove_all(folder.path()); // QTemporaryDir wants names that are text
    }

    void add(const path& name, const QByteArray& bytes = "picture") {
        setModified(folder.write("library" / name, bytes), 1'500'000'000);
    }

    std::vector<DeletionCandidate> candidates() {
        std::vector<DeletionCandidate> all;
        const AssetFetchResult assets = library.fetchAssets();
        for (const PhotoAsset& asset : *assets)
            all.push_back({asset, library.readContent(library.assetResources(asset).at(0), {})});
        return all;
    }

    TemporaryFolder folder;
    path root = folder / "library", data = folder / "home/data", files = data / "Trash/files";
    RememberedFiles known;
    FakeConfirmation confirmation;
    AgreeingGuard guard;
    RecordingLog log;
    FolderLibrary library{root, known, confirmation, log};
};

} // namespace

TEST_F(FolderDeletionTest, AsksOnceAndMovesToTheTrash) {
    for (int i = 0; i < 60; ++i)
        add("sub" + std::to_string(i) + "/a.jpg", QByteArray(100 + i, 'x'));
    add("b\xe9 100%.jpg");
    add("long.jpg");
    std::filesystem::rename(root / "long.jpg", root / (std::string(250, 'x') + ".jpg"));
    auto all = candidates();
    all.push_back(all.front());
    confirmation.answer = false;
    EXPECT_THROW(library.deleteAssets(all, {}, guard, {}), PhotoLibraryError);
    EXPECT_EQ(library.fetchAssets()->size(), 62u);
    confirmation.answer = true;
    library.deleteAssets(all, {0, 0, {}, QStringLiteral("dikkat"), {}}, guard, {});
    ASSERT_EQ(confirmation.asked.size(), 2u);
    EXPECT_EQ(confirmation.asked[1].count, 62);
    EXPECT_EQ(confirmation.asked[1].bytes, 60 * 100 + 59 * 30 + 14);
    EXPECT_EQ(confirmation.asked[1].place, pathText(data / "Trash"));
    EXPECT_EQ(confirmation.asked[1].warning, QStringLiteral("dikkat"));
    EXPECT_THAT(guard.groups, testing::ElementsAre(50, 12));
    EXPECT_EQ(guard.deleted, 62);
    EXPECT_TRUE(guard.reasons.isEmpty());
    EXPECT_TRUE(library.fetchAssets()->empty());

    const auto names = namesIn(files);
    EXPECT_EQ(names.size(), 62u);
    EXPECT_TRUE(names.contains("a.jpg") && names.contains("a.2.jpg") && names.contains("a.60.jpg"));
    EXPECT_EQ(namesIn(data / "Trash/info").size(), 62u);
    EXPECT_EQ(std::filesystem::status(data / "Trash").permissions(), std::filesystem::perms(0700));
    const QByteArray info = readFile(data / "Trash/info/b\xe9 100%.jpg.trashinfo");
    EXPECT_TRUE(info.startsWith("[Trash Info]\nPath=" + pathText(root).toUtf8() +
                                "/b%E9%20100%25.jpg\nDeletionDate=20"))
        << info.toStdString();
}

TEST_F(FolderDeletionTest, LeavesOutWhatIsNotProvenAndGoesOnWithTheOthers) {
    const struct {
        const char* reason; ///< empty: it goes
        const char* before; ///< done to the library while the person is asked
        const char* atTheLastMoment;
    } rows[] = {
        {"", "", ""},
        {"", "touch sub/a.jpg; chmod 600 sub/a.jpg", ""},
        {"aynı değil", "printf edited > sub/a.jpg", ""},
        {"aynı değil", "printf PICTURE > sub/a.jpg; touch -r sub2/b.jpg sub/a.jpg", ""},
        {"bulunamadı", "rm sub/a.jpg", ""},
        {"kitaplıkta bulunamadı", "mv sub/a.jpg sub/x; ln -s x sub/a.jpg", ""},
        {"klasör değil", "mv sub ../x; ln -s ../x sub", ""},
        {"üzereyken değişti", "", "mv sub/a.jpg sub/x; printf picture > sub/a.jpg"},
        {"üzereyken değişti", "", "printf new > sub/a.jpg"},
        {"deney", "", nullptr}, // the guard refuses
    };
    for (int at = 0; const auto& row : rows) {
        SCOPED_TRACE(at++);
        std::filesystem::remove_all(root);
        std::filesystem::remove_all(data);
        add("sub/a.jpg");
        add("sub2/b.jpg");
        const auto all = candidates();
        runIn(root, row.before);
        guard = {};
        guard.onWillDelete = [&, isFirst = true]() mutable {
            if (!std::exchange(isFirst, false))
                return;
            if (!row.atTheLastMoment)
                throw Error(QStringLiteral("deney"));
            runIn(root, row.atTheLastMoment);
        };
        const bool goes = *row.reason == 0;
        library.deleteAssets(all, {}, guard, {});
        EXPECT_EQ(guard.deleted, goes ? 2 : 1);
        EXPECT_EQ(namesIn(files).size(), goes ? 2u : 1u);
        EXPECT_EQ(namesIn(data / "Trash/info").size(), goes ? 2u : 1u);
        EXPECT_FALSE(std::filesystem::exists(root / "sub2/b.jpg"));
        if (goes)
            continue;
        ASSERT_EQ(guard.reasons.size(), 1);
        EXPECT_TRUE(guard.reasons[0].contains(QString::fromUtf8(row.reason)))
            << guard.reasons[0].toStdString();
    }
}

TEST_F(FolderDeletionTest, FindsTheTrashAsTheDesktopDoesOrDeletesNothing) {
    add("a.jpg");
    const auto all = candidates();
    folder.write("home/data", "a file");
    EXPECT_THROW(library.deleteAssets(all, {}, guard, {}), PhotoLibraryError);
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString((root / "data").native()));
    EXPECT_THROW(library.deleteAssets(all, {}, guard, {}), PhotoLibraryError);
    EXPECT_TRUE(confirmation.asked.empty());
    EXPECT_EQ(guard.deleted, 0);

    // A relative one does not count.
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QByteArray::fromStdString((folder / "user").native()));
    qputenv("XDG_DATA_HOME", "data");
    library.deleteAssets(all, {}, guard, {});
    qputenv("HOME", home);
    EXPECT_TRUE(std::filesystem::exists(folder / "user/.local/share/Trash/files/a.jpg"));
    EXPECT_FALSE(std::filesystem::exists("data"));
}

TEST_F(FolderDeletionTest, UsesTheTrashOfAnotherFileSystem) {
    const QTemporaryDir other(QStringLiteral("/dev/shm/quorvane-test-XXXXXX"));
    const path there = pathFrom(other.path()), top = there.parent_path();
    const std::string user = std::to_string(::getuid());
    const path own = top / (".Trash-" + user), shared = top / ".Trash";
    if (!other.isValid() || Mount::of(there) == Mount::of(folder.path()) ||
        std::filesystem::exists(own) || std::filesystem::exists(shared))
        GTEST_SKIP() << "no second file system without a Trash";
    const auto takenTo = [&](const path& place) {
        std::ofstream(there / "a ş.jpg") << "picture";
        const auto trash = Trash::forFilesIn(there);
        EXPECT_EQ(trash->place(), place);
        const FileDescriptor opened = openFile(there, O_RDONLY | O_DIRECTORY);
        EXPECT_EQ(trash->take(opened, there / "a ş.jpg"), "a ş.jpg");
        EXPECT_EQ(readFile(place / "files/a ş.jpg"), "picture");
        const std::string name = there.filename().native();
        EXPECT_TRUE(readFile(place / "info/a ş.jpg.trashinfo")
                        .contains(QByteArray::fromStdString("Path=" + name + "/a%20%C5%9F.jpg\n")));
        EXPECT_TRUE(trash->giveBack("a ş.jpg", opened, there / "a ş.jpg"));
        EXPECT_TRUE(namesIn(place / "info").empty());
    };
    takenTo(own);
    std::filesystem::create_directory(shared); // anybody could have made it
    takenTo(own);
    std::filesystem::permissions(shared, std::filesystem::perms(01777));
    takenTo(shared / user);
    std::filesystem::remove_all(shared);
    std::filesystem::create_directory_symlink(there, shared);
    takenTo(own);
    std::filesystem::remove(shared);
    std::filesystem::remove_all(own);
}

} // namespace quorvane::test
