#include "metadata/movie/MovieMetadata.h"

#include "Dates.h"
#include "MovieBuilder.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

constexpr quint64 in2021 = movieEpoch + 1614987000; // 2021-03-05 23:30:00 UTC
constexpr quint64 in2026 = movieEpoch + 1780000000; // 2026-05-28 20:26:40 UTC

/// A QuickTime metadata value or an iTunes item: text under a number or a type.
QByteArray item(const QByteArray& type, const QByteArray& text) {
    return box(type, box("data", big(quint32(1)) + big(quint32(0)) + text));
}

/// `moov/meta` with one QuickTime metadata key.
QByteArray quickTimeMeta(const QByteArray& key, const QByteArray& text, bool isoHeader) {
    const QByteArray keys =
        box("keys", big(quint32(0)) + big(quint32(2)) + box("mdta", "other") + box("mdta", key));
    return box("meta", (isoHeader ? big(quint32(0)) : QByteArray()) +
                           box("hdlr", QByteArray(24, '\0')) + keys +
                           box("ilst", item(big(quint32(1)), "2001-01-01T00:00:00Z") +
                                           item(big(quint32(2)), text)));
}

/// A QuickTime user data text.
QByteArray userText(const QByteArray& type, const QByteArray& text) {
    return box(type, big(static_cast<quint16>(text.size())) + big(quint16(0x15c7)) + text);
}

QByteArray udta(const QByteArray& boxes) {
    return box("udta", boxes);
}

const QByteArray dayType = "\xA9"
                           "day";
const QByteArray creationKey = "com.apple.quicktime.creationdate";

} // namespace

TEST(MovieDates, ReadsTheMovieHeader) {
    const QByteArray mvhd = timeBox("mvhd", 0, in2021, 0);
    const QByteArray hollow = box("moov", box("free", ""));
    const struct {
        const char* what;
        QByteArray bytes;
        const char* date;
        const char* name = "clip.mov";
    } rows[] = {
        {"version 0", movie(0, in2021), "2021-03-05 23:30:00"},
        {"version 1", movie(1, in2021), "2021-03-05 23:30:00"},
        {"unknown version", movie(2, in2021), "none"},
        {"never set", movie(0, 0), "none"},
        {"before 1970", movie(0, movieEpoch - 1), "none"},
        {"1970 exactly", movie(0, movieEpoch), "1970-01-01 00:00:00"},
        {"last of 32 bits", movie(0, 0xffffffff), "2040-02-06 06:28:15"},
        {"absurd year", movie(1, movieEpoch + 123456789012345), "none"},
        {"beyond all years", movie(1, ~quint64(0)), "none"},
        {"2026", movie(0, in2026), "none"},
        {"2026, the name agrees", movie(0, in2026), "2026-05-28 20:26:40", "VID_20260528.mov"},
        {"largesize", ftyp() + largeBox("mdat", "x") + largeBox("moov", mvhd),
         "2021-03-05 23:30:00"},
        {"largesize past all numbers",
         ftyp() + big(quint32(1)) + "free" + big(~quint64(0)) + box("moov", mvhd), "none"},
        {"size 0 ends the level", ftyp() + big(quint32(0)) + "free" + box("moov", mvhd), "none"},
        {"size past the end", ftyp() + big(quint32(4000)) + "moov" + mvhd, "2021-03-05 23:30:00"},
        {"only the first moov counts", ftyp() + hollow + movie(0, in2021), "none"},
        {"time cut off", ftyp() + box("moov", mvhd.left(14)), "none"},
        {"time behind its box", ftyp() + box("moov", box("mvhd", big(quint32(0))) + mvhd), "none"},
        {"no moov", ftyp() + box("mdat", mvhd), "none"},
        {"15 bytes", movie(0, in2021).left(15), "none"},
        {"empty", {}, "none"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows)
        EXPECT_EQ(utc(readMP4CreationDate(folder.write(row.name, row.bytes))), row.date)
            << row.what;
    EXPECT_EQ(readMP4CreationDate(folder / "absent.mov"), std::nullopt);
    EXPECT_EQ(readMP4CreationDate(folder.path()), std::nullopt);
}

TEST(MovieDates, ReadsTheTextsWhenTheHeaderHasNoDate) {
    const auto key = [](const QByteArray& text) { return quickTimeMeta(creationKey, text, false); };
    const QByteArray iTunes = box("meta", big(quint32(0)) + box("hdlr", QByteArray(24, '\0')) +
                                              box("ilst", item(dayType, "2016-06-06T06:06:06Z")));
    const QByteArray day = userText(dayType, "2017-07-07T07:07:07+0100");
    const struct {
        const char* what;
        QByteArray more;
        const char* date;
        const char* name = "clip.mov";
    } rows[] = {
        {"key", key("2019-07-24T11:25:40+0300"), "2019-07-24 08:25:40"},
        {"key under an ISO meta box", quickTimeMeta(creationKey, "2019-07-24T11:25:40+03:00", true),
         "2019-07-24 08:25:40"},
        {"another key", quickTimeMeta("com.apple.quicktime.make", "2019-07-24T11:25:40Z", false),
         "none"},
        {"key in the user data", udta(key("2019-07-24 11:25:40 +0300")), "2019-07-24 08:25:40"},
        {"user data", udta(day), "2017-07-07 06:07:07"},
        {"ISO user data", udta(box("date", big(quint32(0)) + "2018-08-08T08:08:08Z")),
         "2018-08-08 08:08:08"},
        {"ISO user data with a language",
         udta(box("date", big(quint32(0)) + "\x15\xc7" + "2018-08-08T08:08:08Z" + '\0')),
         "2018-08-08 08:08:08"},
        {"iTunes item", udta(iTunes), "2016-06-06 06:06:06"},
        {"key before user data", udta(day) + key("2019-07-24T11:25:40Z"), "2019-07-24 11:25:40"},
        {"user data before the iTunes item", udta(iTunes + day), "2017-07-07 06:07:07"},
        {"a text that is no date gives way", key("last summer") + udta(day), "2017-07-07 06:07:07"},
        {"1904 gives way", key("1904-01-01T00:00:00Z") + udta(day), "2017-07-07 06:07:07"},
        {"2026 gives way", key("2026-01-02T00:00:00Z") + udta(day), "2017-07-07 06:07:07"},
        {"2026, the name agrees", key("2026-01-02T00:00:00Z"), "2026-01-02 00:00:00",
         "VID_20260102.mov"},
        {"keys cut off give way",
         box("meta",
             box("hdlr", {}) + box("keys", big(quint32(0)) + big(quint32(9))) + box("ilst", {})) +
             udta(day),
         "2017-07-07 06:07:07"},
        {"user data ended by a zero", udta(day + big(quint32(0))), "2017-07-07 06:07:07"},
        {"text longer than its box",
         udta(box(dayType, big(quint16(200)) + big(quint16(0)) + "2017-07-07T07:07:07Z")),
         "2017-07-07 07:07:07"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows)
        EXPECT_EQ(utc(readExistingVideoDate(folder.write(row.name, movie(0, 0, row.more)))),
                  row.date)
            << row.what;
    const auto both = folder.write("both.mov", movie(0, in2021, key("2019-07-24T11:25:40Z")));
    EXPECT_EQ(utc(readExistingVideoDate(both)), "2021-03-05 23:30:00");
}
