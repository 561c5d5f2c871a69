#include "library/FileExport.h"

#include "library/PhotoLibrary.h"
#include "support/Failures.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

using test::entriesIn;
using test::TemporaryFolder;

/// A large sparse file on another file system than the destination's, so that no file system
/// shares its blocks, and a thread that acts as soon as its copy has begun.
class FileExportUnderWay : public testing::Test {
  protected:
    void SetUp() override {
        if (!original_.isValid())
            GTEST_SKIP() << "no second file system for temporary files";
        path = pathFrom(original_.filePath(QStringLiteral("original.mov")));
        std::ofstream(path).close();
        std::filesystem::resize_file(path, 512 << 20);
        std::filesystem::create_directory(folder / "out");
    }

    std::jthread whenTheCopyHasBegun(std::function<void()> act) {
        return std::jthread([this, act = std::move(act)](const std::stop_token& end) {
            while (!end.stop_requested() && std::filesystem::is_empty(folder / "out"))
                std::this_thread::yield();
            act();
        });
    }

    TemporaryFolder folder;
    std::filesystem::path path;

  private:
    QTemporaryDir original_{QStringLiteral("/dev/shm/quorvane-test-XXXXXX")};
};

TEST_F(FileExportUnderWay, LeavesNothingBehindWhenStopped) {
    std::stop_source stop;
    const auto stopper = whenTheCopyHasBegun([&] { stop.request_stop(); });
    EXPECT_THROW(exportFile(openOriginal(path), path, folder / "out/staged", stop.get_token()),
                 Cancelled);
    EXPECT_EQ(entriesIn(folder / "out"), 0);
}

TEST_F(FileExportUnderWay, NoticesAnOriginalOrACopyThatSomebodyElseChanges) {
    const auto part = [this] {
        return std::filesystem::directory_iterator(folder / "out")->path();
    };
    for (const auto& change : std::vector<std::function<void()>>{
             [this] { std::filesystem::resize_file(path, 1000); },
             [&] { std::filesystem::remove(part()); }, // the copy's name
             [&] { std::filesystem::rename(folder.write("x", "another"), part()); },
             [this] { std::ofstream(path, std::ios::in | std::ios::out) << "other"; }}) {
        std::filesystem::resize_file(path, 512 << 20);
        const auto writer = whenTheCopyHasBegun(change);
        EXPECT_THROW(exportFile(openOriginal(path), path, folder / "out/staged", {}),
                     PhotoLibraryError);
        EXPECT_EQ(entriesIn(folder / "out"), 0);
    }
}

TEST(FileExport, RefusesBeforeTheFirstByteWhenTheDiskHasNoRoom) {
    const TemporaryFolder folder;
    const auto original = folder.write("original.mov", {});
    // A sparse file of eight exabytes less a bit fits on no disk, and copies nothing to find out.
    if (::truncate(original.c_str(), (std::int64_t(1) << 43)) != 0)
        GTEST_SKIP() << "this file system has no file of 8 TiB";
    std::filesystem::create_directory(folder / "out");
    EXPECT_TRUE(test::messageOf([&] {
                    exportFile(openOriginal(original), original, folder / "out/staged.mov", {});
                }).contains(u"diskte yer kalmadı"));
    EXPECT_EQ(entriesIn(folder / "out"), 0);
}

TEST(FileExport, OpensNothingThroughLinksOrOutsideTheLibrary) {
    const TemporaryFolder folder;
    folder.write("library/sub/a.jpg", "a");
    folder.write("secret.jpg", "s");
    const auto root = folder / "library";
    std::filesystem::create_symlink(folder / "secret.jpg", root / "link.jpg");
    std::filesystem::create_symlink(folder.path(), root / "away");
    ASSERT_EQ(::mkfifo((root / "pipe.jpg").c_str(), 0600), 0);
    EXPECT_TRUE(openOriginalBeneath(root, "sub/a.jpg").isOpen());
    for (const char* path : {"link.jpg", "away/secret.jpg", "../secret.jpg", "sub/../../secret.jpg",
                             "/etc/passwd", "sub", "pipe.jpg", "gone.jpg", "", "sub/.."})
        EXPECT_THROW(openOriginalBeneath(root, path), FileError) << path;
}

TEST(FileExport, MakesResourceNamesThatAFileCanHave) {
    const auto repeated = [](const char* text, int count) {
        return QString::fromUtf8(text).repeated(count).toStdString();
    };
    const struct {
        std::string name, expected;
    } rows[] = {
        {"..", "fallback.jpg"},
        {"", "fallback.jpg"},
        {"../../x.jpg", ".._.._x.jpg"},
        {repeated("x", 300) + ".jpg", repeated("x", 251) + ".jpg"},
        {repeated("ş", 130) + ".jpeg", repeated("ş", 125) + ".jpeg"},
        {repeated("🌅", 70) + ".png", repeated("🌅", 62) + ".png"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(resourceFilename(QString::fromStdString(row.name), QStringLiteral("fallback.jpg"))
                      .toStdString(),
                  row.expected);
}

} // namespace quorvane
