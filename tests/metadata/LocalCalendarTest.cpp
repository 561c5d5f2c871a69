#include "metadata/LocalCalendar.h"

#include "Dates.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

std::string parsed(const char* text) {
    return utc(parseExifDate(QString::fromLatin1(text)));
}

} // namespace

TEST(LocalCalendar, ReadsWallClocksInTheZoneOfTheProcess) {
    const struct {
        const char* zone;
        const char* text;
        const char* instant;
        const char* written; ///< when it is not the text
    } rows[] = {
        {"UTC", "2021:03:05 23:30:00", "2021-03-05 23:30:00", nullptr},
        {"Europe/Istanbul", "2021:03:06 02:30:00", "2021-03-05 23:30:00", nullptr},
        {"Europe/Istanbul", "1904:01:01 00:00:00", "1903-12-31 22:03:04", nullptr},
        {"Asia/Kathmandu", "2021:03:06 00:00:00", "2021-03-05 18:15:00", nullptr},
        // The hour that the clocks skip, and the one they show twice.
        {"America/New_York", "2021:03:14 01:59:59", "2021-03-14 06:59:59", nullptr},
        {"America/New_York", "2021:03:14 02:30:00", "2021-03-14 07:30:00", "2021:03:14 03:30:00"},
        {"America/New_York", "2021:03:14 03:00:00", "2021-03-14 07:00:00", nullptr},
        {"America/New_York", "2021:11:07 01:30:00", "2021-11-07 05:30:00", nullptr},
        {"America/New_York", "2021:11:07 02:00:00", "2021-11-07 07:00:00", nullptr},
        {"Australia/Lord_Howe", "2021:10:03 02:10:00", "2021-10-02 15:40:00",
         "2021:10:03 02:40:00"},
        {"Australia/Lord_Howe", "2021:04:04 01:45:00", "2021-04-03 14:45:00", nullptr},
        // A day that an island slept through.
        {"Pacific/Apia", "2011:12:30 12:00:00", "2011-12-30 22:00:00", "2011:12:31 12:00:00"},
        {"Pacific/Kiritimati", "9999:12:31 23:59:59", "9999-12-31 09:59:59", nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.zone) + " " + row.text);
        const TimeZone zone(row.zone);
        const std::optional<Date> date = parseExifDate(QString::fromLatin1(row.text));
        ASSERT_TRUE(date);
        EXPECT_EQ(utc(date), row.instant);
        EXPECT_EQ(exifDateText(*date).toStdString(), row.written ? row.written : row.text);
    }
}

TEST(LocalCalendar, TakesOnlyWholeAndPossibleExifDates) {
    const TimeZone zone("UTC");
    for (const QString& end : {QString(), QStringLiteral("  "), QString(QChar())})
        EXPECT_EQ(utc(parseExifDate(QStringLiteral("2020:02:29 00:00:00") + end)),
                  "2020-02-29 00:00:00");
    for (const char* text : {"", "0000:00:00 00:00:00", "    :  :     :  :  ",
                             "2021:02:29 00:00:00", "2021:13:01 00:00:00", "2021:00:01 00:00:00",
                             "2021:01:01 24:00:00", "2021:01:01 00:60:00", "2021:01:01 00:00:60",
                             "2021-01-01 00:00:00", "2021:01:01T00:00:00", "2021:01:01 00:00",
                             "2021:01:01 00:00:00Z", "2021:+1:01 00:00:00", " 2021:01:01 00:00:00"})
        EXPECT_EQ(parsed(text), "none") << text;
    EXPECT_EQ(parseExifDate(QStringLiteral("٢٠٢١:01:01 00:00:00")), std::nullopt);
    EXPECT_EQ(localDate(2021, 257, 1, 0, 0, 0), std::nullopt);
    EXPECT_EQ(localDate(2021, 1, 257, 0, 0, 0), std::nullopt);
}

TEST(LocalCalendar, ReadsIsoDatesWithTheirOffset) {
    const TimeZone zone("Asia/Tokyo");
    const struct {
        const char* text;
        const char* instant;
    } rows[] = {
        {"2019-07-24T11:25:40+0300", "2019-07-24 08:25:40"},
        {"2019-07-24T11:25:40+03:00", "2019-07-24 08:25:40"},
        {"2019-07-24T23:25:40-0430", "2019-07-25 03:55:40"},
        {"2019-07-24T11:25:40Z", "2019-07-24 11:25:40"},
        {" 2019-07-24T11:25:40.644Z\n", "2019-07-24 11:25:40"},
        {"2019-07-24", "2019-07-24 03:00:00"},
        {"2019-07-24T11:25:40", "2019-07-24 02:25:40"}, // without an offset it is local time
        {"2019-07-24 11:25:40", "2019-07-24 02:25:40"},
        {"2019-07-24 11:25:40Z", "2019-07-24 11:25:40"},
        {"2019-07-24T11:25:40 +0300", "2019-07-24 08:25:40"},
        {"2019-07-24T11:25Z", "none"},
        {"2019-02-30T11:25:40Z", "none"},
        {"2019-07-24T24:25:40Z", "none"},
        {"2019-07-24T11:25:40+3", "none"},
        {"2019", "none"},
        {"", "none"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(utc(parseIsoDate(QString::fromLatin1(row.text))), row.instant) << row.text;
}
