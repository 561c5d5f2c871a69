#include "metadata/FilenameDates.h"

#include "Dates.h"

#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

std::string dateIn(const char* name) {
    const auto date = parseDateFromFilename(QString::fromUtf8(name));
    return date ? exifDateText(*date).toStdString() : "none";
}

qint64 millisecondsIn(const char* name) {
    const auto date = parseDateFromFilename(QString::fromUtf8(name));
    return date ? date->time_since_epoch().count() : -1;
}

} // namespace

TEST(FilenameDates, ReadsLocalTimesInAnyZone) {
    const struct {
        const char* name;
        const char* local;
    } rows[] = {
        {"IMG-20190412-WA0003.jpg", "2019:04:12 12:00:00"},
        {"VID-20190412-WA0003.mp4", "2019:04:12 12:00:00"},
        {"WhatsApp Image 2021-03-05 at 18.22.10.jpeg", "2021:03:05 18:22:10"},
        {"WhatsApp Video 2021-03-05 at 18.22.10 (2).mp4", "2021:03:05 18:22:10"},
        {"photo_2020-02-29_23-59-59.jpg", "2020:02:29 23:59:59"},
        {"video_2020-02-29_00-00-00.mp4", "2020:02:29 00:00:00"},
        {"Screen Shot 2018-12-31 at 09.08.07.png", "2018:12:31 09:08:07"},
        {"ScreenShot 2018-12-31 at 09.08.07.png", "2018:12:31 09:08:07"},
        {"Ekran Resmi 2017-06-15 10.11.12.png", "2017:06:15 10:11:12"},
        {"Screenshot_20160102-030405_Chrome.png", "2016:01:02 03:04:05"},
        {"PXL_20220708_091011123.jpg", "2022:07:08 09:10:11"},
        {"20501231_235959.jpg", "2050:12:31 23:59:59"},
        {"scan_1970-01-01.tif", "1970:01:01 12:00:00"},
        {"2019_13-01 and 2018_12-01.png", "none"}, // only the first match is asked
        {"20510101_000000.jpg", "none"},
        {"2019_13_01.png", "none"},
        {"2019-02-29.png", "none"},
        {"1969-12-31.png", "none"},
        {"2019-00-10.png", "none"},
        // A pattern whose match is impossible gives way to the next.
        {"WhatsApp Image 2021-03-05 at 24.22.10.jpeg", "2021:03:05 12:00:00"},
        {"20190230_101010 2019-03-01.jpg", "2019:03:01 12:00:00"},
        {"20190412_106010.jpg", "none"},
        // Case counts.
        {"img-20190412-wa0003.jpg", "none"},
        {"IMG_1234.jpg", "none"},
        {"", "none"},
    };
    for (const char* name : {"UTC", "Europe/Istanbul", "America/St_Johns", "Pacific/Auckland"}) {
        const TimeZone zone(name);
        for (const auto& row : rows)
            EXPECT_EQ(dateIn(row.name), row.local) << row.name << " in " << name;
    }
}

TEST(FilenameDates, ReadsUnixTimes) {
    const struct {
        const char* name;
        qint64 milliseconds;
    } rows[] = {
        {"1617187200123.jpg", 1617187200123},
        {"1617187200.jpg", 1617187200000},
        {"FB_IMG_1617187200123.jpg", 1617187200123},
        {"788918399.jpg", -1},
        {"0788918399.jpg", -1},
        {"0788918400.jpg", 788918400000},
        {"0788918399999.jpg", -1},
        {"0788918400000.jpg", 788918400000},
        {"2556143999.jpg", 2556143999000}, // the last second of 2050
        {"2556143999999.jpg", 2556143999999},
        {"2556144000.jpg", -1},
        {"2556144000000.jpg", -1},
        {"9999999999 and 1617187200.jpg", 1617187200000}, // every number is asked
        {"12345678901.jpg", -1},
        {"161718720012.jpg", -1},
        {"16171872001234.jpg", -1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(millisecondsIn(row.name), row.milliseconds) << row.name;
}

TEST(FilenameDates, TakesStagedNamesApart) {
    const struct {
        const char *name, *identifier, *rest; ///< @ stands for a UUID
    } rows[] = {
        {"@_L0_001_IMG_0001.HEIC", "@/L0/001", "IMG_0001.HEIC"},
        {"@_L0_001_a_b_c.jpg", "@/L0/001", "a_b_c.jpg"},
        {"@_photo.jpg", "@", "photo.jpg"},
        {"@_L0_001_", "@", "L0_001_"}, // nothing is left for the longer form
        {"@.jpg", nullptr, "@.jpg"},
        {"x@_photo.jpg", nullptr, "x@_photo.jpg"},
        {"IMG_0001.HEIC", nullptr, "IMG_0001.HEIC"},
    };
    const QString upper = QStringLiteral("8846E3E6-8AC8-4857-8448-E3D025784410");
    for (const QString& uuid : {upper, upper.toLower()})
        for (const auto& row : rows) {
            const auto with = [&](const char* text) {
                return QString::fromLatin1(text).replace(u'@', uuid);
            };
            const auto identifier = identifierOfStagedName(with(row.name));
            EXPECT_EQ(identifier.has_value(), row.identifier != nullptr) << row.name;
            EXPECT_EQ(identifier.value_or(QString()), with(row.identifier));
            EXPECT_EQ(stripSafeIDPrefix(with(row.name)), with(row.rest));
        }
}
