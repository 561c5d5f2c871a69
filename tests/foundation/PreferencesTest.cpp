#include "foundation/Preferences.h"

#include "support/Failures.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quorvane {
namespace {

mode_t modeOf(const std::filesystem::path& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return info.st_mode & 0777;
}

TEST(Preferences, keepsTypedValuesAcrossRestartsPrivately) {
    const test::TemporaryFolder folder;
    const auto file = folder / "Quorvane/preferences.json";
    const QString key = QStringLiteral("a");
    {
        Preferences preferences(file);
        EXPECT_EQ(preferences.string(key), std::nullopt);
        EXPECT_FALSE(preferences.boolean(key));
        preferences.setString(key, QStringLiteral("değer"));
        preferences.setBoolean(QStringLiteral("b"), true);
        preferences.setData(QStringLiteral("d"), QByteArray("\0\xff", 2));
    }
    Preferences preferences(file);
    EXPECT_EQ(preferences.string(key), QStringLiteral("değer"));
    EXPECT_TRUE(preferences.boolean(QStringLiteral("b")));
    EXPECT_EQ(preferences.data(QStringLiteral("d")), QByteArray("\0\xff", 2));
    EXPECT_FALSE(preferences.boolean(key)) << "a text is not a truth value";
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
}

TEST(Preferences, aVolatileValueWinsUntilTheKeyIsWritten) {
    const test::TemporaryFolder folder;
    Preferences preferences(folder / "p.json");
    const QString key = QStringLiteral("mode");
    preferences.setString(key, QStringLiteral("stored"));
    Preferences(folder / "p.json").setBoolean(QStringLiteral("another process's"), true);
    preferences.setVolatile(key, QStringLiteral("now"));
    EXPECT_EQ(preferences.string(key), QStringLiteral("now"));
    EXPECT_EQ(Preferences(folder / "p.json").string(key), QStringLiteral("stored"));
    preferences.setString(key, QStringLiteral("new"));
    EXPECT_EQ(preferences.string(key), QStringLiteral("new"));
    EXPECT_TRUE(Preferences(folder / "p.json").boolean(QStringLiteral("another process's")));
}

TEST(Preferences, whatCannotBeReadIsNeitherForgottenNorWrittenOver) {
    const test::TemporaryFolder folder;
    const QString key = QStringLiteral("a");
    const auto file = folder / "sub/p.json";
    Preferences preferences(file);
    preferences.setString(key, QStringLiteral("kept"));
    const QByteArray written = test::readFile(file);
    std::filesystem::rename(file, folder / "away");
    std::filesystem::create_directory(file); // reading it fails, also for the superuser
    EXPECT_EQ(preferences.string(key), QStringLiteral("kept"));
    EXPECT_THROW(preferences.setString(key, QStringLiteral("b")), FileError);
    EXPECT_THROW((void)Preferences(file).string(key), FileError) << "nothing was read yet";
    std::filesystem::remove(file);
    std::filesystem::rename(folder / "away", file);
    EXPECT_EQ(test::readFile(file), written);
    preferences.setBoolean(QStringLiteral("b"), true);
    EXPECT_EQ(Preferences(file).string(key), QStringLiteral("kept"));
}

TEST(Preferences, aDamagedFileIsKeptBesideAndNamedOnce) {
    const QString key = QStringLiteral("a");
    for (const QByteArray& damaged : {QByteArray("{ not json"), QByteArray("[]"), QByteArray()}) {
        SCOPED_TRACE(damaged.toStdString());
        const test::TemporaryFolder folder;
        const auto file = folder / "p.json";
        Preferences preferences(file);
        preferences.setString(key, QStringLiteral("kept"));
        folder.write("p.json", damaged);
        ::chmod(file.c_str(), 0644);
        Preferences fresh(file);
        EXPECT_TRUE(test::messageOf([&] { (void)fresh.string(key); }).contains(u"p.json.bozuk-1"));
        EXPECT_EQ(fresh.string(key), std::nullopt);
        EXPECT_EQ(test::readFile(folder / "p.json.bozuk-1"), damaged);
        EXPECT_EQ(modeOf(folder / "p.json.bozuk-1"), 0600U);
        preferences.setBoolean(QStringLiteral("b"), true);
        EXPECT_EQ(preferences.string(key), fresh.string(key));

        folder.write("p.json", damaged);
        EXPECT_THROW(fresh.setString(key, QStringLiteral("c")), Error);
        EXPECT_EQ(test::readFile(folder / "p.json.bozuk-2"), damaged);
        folder.write("other.json.bozuk-1", "x");
        fresh.removeDamaged();
        EXPECT_FALSE(std::filesystem::exists(folder / "p.json.bozuk-1"));
        EXPECT_FALSE(std::filesystem::exists(folder / "p.json.bozuk-2"));
        EXPECT_TRUE(std::filesystem::exists(folder / "other.json.bozuk-1"));
        fresh.setString(key, QStringLiteral("d"));
        EXPECT_EQ(Preferences(file).string(key), QStringLiteral("d"));
    }
}

} // namespace
} // namespace quorvane
