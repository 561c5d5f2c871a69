#include "metadata/jpeg/JpegContainer.h"

#include "Bytes.h"
#include "ImageFixtures.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray jpegBlock("MM\0*\0\0\0\x08\0\0\0\0\0\0", 14);

QByteArray replacedJpeg(const QByteArray& file, const QByteArray& exif) {
    return jpeg::replaceExif(viewOf(file), viewOf(exif)).apply(viewOf(file));
}

/// An index of two pictures: the first `size` bytes long, the second at `place`.
QByteArray multiPictureSegment(quint32 size, quint32 place) {
    return jpegSegment(
        0xe2, QByteArray("MPF\0MM\0*\0\0\0\x08\0\x01", 14) + QByteArray::fromHex("b0020007") +
                  big<quint32>(32) + big<quint32>(26) + big<quint32>(0) + big<quint32>(0x20030000) +
                  big<quint32>(size) + big<quint32>(0) + big<quint32>(0) + big<quint32>(0) +
                  big<quint32>(77) + big<quint32>(place) + big<quint32>(0));
}

} // namespace

TEST(JpegContainer, TheBlockGoesWhereReadersExpectIt) {
    const QByteArray jfif = jpegSegment(0xe0, QByteArray("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
    const QByteArray icc = jpegSegment(0xe2, QByteArray("ICC_PROFILE\0\1\1profile", 21));
    const QByteArray xmp = jpegSegment(0xe1, QByteArray("http://ns.adobe.com/xap/1.0/\0<x/>", 33));
    const QByteArray old = exifSegment(QByteArray("II*\0\x08\0\0\0\0\0", 10));
    const QByteArray unreadable = exifSegment("????");
    const QByteArray now = exifSegment(jpegBlock);
    const struct {
        QByteArray before, after;
    } cases[] = {
        {{}, now},
        {xmp, now + xmp},
        {jfif + icc, jfif + now + icc},
        {jfif + icc + old + xmp, jfif + icc + now + xmp},
        {xmp + icc + unreadable, xmp + icc + now},
        {xmp + unreadable + icc + old, xmp + icc + now},
        {old + unreadable + icc + old, now + icc},
        {"stray" + jfif + QByteArray("\xff\0\xff\xd0", 4) + old + "stray" + xmp,
         "stray" + jfif + QByteArray("\xff\0\xff\xd0", 4) + now + "stray" + xmp},
        {jfif + "\xff\xff" + old, jfif + "\xff\xff" + now}, // fill bytes
    };
    for (const auto& row : cases) {
        const QByteArray result = replacedJpeg(jpegOf(row.before), jpegBlock);
        EXPECT_EQ(result.toHex(), jpegOf(row.after).toHex());
        EXPECT_EQ(jpeg::readExif(viewOf(result)), jpegBlock);
        EXPECT_TRUE(
            jpeg::replaceExif(viewOf(result), viewOf(jpegBlock)).isIdentity(viewOf(result)));
    }
}

TEST(JpegContainer, TheIndexOfAMultiPictureFileMovesAlong) {
    // An index behind the growth moves with what it points at; one before it does not.
    const auto growth = static_cast<quint32>(exifSegment(jpegBlock).size());
    EXPECT_EQ(replacedJpeg(jpegOf(multiPictureSegment(1000, 900)), jpegBlock),
              jpegOf(exifSegment(jpegBlock) + multiPictureSegment(1000 + growth, 900)));
    const QByteArray old = exifSegment("MM");
    EXPECT_EQ(replacedJpeg(jpegOf(multiPictureSegment(1000, 900) + old), jpegBlock),
              jpegOf(multiPictureSegment(1012, 912) + exifSegment(jpegBlock)));
}

TEST(JpegContainer, APreviewBehindTheBlockIsStillPointedAt) {
    const auto field = [](int tag, int type, quint32 count, quint32 value) {
        return big(static_cast<quint16>(tag)) + big(static_cast<quint16>(type)) + big(count) +
               big(value);
    };
    const QByteArray preview = jpegOf({});
    for (const bool countsFromNote : {false, true}) {
        const quint32 noteAt = 8 + 2 + 12 + 4 + 2 + 12 + 4;
        const auto blockWith = [&](quint32 place, int padding) {
            return QByteArray("MM\0*\0\0\0\x08\0\1", 10) + field(0x8769, 4, 1, 26) + big(0U) +
                   big(quint16{1}) + field(0x927c, 7, 8 + 36, noteAt) + big(0U) +
                   QByteArray("OLYMP\0\0\3", 8) +
                   field(0x101, 4, 1, place - (countsFromNote ? noteAt : 0)) +
                   field(0x102, 4, 1, 99) + field(0x103, 4, 2, place) + QByteArray(padding, '.');
        };
        const auto fileWith = [&](quint32 place, int padding) {
            return jpegOf(exifSegment(blockWith(place, padding))) + preview;
        };
        const auto placeIn = [&](int padding) {
            return static_cast<quint32>(fileWith(0, padding).lastIndexOf(preview) - 12);
        };
        QByteArray expected = fileWith(placeIn(100), 100);
        // What is no single number stays.
        const QByteArray other = field(0x103, 4, 2, placeIn(100));
        expected.replace(expected.indexOf(other), 12, field(0x103, 4, 2, placeIn(0)));
        EXPECT_EQ(replacedJpeg(fileWith(placeIn(0), 0), blockWith(placeIn(0), 100)), expected);
    }
}

TEST(JpegContainer, WhatCannotBeRewrittenWithCertaintyIsRefused) {
    const QByteArray full = exifSegment(jpegBlock + QByteArray(0xfff7 - jpegBlock.size(), 'x'));
    EXPECT_THROW(replacedJpeg(jpegOf(full + exifSegment("and so on")), jpegBlock), ContainerError);
    EXPECT_NO_THROW(replacedJpeg(jpegOf({}), QByteArray(0xfff7, 'x')));
    EXPECT_THROW(replacedJpeg(jpegOf({}), QByteArray(0xfff8, 'x')), ContainerError);

    const QByteArray good = jpegOf(exifSegment(jpegBlock));
    for (qsizetype length = 0; length < good.size() - scanOf(good).size(); ++length)
        EXPECT_THROW(replacedJpeg(good.left(length), jpegBlock), ParseError) << length;
    const QByteArray sameSize = jpegBlock + QByteArray(0xfff7 - jpegBlock.size(), 'y');
    EXPECT_EQ(replacedJpeg(jpegOf(full + exifSegment("and so on")), sameSize),
              jpegOf(exifSegment(sameSize) + exifSegment("and so on")));
    EXPECT_THROW(jpeg::readExif(viewOf(good), {2}), ParseError);
}
