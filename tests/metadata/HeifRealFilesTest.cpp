#include "HeifTestFile.h"
#include "metadata/HeifContainer.h"
#include "support/TemporaryFolder.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

/// Standard output of an installed program that ends well; none when it fails.
std::optional<QString> outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(process.readAllStandardOutput());
}

#define REQUIRE_PROGRAM(name)                                                                      \
    if (QStandardPaths::findExecutable(QStringLiteral(name)).isEmpty())                            \
    GTEST_SKIP() << name " is not installed"

std::vector<std::filesystem::path> realPictures() {
    const std::filesystem::path originals =
        realDataFolder() / "Test-Media-Types-15.7.2.photoslibrary/originals";
    return {realDataFolder() / "media/iphone11pro_grid_xmp.heic",
            realDataFolder() / "media/iphone13promax_gainmap.heic",
            realDataFolder() / "media/samsung_s10_mdat_before_meta.heic",
            originals / "5/5F9BCC2D-D1DF-46D8-8F70-C142B25D3DC3.heic",
            originals / "B/B60C31AC-BE86-42C5-A383-A0A5710B18AE.heic"};
}

QByteArray replaced(const QByteArray& file, const QByteArray& block) {
    return heif::replaceExif(viewOf(file), viewOf(block)).apply(viewOf(file));
}

/// The block with another date in each of its date fields.
QByteArray dated(const QByteArray& block, const QByteArray& date) {
    static const QRegularExpression pattern(
        QStringLiteral("\\d{4}:\\d\\d:\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    QByteArray result = block;
    auto matches = pattern.globalMatch(QString::fromLatin1(block));
    EXPECT_TRUE(matches.hasNext());
    while (matches.hasNext())
        result.replace(matches.next().capturedStart(), date.size(), date);
    return result;
}

/// The numbers of the items whose bytes differ.
std::vector<std::uint32_t> changedItems(const QByteArray& before, const QByteArray& after) {
    const HeifContent was(before);
    const HeifContent is(after);
    EXPECT_EQ(is.others, was.others);
    EXPECT_EQ(is.metaBoxes, was.metaBoxes);
    EXPECT_EQ(is.items.size(), was.items.size());
    std::vector<std::uint32_t> changed;
    for (const auto& [id, bytes] : was.items)
        if (is.items.at(id) != bytes)
            changed.push_back(id);
    return changed;
}

QString dateRead(const QString& path) {
    const auto text =
        outputOf(QStringLiteral("exiftool"), {QStringLiteral("-s3"), QStringLiteral("-warning"),
                                              QStringLiteral("-DateTimeOriginal"), path});
    return text.value_or(QString()).trimmed();
}

/// A file that the decoder opens is one that it opens afterwards.
void expectDecodedAsBefore(const std::filesystem::path& before, const QByteArray& after) {
    const TemporaryFolder folder;
    const auto decoded = [&](const std::filesystem::path& file) {
        return outputOf(QStringLiteral("heif-convert"),
                        {pathText(file), pathText(folder / "picture.ppm")})
            .has_value();
    };
    EXPECT_EQ(decoded(folder.write("picture.heic", after)), decoded(before));
}

TEST(HeifRealFiles, ABlockOfAnotherLengthLeavesAllOtherItemsAlone) {
    QUORVANE_REQUIRE_REAL_DATA();
    REQUIRE_PROGRAM("exiftool");
    REQUIRE_PROGRAM("heif-convert");
    for (const std::filesystem::path& path : realPictures()) {
        SCOPED_TRACE(path.filename().string());
        const QByteArray file = readFile(path);
        const QByteArray old = heif::readExif(viewOf(file)).value();
        EXPECT_TRUE(heif::replaceExif(viewOf(file), viewOf(old)).isIdentity(viewOf(file)));
        const QByteArray block = dated(old, "2021:03:06 02:30:00");
        const QByteArray longer = replaced(file, block + QByteArray(5'000, '\0'));
        EXPECT_EQ(changedItems(file, longer).size(), 1U);
        EXPECT_EQ(heif::readExif(viewOf(longer)), block + QByteArray(5'000, '\0'));
        const TemporaryFolder folder;
        EXPECT_EQ(dateRead(pathText(folder.write("picture.heic", longer))),
                  QStringLiteral("2021:03:06 02:30:00"));
        expectDecodedAsBefore(path, longer);

        const QByteArray shorter = replaced(file, block.chopped(1));
        EXPECT_EQ(changedItems(file, shorter).size(), 1U);
        EXPECT_EQ(heif::readExif(viewOf(shorter)), block.chopped(1));
        EXPECT_EQ(replaced(longer, block.chopped(1)), shorter);
    }
}

TEST(HeifRealFiles, BrokenBoxesAreRefused) {
    QUORVANE_REQUIRE_REAL_DATA();
    const QByteArray file = readFile(realDataFolder() / "media/corrupt_boxes.heif");
    EXPECT_THROW(heif::readExif(viewOf(file)), ParseError);
    EXPECT_THROW(replaced(file, tiffBlock(20)), ParseError);
}

} // namespace
