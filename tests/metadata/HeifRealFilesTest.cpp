#include "HeifTestFile.h"
#include "OtherPrograms.h"
#include "metadata/HeifContainer.h"
#include "support/TemporaryFolder.h"

#include <QRegularExpression>

using namespace quorvane;
using namespace quorvane::test;

namespace {

std::vector<std::filesystem::path> realPictures() {
    const auto media = realDataFolder() / "media";
    const auto originals = realDataFolder() / "Test-Media-Types-15.7.2.photoslibrary/originals";
    return {media / "iphone11pro_grid_xmp.heic", media / "iphone13promax_gainmap.heic",
            media / "samsung_s10_mdat_before_meta.heic",
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

/// The block stands in the file, and one item is all that changed.
void expectOneItemChanged(const QByteArray& before, const QByteArray& after,
                          const QByteArray& block) {
    const HeifContent was(before);
    const HeifContent is(after);
    EXPECT_EQ(heif::readExif(viewOf(after)), block);
    EXPECT_EQ(is.others, was.others);
    EXPECT_EQ(is.metaBoxes, was.metaBoxes);
    EXPECT_EQ(is.items.size(), was.items.size());
    EXPECT_EQ(
        std::ranges::count_if(
            was.items, [&](const auto& item) { return is.items.at(item.first) != item.second; }),
        1);
}

} // namespace

TEST(HeifRealFiles, ABlockOfAnotherLengthLeavesAllOtherItemsAlone) {
    QUORVANE_REQUIRE_REAL_DATA();
    REQUIRE_PROGRAM("exiftool");
    REQUIRE_PROGRAM("heif-convert");
    const TemporaryFolder folder;
    const auto isDecoded = [&](const std::filesystem::path& file) {
        return outputOf("heif-convert % %", {file, folder / "picture.ppm"}).has_value();
    };
    for (const std::filesystem::path& path : realPictures()) {
        SCOPED_TRACE(path.filename().string());
        const QByteArray file = readFile(path);
        const QByteArray old = heif::readExif(viewOf(file)).value();
        EXPECT_TRUE(heif::replaceExif(viewOf(file), viewOf(old)).isIdentity(viewOf(file)));
        const QByteArray block = dated(old, "2021:03:06 02:30:00");
        const QByteArray longer = replaced(file, block + QByteArray(5'000, '\0'));
        expectOneItemChanged(file, longer, block + QByteArray(5'000, '\0'));
        const auto copy = folder.write("picture.heic", longer);
        EXPECT_EQ(outputOf("exiftool -s3 -warning -DateTimeOriginal %", {copy}),
                  "2021:03:06 02:30:00\n");
        EXPECT_EQ(isDecoded(copy), isDecoded(path));

        const QByteArray shorter = replaced(file, block.chopped(1));
        expectOneItemChanged(file, shorter, block.chopped(1));
        EXPECT_EQ(replaced(longer, block.chopped(1)), shorter);
    }
}

TEST(HeifRealFiles, BrokenBoxesAreRefused) {
    QUORVANE_REQUIRE_REAL_DATA();
    const QByteArray file = readFile(realDataFolder() / "media/corrupt_boxes.heif");
    EXPECT_THROW(heif::readExif(viewOf(file)), ParseError);
    EXPECT_THROW(replaced(file, tiffBlock(20)), ParseError);
}
