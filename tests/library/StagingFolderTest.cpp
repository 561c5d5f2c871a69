#include "library/StagingFolder.h"

#include "library/StagedName.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace quorvane::test {

namespace {

QString prefix(int number) {
    return QStringLiteral("%1_L0_001").arg(number, 6, 10, QChar(u'0'));
}

void addFile(const std::filesystem::path& folder, const QString& name) {
    openFile(folder / pathFrom(name), O_WRONLY | O_CREAT);
}

/// Listings for finding, changing and removing 200 files among `count`.
int listingsOfAWorkingDay(int count) {
    const TemporaryFolder temporary;
    StagingFolder folder(temporary.path(), StagingFolder::Access::any);
    for (int i = 0; i < count; ++i)
        addFile(temporary.path(), prefix(i) + QStringLiteral("_a.jpg"));
    for (int i = 0; i < 200; ++i) {
        const QString added = prefix(count + i);
        EXPECT_FALSE(folder.find(added));
        {
            const StagingFolder::OwnChange change(folder, pathFrom(added + QStringLiteral("_b")));
            addFile(temporary.path(), added + QStringLiteral("_b"));
        }
        EXPECT_TRUE(folder.find(added));
        EXPECT_TRUE(folder.find(prefix(i)));
        folder.removeAll(prefix(i));
        EXPECT_FALSE(folder.find(prefix(i)));
    }
    return folder.listings();
}

} // namespace

TEST(StagingFolder, ListsALargeFolderOnceHoweverOftenItIsUsed) {
    EXPECT_EQ(listingsOfAWorkingDay(400), 1);
    EXPECT_EQ(listingsOfAWorkingDay(4000), 1);
}

TEST(StagingFolder, NoticesWhatOthersDo) {
    for (const int count : {0, 300}) {
        SCOPED_TRACE(count);
        const TemporaryFolder temporary;
        StagingFolder folder(temporary.path(), StagingFolder::Access::any);
        for (int i = 0; i < count; ++i)
            addFile(temporary.path(), prefix(i) + QStringLiteral("_a.jpg"));
        // A time stamp well in the past, so that the next change is told apart from it.
        std::filesystem::last_write_time(temporary.path(), {});
        const QString wanted = prefix(1000);
        EXPECT_FALSE(folder.find(wanted));
        addFile(temporary.path(), wanted + QStringLiteral("_z.jpg"));
        EXPECT_EQ(folder.find(wanted), temporary / pathFrom(wanted + QStringLiteral("_z.jpg")));
        std::filesystem::rename(temporary / pathFrom(wanted + QStringLiteral("_z.jpg")),
                                temporary / pathFrom(wanted + QStringLiteral("_b.jpg")));
        EXPECT_EQ(folder.find(wanted), temporary / pathFrom(wanted + QStringLiteral("_b.jpg")));
        std::filesystem::remove(temporary / pathFrom(wanted + QStringLiteral("_b.jpg")));
        EXPECT_FALSE(folder.find(wanted));
    }
}

TEST(StagingFolder, FindsFilesByPlainPrefixAndNothingThatIsNoFile) {
    const TemporaryFolder temporary;
    StagingFolder folder(temporary.path(), StagingFolder::Access::any);
    std::filesystem::create_directory(temporary / "A_folder");
    std::filesystem::create_symlink("/", temporary / "A_link");
    EXPECT_FALSE(folder.find(QStringLiteral("A")));
    addFile(temporary.path(), QStringLiteral("AB_2.jpg"));
    addFile(temporary.path(), QStringLiteral("A_1.jpg"));
    EXPECT_EQ(folder.find(QStringLiteral("A")), temporary / "AB_2.jpg");
    EXPECT_FALSE(folder.find(QStringLiteral("B")));
    EXPECT_FALSE(folder.find(QString()));

    StagingFolder absent(temporary / "absent", StagingFolder::Access::any);
    EXPECT_FALSE(absent.find(QStringLiteral("A")));
    absent.removeAll(QStringLiteral("A"));
    EXPECT_FALSE(absent.isUsable());
}

TEST(StagedName, IsSafeAndShortAndKeepsTheExtension) {
    const QString id = QStringLiteral("0A1B2C3D-0000-4000-8000-000000000000/L0/001");
    const QString safe = QStringLiteral("0A1B2C3D-0000-4000-8000-000000000000_L0_001");
    EXPECT_EQ(safeId(id), safe);
    EXPECT_EQ(safeId(QStringLiteral("plain")), QStringLiteral("plain"));
    const struct {
        QString filename, expected;
    } cases[] = {
        {QStringLiteral("IMG_1.HEIC"), QStringLiteral("_IMG_1.HEIC")},
        {QStringLiteral("../../etc/passwd"), QStringLiteral("_.._.._etc_passwd")},
        {QStringLiteral(".."), QStringLiteral("_..")},
        {QString(u'a') + QChar::Null + u'b', QStringLiteral("_a_b")},
        {QStringLiteral("çiçek 🌼.jpg"), QStringLiteral("_çiçek 🌼.jpg")},
        {QString(200, u'n') + QStringLiteral(".jpg"),
         u'_' + QString(200, u'n') + QStringLiteral(".jpg")},
    };
    for (const auto& each : cases)
        EXPECT_EQ(pathText(stagedFileName(id, each.filename)), safe + each.expected);

    for (const QString& letter : {QStringLiteral("n"), QStringLiteral("ş"), QStringLiteral("🌼")}) {
        const std::string name =
            stagedFileName(id, letter.repeated(400) + QStringLiteral(".HEIC")).native();
        EXPECT_LE(name.size(), 249U);
        EXPECT_GT(name.size(), 240U);
        EXPECT_TRUE(name.ends_with(letter.toStdString() + ".HEIC"));
    }
}

} // namespace quorvane::test
