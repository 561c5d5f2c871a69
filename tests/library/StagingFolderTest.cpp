#include "library/StagingFolder.h"

#include "library/StagedName.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

QString namePrefix(int number) {
    return u"%1_L0_001"_s.arg(number, 6, 10, QChar(u'0'));
}

void addFile(const std::filesystem::path& folder, const QString& name) {
    openFile(folder / pathFrom(name), O_WRONLY | O_CREAT);
}

} // namespace

TEST(StagingFolder, NoticesWhatOthersDo) {
    for (const int count : {0, 300}) {
        SCOPED_TRACE(count);
        const TemporaryFolder temporary;
        StagingFolder folder(temporary.path(), StagingFolder::Access::any);
        for (int i = 0; i < count; ++i)
            addFile(temporary.path(), namePrefix(i) + u"_a.jpg"_s);
        // A time stamp well in the past, so that the next change is told apart from it.
        std::filesystem::last_write_time(temporary.path(), {});
        const QString wanted = namePrefix(1000);
        const auto first = temporary / pathFrom(wanted + u"_z.jpg"_s);
        const auto second = temporary / pathFrom(wanted + u"_b.jpg"_s);
        EXPECT_FALSE(folder.find(wanted));
        openFile(first, O_WRONLY | O_CREAT);
        EXPECT_EQ(folder.find(wanted), first);
        std::filesystem::rename(first, second);
        EXPECT_EQ(folder.find(wanted), second);
        std::filesystem::remove(second);
        EXPECT_FALSE(folder.find(wanted));
    }
}

TEST(StagingFolder, FindsFilesByPlainPrefixAndNothingThatIsNoFile) {
    const TemporaryFolder temporary;
    StagingFolder folder(temporary.path(), StagingFolder::Access::any);
    std::filesystem::create_directory(temporary / "A_folder");
    std::filesystem::create_symlink("/", temporary / "A_link");
    EXPECT_FALSE(folder.find(u"A"_s));
    addFile(temporary.path(), u"AB_2.jpg"_s);
    addFile(temporary.path(), u"A_1.jpg"_s);
    EXPECT_EQ(folder.find(u"A"_s), temporary / "AB_2.jpg");
    EXPECT_FALSE(folder.find(u"B"_s));
    EXPECT_FALSE(folder.find(QString()));

    StagingFolder absent(temporary / "absent", StagingFolder::Access::any);
    EXPECT_FALSE(absent.find(u"A"_s));
    absent.removeAll(u"A"_s);
    EXPECT_FALSE(absent.isUsable());
}

TEST(StagedName, IsSafeAndShortAndKeepsTheExtension) {
    const QString id = u"0A1B2C3D-0000-4000-8000-000000000000/L0/001"_s;
    const QString safe = u"0A1B2C3D-0000-4000-8000-000000000000_L0_001"_s;
    EXPECT_EQ(safeId(id), safe);
    EXPECT_EQ(safeId(u"plain"_s), u"plain"_s);
    const struct {
        QString filename, expected;
    } cases[] = {
        {u"IMG_1.HEIC"_s, u"_IMG_1.HEIC"_s},
        {u"../../etc/passwd"_s, u"_.._.._etc_passwd"_s},
        {u".."_s, u"_.."_s},
        {QString(u'a') + QChar::Null + u'b', u"_a_b"_s},
        {u"çiçek 🌼.jpg"_s, u"_çiçek 🌼.jpg"_s},
        {QString(200, u'n') + u".jpg"_s, u'_' + QString(200, u'n') + u".jpg"_s},
    };
    for (const auto& each : cases)
        EXPECT_EQ(pathText(stagedFileName(id, each.filename)), safe + each.expected);

    for (const QString& letter : {u"n"_s, u"ş"_s, u"🌼"_s}) {
        const std::string name = stagedFileName(id, letter.repeated(400) + u".HEIC"_s).native();
        EXPECT_LE(name.size(), 249U);
        EXPECT_GT(name.size(), 240U);
        EXPECT_TRUE(name.ends_with(letter.toStdString() + ".HEIC"));
    }
}

} // namespace quorvane::test
