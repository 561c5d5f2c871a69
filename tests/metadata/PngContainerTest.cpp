#include "metadata/png/PngContainer.h"

#include "ImageFixtures.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray pngBlock("MM\0*\0\0\0\x08\0\0\0\0\0\0", 14);
const QByteArray newChunk = pngChunk("eXIf", pngBlock);
const QByteArray oldPngBlock("II*\0\x08\0\0\0\0\0", 10);

QByteArray replacedPng(const QByteArray& file) {
    return png::replaceExif(viewOf(file), viewOf(pngBlock)).apply(viewOf(file));
}

QByteArray profile(const QByteArray& bytes) {
    QByteArray hex = bytes.toHex();
    hex.insert(20, '\n');
    return "\nexif\n      " + QByteArray::number(bytes.size()) + '\n' + hex + '\n';
}

} // namespace

TEST(PngContainer, TheChunkStandsBeforeTheImageDataAndIsTheOnlyOne) {
    const QByteArray time = pngChunk("tIME", QByteArray(7, 1));
    const QByteArray old = pngChunk("eXIf", oldPngBlock);
    const QByteArray control = pngChunk("fcTL", QByteArray(26, 0));
    const struct {
        QByteArray file, expected;
    } cases[] = {
        {pngOf({}), pngOf(newChunk)},
        {pngOf(time), pngOf(time + newChunk)},
        {pngOf(old + time), pngOf(newChunk + time)},
        {pngOf(time, old + time), pngOf(time + newChunk, time)},
        {pngOf(old, old), pngOf(newChunk)},
        {pngOf(control, old), pngOf(newChunk + control)},
    };
    for (const auto& row : cases) {
        const QByteArray result = replacedPng(row.file + "behind");
        EXPECT_EQ(result.toHex(), (row.expected + "behind").toHex());
        EXPECT_EQ(png::readExif(viewOf(result)), pngBlock);
        EXPECT_TRUE(png::replaceExif(viewOf(result), viewOf(pngBlock)).isIdentity(viewOf(result)));
    }
}

TEST(PngContainer, ARawProfileIsReadAndNotLeftToContradict) {
    const QByteArray key = QByteArray("Raw profile type exif\0", 22);
    const QByteArray app1 = QByteArray("Raw profile type APP1\0", 22);
    const QByteArray text = profile(QByteArray("Exif\0\0", 6) + oldPngBlock);
    const QByteArray packed = qCompress(text).mid(4);
    for (const QByteArray& chunk : {
             pngChunk("tEXt", key + text),
             pngChunk("tEXt", app1 + profile(oldPngBlock)),
             pngChunk("zTXt", key + '\0' + packed),
             pngChunk("iTXt", app1 + QByteArray("\1\0en\0key\0", 9) + packed),
         }) {
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk))), oldPngBlock);
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk, newChunk))), pngBlock);
        EXPECT_EQ(replacedPng(pngOf(chunk)), pngOf(newChunk));
        EXPECT_EQ(replacedPng(pngOf({}, chunk)), pngOf(newChunk));
    }
    // Profiles of something else, and what no one can read, stay.
    for (const QByteArray& chunk : {
             pngChunk("tEXt", app1 + profile("http://ns.adobe.com/xap/1.0/")),
             pngChunk("tEXt", QByteArray("Raw profile type icc\0", 21) + text),
             pngChunk("zTXt", key + '\0' + packed.left(9)),
             pngChunk("tEXt", QByteArray("Comment\0exif", 12)),
         }) {
        EXPECT_EQ(png::readExif(viewOf(pngOf(chunk))), std::nullopt);
        EXPECT_EQ(replacedPng(pngOf(chunk)), pngOf(chunk + newChunk));
    }
    // One that unpacks to more than the file may ask for is left to be replaced.
    const QByteArray bomb = pngOf(pngChunk(
        "zTXt", key + '\0' + qCompress(profile(oldPngBlock + QByteArray(9999, '0'))).mid(4)));
    EXPECT_TRUE(png::readExif(viewOf(bomb)));
    EXPECT_EQ(png::readExif(viewOf(bomb), {10, 9999}), std::nullopt);
    EXPECT_EQ(replacedPng(bomb), pngOf(newChunk));
}

TEST(PngContainer, ABrokenFileIsRefused) {
    const QByteArray good = pngOf(pngChunk("tIME", QByteArray(7, 1)));
    const qsizetype image = good.indexOf("IDAT") + 4;
    for (qsizetype length = 0; length < image; ++length)
        EXPECT_THROW(replacedPng(good.left(length)), ParseError) << length;
    // What is cut off behind the image's beginning is shown as far as it goes.
    for (qsizetype length = image; length < good.size(); ++length) {
        const QByteArray cut = replacedPng(good.left(length));
        EXPECT_EQ(cut.size(), length + newChunk.size());
        EXPECT_EQ(png::readExif(viewOf(cut)), pngBlock);
        EXPECT_EQ(replacedPng(cut), cut);
    }
    EXPECT_THROW(png::readExif(viewOf(good), {3, 0}), ParseError);
}
