#include "metadata/webp/WebpContainer.h"

#include "ImageFixtures.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray webpBlock("MM\0*\0\0\0\x08\0\0\0\0\0\0\0", 15);

QByteArray replacedWebp(const QByteArray& file) {
    return webp::replaceExif(viewOf(file), viewOf(webpBlock)).apply(viewOf(file));
}

/// Canvas of 300 by 200.
QByteArray extended(char flags) {
    return riffChunk("VP8X", QByteArray(1, flags) + QByteArray::fromHex("0000002b0100c70000"));
}

} // namespace

TEST(WebpContainer, TheChunkIsReplacedOrAddedBehindTheImage) {
    const QByteArray lossy =
        riffChunk("VP8 ", QByteArray::fromHex("10c3039d012a2c01c800") + QByteArray(5, 'x'));
    const QByteArray lossless = losslessChunk(300, 200, false);
    const QByteArray glassy = losslessChunk(300, 200, true);
    const QByteArray frames = riffChunk("ANIM", QByteArray(6, 0)) +
                              riffChunk("ANMF", QByteArray(17, 1)) +
                              riffChunk("ANMF", QByteArray(19, 2));
    const QByteArray icc = riffChunk("ICCP", "colours");
    const QByteArray xmp = riffChunk("XMP ", "<x/>");
    const QByteArray old = riffChunk("EXIF", QByteArray("Exif\0\0II*\0\x08\0\0\0\0\0", 16));
    const QByteArray now = riffChunk("EXIF", webpBlock);
    const struct {
        QByteArray before, after;
    } cases[] = {
        {lossy, extended(0x08) + lossy + now},
        {lossless, extended(0x08) + lossless + now},
        {glassy, extended(0x18) + glassy + now},
        {extended(0x20) + icc + lossy, extended(0x28) + icc + lossy + now},
        {extended(0x02) + frames, extended(0x0a) + frames + now},
        {extended(0x04) + lossy + xmp, extended(0x0c) + lossy + now + xmp},
        {extended(0x0c) + lossy + xmp + old, extended(0x0c) + lossy + xmp + now},
        {extended(0x00) + lossy + old + "ZZZZ" + QByteArray(4, 0),
         extended(0x08) + lossy + now + "ZZZZ" + QByteArray(4, 0)},
    };
    for (const auto& row : cases) {
        const QByteArray result = replacedWebp(webpOf(row.before) + "behind");
        EXPECT_EQ(result.toHex(), (webpOf(row.after) + "behind").toHex());
        EXPECT_EQ(webp::readExif(viewOf(result)), webpBlock);
        EXPECT_TRUE(
            webp::replaceExif(viewOf(result), viewOf(webpBlock)).isIdentity(viewOf(result)));
    }
    EXPECT_EQ(webp::readExif(viewOf(webpOf(extended(8) + lossy + old))),
              QByteArray("II*\0\x08\0\0\0\0\0", 10));
    // The last byte of padding is often forgotten.
    EXPECT_EQ(replacedWebp(webpOf(lossy).chopped(1)), webpOf(extended(0x08) + lossy + now));
}

TEST(WebpContainer, ABrokenFileIsRefused) {
    const QByteArray good = webpOf(losslessChunk(3, 2, false) + riffChunk("XMP ", "<x/>"));
    for (qsizetype length = 0; length < good.size() - 1; ++length)
        EXPECT_THROW(replacedWebp(good.left(length)), ParseError) << length;
    for (const QByteArray& file :
         {webpOf({}), webpOf(extended(0)), webpOf(riffChunk("VP8 ", "not a picture")),
          webpOf(riffChunk("VP8L", "not a picture")), webpOf("VP8 \xff\xff\xff\xff")})
        EXPECT_THROW(replacedWebp(file), ParseError);
    EXPECT_THROW(webp::readExif(viewOf(good), {1}), ParseError);
}
