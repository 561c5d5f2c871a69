#include "metadata/exif/ExifBlock.h"

#include "Bytes.h"
#include "Dates.h"
#include "ImageFixtures.h"
#include "metadata/exif/TiffDirectory.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

constexpr tiff::Format motorola{ByteOrder::bigEndian, false};
constexpr tiff::Format intel{ByteOrder::littleEndian, false};
constexpr tiff::Format intelBig{ByteOrder::littleEndian, true};

exif::Stamp stampOf(const char* text, std::optional<GeoLocation> location = std::nullopt) {
    return {text, Date(std::chrono::milliseconds(1614987000'250)), location};
}

const exif::Stamp twos = stampOf("2222:22:22 22:22:22");

QByteArray stamped(const QByteArray& block, const exif::Stamp& stamp) {
    return exif::stamp(viewOf(block), stamp).apply(viewOf(block));
}

/// A block of a first directory and, when there are fields for it, an Exif directory.
QByteArray blockOf(const tiff::Format& format, std::vector<tiff::Field> first,
                   const std::vector<tiff::Field>& exif) {
    const QByteArray header = headerBytes(format);
    const auto at = static_cast<std::uint64_t>(header.size());
    if (exif.empty())
        return header + serialize(first, at, format);
    first.push_back(tiff::pointerField(0x8769, 0, format));
    const auto exifAt = at + static_cast<std::uint64_t>(serialize(first, at, format).size());
    first.back() = tiff::pointerField(0x8769, exifAt, format);
    return header + serialize(first, at, format) + serialize(exif, exifAt, format);
}

std::string textOf(const exif::DateField& field) {
    return field.text ? field.text->constData() : "none";
}

} // namespace

TEST(ExifBlock, ThePresentFieldOfHighestRankDecides) {
    const tiff::Field original = tiff::asciiField(0x9003, "2001:01:01 01:01:01");
    const tiff::Field digitized = tiff::asciiField(0x9004, "2002:02:02 02:02:02");
    const tiff::Field modified = tiff::asciiField(0x0132, "2003:03:03 03:03:03");
    const tiff::Field zero = tiff::asciiField(0x9003, "0000:00:00 00:00:00");
    const tiff::Field software = tiff::asciiField(0x0131, "camera");
    const struct {
        std::vector<tiff::Field> first, exif;
        const char* expected;
    } cases[] = {
        {{modified}, {original, digitized}, "2001:01:01 01:01:01"},
        {{modified}, {digitized}, "2002:02:02 02:02:02"},
        {{modified}, {}, "2003:03:03 03:03:03"},
        {{modified}, {zero, digitized}, "0000:00:00 00:00:00"},
        {{software}, {}, "none"},
    };
    for (const tiff::Format& format : {motorola, intel, intelBig})
        for (const auto& row : cases) {
            const QByteArray block = blockOf(format, row.first, row.exif);
            EXPECT_EQ(textOf(exif::readDates(viewOf(block)).first()), row.expected);
        }
}

TEST(ExifBlock, FieldsAreOverwrittenOrAddedBehindAndNothingElseMoves) {
    const tiff::Field maker{0x927c, tiff::undefinedType, 9, "makernote"};
    const tiff::Field empty = tiff::asciiField(0x0132, "    :  :     :  :  ");
    const tiff::Field zero = tiff::asciiField(0x9003, "0000:00:00 00:00:00");
    const tiff::Field ones = tiff::asciiField(0x9004, "1111:11:11 11:11:11");
    const tiff::Field odd = tiff::asciiField(0x9003, "2001:01:01"); // too short to be overwritten
    const tiff::Field other = tiff::asciiField(0x9004, "last summer, in the rain");
    const tiff::Field software = tiff::asciiField(0x0131, "camera");
    // An addition changes the link to the first directory and the entries of the Exif directory.
    constexpr int links = 48;
    const struct {
        std::vector<tiff::Field> first, exif;
        bool grows = true;
        int changed = links;
    } cases[] = {
        {{empty}, {zero, ones, maker}, false, 3 * 19},
        {{software}, {}},
        {{software}, {maker}},
        {{software}, {odd, maker}},
        {{software}, {other, maker}},
    };
    for (const tiff::Format& format : {motorola, intel, intelBig})
        for (const auto& row : cases) {
            const QByteArray block = blockOf(format, row.first, row.exif) + "odd";
            const QByteArray once = stamped(block, twos);
            EXPECT_EQ(once.size() > block.size(), row.grows);
            EXPECT_LE(differences(block, once), row.changed);
            EXPECT_EQ(once.indexOf("makernote"), block.indexOf("makernote"));
            const exif::Dates dates = exif::readDates(viewOf(once));
            for (const auto& date : {dates.original, dates.digitized, dates.modified})
                EXPECT_EQ(textOf(date), "2222:22:22 22:22:22");
            EXPECT_TRUE(exif::stamp(viewOf(once), twos).isIdentity(viewOf(once)));
            // Another date then finds its fields and adds nothing.
            EXPECT_EQ(stamped(once, stampOf("3333:33:33 33:33:33")).size(), once.size());
        }
}

TEST(ExifBlock, APlaceThatChangesAgainDoesNotMakeTheBlockGrow) {
    const exif::Stamp sydney = stampOf("2222:22:22 22:22:22", GeoLocation{-33.86, 151.21, -5});
    const exif::Stamp moved =
        stampOf("2222:22:22 22:22:22", GeoLocation{59.9999999999, -179.9999999, 8848.86});
    for (const QByteArray& block : {stamped({}, sydney), stamped(stamped({}, twos), sydney)}) {
        const QByteArray result = stamped(block, moved);
        EXPECT_EQ(result.size(), block.size());
        EXPECT_NE(result, block);
        EXPECT_EQ(stamped(result, sydney), block);
        EXPECT_EQ(stamped(result, twos), result) << "without a place the block keeps its own";
    }
}

TEST(ExifBlock, ADateIsReadInTheZoneItStates) {
    const TimeZone zone("UTC-3");
    const tiff::Field original = tiff::asciiField(0x9003, "2001:01:01 01:01:01");
    const tiff::Field digitized = tiff::asciiField(0x9004, "2001:01:01 01:01:01");
    const tiff::Field modified = tiff::asciiField(0x0132, "2003:03:03 03:03:03");
    const auto offset = [](std::uint16_t tag, const char* text) {
        return tiff::asciiField(tag, text);
    };
    const struct {
        std::vector<tiff::Field> first, exif;
        const char* expected;
    } cases[] = {
        {{}, {original}, "2000-12-31 22:01:01"},
        {{}, {original, offset(0x9011, "-05:30")}, "2001-01-01 06:31:01"},
        {{}, {original, offset(0x9011, "Z")}, "2001-01-01 01:01:01"},
        {{}, {original, offset(0x9011, "   :  ")}, "2000-12-31 22:01:01"},
        {{}, {original, offset(0x9011, "+99:00")}, "2000-12-31 22:01:01"},
        // Another field's offset counts where the texts are the same.
        {{}, {original, digitized, offset(0x9012, "+01:00")}, "2001-01-01 00:01:01"},
        {{modified}, {original, offset(0x9010, "+01:00")}, "2000-12-31 22:01:01"},
        {{modified}, {offset(0x9010, "+01:00")}, "2003-03-03 02:03:03"},
    };
    for (const tiff::Format& format : {motorola, intel, intelBig})
        for (const auto& row : cases) {
            const QByteArray block = blockOf(format, row.first, row.exif);
            EXPECT_EQ(utc(exif::instantOf(exif::readDates(viewOf(block)))), row.expected)
                << &row - cases;
        }
}

TEST(ExifBlock, ZonesAndFractionsThatAreThereAreKeptTrue) {
    const tiff::Field text = tiff::asciiField(0x9003, "2021:03:06 02:30:00");
    const tiff::Field zone = tiff::asciiField(0x9011, "-09:30");
    const tiff::Field fraction = tiff::asciiField(0x9291, "123456");
    const struct {
        const char* zone;
        int milliseconds;
        const char *offset, *fraction;
    } cases[] = {{"UTC-3", 250, "+03:00", "250"},
                 {"UTC-3", 0, "+03:00", "123456"}, // the very second, and its fraction unknown
                 {"UTC-3", 1000, "+03:00", "000"},
                 {"UTC+9:30", 123, "-09:30", "123456"},
                 {"UTC-0:0:7", 5250, "   :  ", "250"}};
    for (const tiff::Format& format : {motorola, intel, intelBig})
        for (const auto& row : cases) {
            const TimeZone here(row.zone);
            const Date date = *parseExifDate(u"2021:03:06 02:30:00", -std::chrono::minutes(570)) +
                              std::chrono::milliseconds(row.milliseconds);
            const exif::Stamp stamp{exifDateText(date).toLatin1(), date, {}};
            const QByteArray once = stamped(blockOf(format, {}, {text, zone, fraction}), stamp);
            const exif::Dates dates = exif::readDates(viewOf(once));
            EXPECT_EQ(dates.original.offset, QByteArray(row.offset) + '\0');
            EXPECT_FALSE(dates.modified.offset || dates.digitized.offset); // none is added
            EXPECT_EQ(exif::instantOf(dates), std::chrono::floor<std::chrono::seconds>(date));
            EXPECT_TRUE(once.contains(row.fraction));
            EXPECT_TRUE(exif::stamp(viewOf(once), stamp).isIdentity(viewOf(once)));
        }
}

TEST(ExifBlock, ANewBlockKeepsTheOrientationOfABrokenOne) {
    QByteArray turned(2, '\0');
    turned[1] = 6;
    const QByteArray good = blockOf(motorola, {{0x0112, tiff::shortType, 1, turned}}, {});
    for (const auto& [broken, keeps] : {std::pair{good.left(22), true},
                                        {good.left(21), false},
                                        {QByteArray("????"), false},
                                        {QByteArray(), false}}) {
        const QByteArray block = exif::newBlock(viewOf(broken), twos);
        EXPECT_EQ(block.contains(QByteArray::fromHex("01120003000000010006")), keeps);
        EXPECT_EQ(textOf(exif::readDates(viewOf(block)).original), twos.text.constData());
        EXPECT_TRUE(exif::stamp(viewOf(block), twos).isIdentity(viewOf(block)));
    }
}

TEST(ExifBlock, BrokenBlocksAreRefused) {
    const QByteArray good = blockOf(motorola, {tiff::asciiField(0x0131, "camera")},
                                    {tiff::asciiField(0x9003, "0000:00:00 00:00:00")});
    QByteArray pastTheEnd = good;
    pastTheEnd[7] = '\x7f';
    QByteArray tooMany = good;
    tooMany[8] = '\x7f';
    for (const QByteArray& block :
         {QByteArray("MM"), QByteArray("II\x2b\0\x08\0\0\0\x10\0\0\0", 12), QByteArray("garbage!"),
          pastTheEnd, tooMany})
        EXPECT_THROW(exif::stamp(viewOf(block), twos), ParseError);
}
