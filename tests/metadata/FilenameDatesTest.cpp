#include "metadata/FilenameDates.h"

#include "Dates.h"
#include "support/TemporaryFolder.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <gtest/gtest.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const Date now = utc(2024, 6, 1);

std::string dateIn(const char* name) {
    const auto found = parseDateFromFilename(QString::fromUtf8(name), now);
    return found ? exifDateText(found->date).toStdString() : "none";
}

qint64 millisecondsIn(const char* name) {
    const auto found = parseDateFromFilename(QString::fromUtf8(name), now);
    if (!found)
        return -1;
    EXPECT_EQ(found->source, DateSource::numberInName) << name;
    return found->date.time_since_epoch().count();
}

} // namespace

TEST(FilenameDates, ReadsLocalTimesInAnyZone) {
    const struct {
        const char* name;
        const char* local;
    } rows[] = {
        {"IMG-20190412-WA0003.jpg", "2019:04:12 12:00:00"},
        {"WhatsApp Image 2021-03-05 at 18.22.10.jpeg", "2021:03:05 18:22:10"},
        {"photo_2020-02-29_23-59-59.jpg", "2020:02:29 23:59:59"},
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
        // Of fourteen digits the last eight are no day.
        {"X_20201220201010_101010.jpg", "2020:12:20 20:10:10"},
        {"20190412_106010.jpg", "2019:04:12 12:00:00"},
        // Which number is the day must be certain, and the day not to come.
        {"12-04-2019.jpg", "none"},
        {"12-25-2019.jpg", "2019:12:25 12:00:00"},
        {"Scan_20240603.jpg", "none"},
        {"12 NİSAN 2019.jpg", "2019:04:12 12:00:00"},
        {"12 KASIM 2019.jpg", "2019:11:12 12:00:00"},
        {"10.11.2012.1.jpg", "none"},
        {"20190412996699.jpg", "none"},
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
        {"1717200000.jpg", 1717200000000}, // now
        {"1717200000001.jpg", -1},
        {"1717200001.jpg", -1},
        {"1000012345.jpg", 1000012345000},
        {"9999999999 and 1617187200.jpg", 1617187200000}, // every number is asked
        {"12345678901.jpg", -1},
        {"161718720012.jpg", -1},
        {"16171872001234.jpg", -1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(millisecondsIn(row.name), row.milliseconds) << row.name;
}

/// A line of the table of names, filled in for one instant.
QString filledIn(QString name, Date date, int count) {
    const auto local = QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count());
    const QLocale english(QLocale::English), turkish(QLocale::Turkish), german(QLocale::German);
    for (const auto& [sign, text] : std::initializer_list<std::pair<const char*, QString>>{
             {"%Y", local.toString(u"yyyy")},
             {"%m", local.toString(u"MM")},
             {"%d", local.toString(u"dd")},
             {"%H", local.toString(u"HH")},
             {"%M", local.toString(u"mm")},
             {"%S", local.toString(u"ss")},
             {"%f", local.toString(u"zzz")},
             {"%s", QString::number(local.toSecsSinceEpoch())},
             {"%l", QString::number((local.time().hour() + 11) % 12 + 1)},
             {"%p", QString::fromLatin1(local.time().hour() < 12 ? "AM" : "PM")},
             {"%e", local.toString(u"d")},
             {"%n", local.toString(u"M")},
             {"%B", english.monthName(local.date().month())},
             {"%b", english.monthName(local.date().month(), QLocale::ShortFormat)},
             {"%t", turkish.monthName(local.date().month())},
             {"%g", german.monthName(local.date().month())},
             {"%c", QString::number(count)}})
        name.replace(QLatin1String(sign), text);
    return name;
}

TEST(FilenameDates, ReadsTheNamesThatMakersAndPeopleGive) {
    const TimeZone zone("Europe/Istanbul");
    const Date dates[] = {
        *localDate(2019, 4, 12, 18, 22, 10),  *localDate(2024, 1, 5, 6, 7, 8),
        *localDate(2012, 12, 31, 23, 59, 59), *localDate(2021, 7, 30, 12, 0, 1),
        *localDate(2016, 2, 29, 0, 15, 30),   *localDate(2007, 10, 9, 10, 11, 12)};
    QFile table(sourceFolder() / "tests/metadata/FileNames.tsv");
    ASSERT_TRUE(table.open(QFile::ReadOnly));
    int names = 0, right = 0, missed = 0;
    for (const QString& line :
         QString::fromUtf8(table.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList row = line.split(u'\t');
        if (line.startsWith(u'#'))
            continue;
        ASSERT_EQ(row.size(), 3) << line.toStdString();
        for (const Date& date : dates) {
            const QString name = filledIn(row[1], date, 1000 + names++);
            const auto local = QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count());
            std::optional<Date> expected = date;
            if (row[2] == u"nothing")
                expected.reset();
            else if (row[2] == u"day")
                expected = localDate(local.date().year(), local.date().month(), local.date().day(),
                                     12, 0, 0);
            else if (row[2] == u"utc")
                expected = date + std::chrono::seconds(local.offsetFromUtc());
            const auto found = parseDateFromFilename(name, now);
            missed += expected && !found ? 1 : 0;
            if (expected && !found)
                continue;
            EXPECT_EQ(utc(found ? std::optional(found->date) : std::nullopt), utc(expected))
                << name.toStdString();
            EXPECT_EQ(found && found->source == DateSource::numberInName, row[2] == u"number")
                << name.toStdString();
            right += found.has_value() == expected.has_value() ? 1 : 0;
        }
    }
    EXPECT_GE(names, 1000);
    EXPECT_EQ(missed, 6); // "12-04-2019", of which nobody knows the day
    EXPECT_EQ(right, names - missed);
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
