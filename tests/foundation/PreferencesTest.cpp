#include "foundation/Preferences.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

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

TEST(Preferences, twoProcessesDoNotOverwriteEachOthersKeys) {
    const test::TemporaryFolder folder;
    Preferences one(folder / "p.json");
    Preferences two(folder / "p.json");
    std::vector<std::jthread> threads;
    for (Preferences* preferences : {&one, &two})
        threads.emplace_back([preferences, name = QChar(preferences == &one ? u'x' : u'y')] {
            for (int i = 0; i < 20; ++i)
                preferences->setBoolean(QStringLiteral("%1%2").arg(name).arg(i), true);
        });
    threads.clear();
    int found = 0;
    for (int i = 0; i < 20; ++i)
        found += int(two.boolean(QStringLiteral("x%1").arg(i))) +
                 int(one.boolean(QStringLiteral("y%1").arg(i)));
    EXPECT_EQ(found, 40);
}

TEST(Preferences, aVolatileValueWinsUntilTheKeyIsWritten) {
    const test::TemporaryFolder folder;
    Preferences preferences(folder / "p.json");
    const QString key = QStringLiteral("mode");
    preferences.setString(key, QStringLiteral("stored"));
    preferences.setVolatile(key, QStringLiteral("now"));
    EXPECT_EQ(preferences.string(key), QStringLiteral("now"));
    EXPECT_EQ(Preferences(folder / "p.json").string(key), QStringLiteral("stored"));
    preferences.setString(key, QStringLiteral("new"));
    EXPECT_EQ(preferences.string(key), QStringLiteral("new"));
}

TEST(Preferences, anUnreadableFileCountsAsEmpty) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("p.json", "{ not json");
    Preferences preferences(file);
    EXPECT_EQ(preferences.string(QStringLiteral("a")), std::nullopt);
    preferences.setString(QStringLiteral("a"), QStringLiteral("b"));
    EXPECT_EQ(Preferences(file).string(QStringLiteral("a")), QStringLiteral("b"));
}

} // namespace
} // namespace quorvane
