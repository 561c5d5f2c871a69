#include "metadata/png/PngContainer.h"

#include "ImageFixtures.h"

#include <ctime>
#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray block("MM\0*\0\0\0\x08\0\0\0\0\0\0", 14);
const QByteArray now = pngChunk("eXIf", block);
const QByteArray oldBlock("II*\0\x08\0\0\0\0\0", 10);

QByteArray replaced(const QByteArray& file) {
    return png::replaceExif(viewOf(file), viewOf(block)).apply(viewOf(file));
}

QByteArray profile(const QByteArray& bytes) {
    QByteArray hex = bytes.toHex();
    hex.insert(20, '\n');
    return "\nexif\n      " + QByteArray::number(bytes.size()) + '\n' + hex + '\n';
}

} // namespace

TEST(PngContainer, TheChunkStandsBeforeTheImageDataAndIsTheOnlyOne) {
    const QByteArray time = pngChunk("tIME", QByteArray(7, 1));
    const QByteArray old = pngChunk("eXIf", oldBlock);
    const QByteArray control = pngChunk("fcTL", QByteArray(26, 0));
    const struct {
        QByteArray file, expected;
    } cases[] = {
        {pngOf({}), pngOf(now)},
        {pngOf(time), pngOf(time + now)},
        {pngOf(old + time), pngOf(now + time)},
        {pngOf(time, old + time), pngOf(time + now, time)},
        {pngOf(old, old), pngOf(now)},
        {pngOf(control, old), pngOf(now + control)},
    };
    for (const auto& row : cases) {
        const QByteArray result = replaced(row.file + "behind");
        EXPECT_EQ(result.toHex(), (row.expected + "behind").toHex());
        EXPECT_EQ(png::readExif(viewOf(result)), block);
        EXPECT_TRUE(png::replaceExif(viewOf(result), viewOf(block)).isIdentity(viewOf(result)));
    }
}

TEST(PngContainer, ARawProfileIsReadAndNotLeftToContradict) {
    const QByteArray key = QByteArray("Raw profile type exif\0", 22);
    const QByteArray app1 = QByteArray("Raw profile type APP1\0", 22);
    const QByteArray text = profile(QByteArray("Exif\0\0", 6) + oldBlock);
    const QByteArray packed = qCompress(text).mid(4);
    for (const QByteArray& chunk : {
             pngChunk("tEXt", key + text),
             pngChunk("tEXt", app1 + profile(oldBlock)),
             pngChunk("zTXt", key + '\0' + packed),
             pngChunk("iTXt", app1 + QByteArray("\1\0en\0key\0", 9) + packed),
         }) {
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk))), oldBlock);
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk, now))), block);
        EXPECT_EQ(replaced(pngOf(chunk)), pngOf(now));
        EXPECT_EQ(replaced(pngOf({}, chunk)), pngOf(now));
    }
    // Profiles of something else, and what no one can read, stay.
    for (const QByteArray& chunk : {
             pngChunk("tEXt", app1 + profile("http://ns.adobe.com/xap/1.0/")),
             pngChunk("tEXt", QByteArray("Raw profile type icc\0", 21) + text),
             pngChunk("zTXt", key + '\0' + packed.left(9)),
             pngChunk("tEXt", QByteArray("Comment\0exif", 12)),
         }) {
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk))), std::nullopt);
        EXPECT_EQ(replaced(pngOf(chunk)), pngOf(chunk + now));
    }
    // One that unpacks to more than the file may ask for is left to be replaced.
    const QByteArray bomb = pngOf(
        pngChunk("zTXt", key + '\0' + qCompress(profile(oldBlock + QByteArray(9999, '0'))).mid(4)));
    EXPECT_TRUE(png::readExif(viewOf(bomb)));
    EXPECT_EQ(png::readExif(viewOf(bomb), {10, 9999}), std::nullopt);
    EXPECT_EQ(replaced(bomb), pngOf(now));
}

TEST(PngContainer, ABrokenFileIsRefused) {
    const QByteArray good = pngOf(pngChunk("tIME", QByteArray(7, 1)));
    const qsizetype image = good.indexOf("IDAT") + 4;
    for (qsizetype length = 0; length < image; ++length)
        EXPECT_THROW(replaced(good.left(length)), ParseError) << length;
    // What is cut off behind the image's beginning is shown as far as it goes.
    for (qsizetype length = image; length < good.size(); ++length) {
        const QByteArray cut = replaced(good.left(length));
        EXPECT_EQ(cut.size(), length + now.size());
        EXPECT_EQ(png::readExif(viewOf(cut)), block);
        EXPECT_EQ(replaced(cut), cut);
    }
    EXPECT_THROW(png::readExif(viewOf(good), {3, 0}), ParseError);
}
