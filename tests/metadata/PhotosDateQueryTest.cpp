#include "metadata/PhotosDateQuery.h"

#include "Dates.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace quorvane;
using namespace quorvane::test;
using sqlite::Connection;

namespace {

namespace fs = std::filesystem;

const fs::path usualBundle = "Photos Library.photoslibrary";

fs::path databaseOf(const fs::path& bundle) {
    return bundle / "database/Photos.sqlite";
}

/// Opens the database of a library the way the Photos application does, and keeps it open.
Connection photosApplication(const fs::path& bundle) {
    fs::create_directories(databaseOf(bundle).parent_path());
    Connection connection(databaseOf(bundle), Connection::Mode::readWriteCreate);
    connection.execute("PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0");
    return connection;
}

void addAsset(Connection& photos, const QByteArray& values, const QByteArray& table = "ZASSET") {
    photos.execute("CREATE TABLE IF NOT EXISTS " + table +
                   " (ZUUID VARCHAR, ZDATECREATED TIMESTAMP, ZADDEDDATE TIMESTAMP)");
    photos.execute("INSERT INTO " + table + " VALUES (" + values + ")");
}

/// Every file of the library with its bytes and its time.
using Listing = std::vector<std::tuple<fs::path, QByteArray, fs::file_time_type>>;
Listing listingOf(const fs::path& folder) {
    Listing listing;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        listing.emplace_back(entry.path(),
                             entry.is_regular_file() ? readFile(entry.path()) : QByteArray(),
                             fs::last_write_time(entry));
    std::ranges::sort(listing);
    return listing;
}

class PhotosDateQueryTest : public testing::Test {
  protected:
    static std::string ask(PhotosDateQuery& query, const char* identifier) {
        return utc(query.queryDateFromPhotosSQLite(QString::fromLatin1(identifier)));
    }
    std::string ask(const char* identifier) { return ask(database, identifier); }

    TemporaryFolder pictures;
    FakeClock clock;
    PhotosDateQuery database{pictures.path(), clock};
};

} // namespace

TEST_F(PhotosDateQueryTest, PrefersTheCreationToTheAddition) {
    const struct {
        const char* dates;
        const char* date;
    } rows[] = {
        {"0, 600000000", "2020-01-06 10:40:00"},
        {"NULL, 600000000", "2020-01-06 10:40:00"},
        {"-5, 600000000", "2020-01-06 10:40:00"},
        {"'soon', 600000000", "2020-01-06 10:40:00"},
        {"500000000, 600000000", "2016-11-05 00:53:20"},
        {"500000000.75, NULL", "2016-11-05 00:53:20"},
        {"NULL, NULL", "none"},
        {"0, -1", "none"},
        {"123456789012345, 600000000", "none"}, // it wins, and no file can say it
        {"9e999, 600000000", "none"},
        {"-978307200, 0", "none"},
    };
    for (const QByteArray table : {"ZGENERICASSET", "ZASSET"}) {
        const TemporaryFolder folder;
        Connection photos = photosApplication(folder / usualBundle);
        for (size_t i = 0; i < std::size(rows); ++i)
            addAsset(photos, "'U" + QByteArray::number(i) + "', " + rows[i].dates, table);
        PhotosDateQuery asked(folder.path(), clock);
        for (size_t i = 0; i < std::size(rows); ++i)
            EXPECT_EQ(utc(asked.queryDateFromPhotosSQLite(QStringLiteral("U%1/L0/001").arg(i))),
                      rows[i].date)
                << rows[i].dates << " in " << table.constData();
    }
}

TEST_F(PhotosDateQueryTest, KnowsAnAssetByItsBareOrItsWholeIdentifier) {
    Connection photos = photosApplication(pictures / usualBundle);
    addAsset(photos, "'A', 600000000, 0", "ZGENERICASSET");
    addAsset(photos, "'B_C/D', 600000000, 0", "ZGENERICASSET");
    for (const char* known : {"A", "A/L0/001", "A_L0_001", "A/B_C", "B_C/D"})
        EXPECT_EQ(ask(known), "2020-01-06 10:40:00") << known;
    for (const char* unknown : {"", "B", "a", "A' OR '1'='1", "B_C"})
        EXPECT_EQ(ask(unknown), "none") << unknown;
}

TEST_F(PhotosDateQueryTest, SeesEveryRowOfALibraryInUseAndLeavesNoTraceInIt) {
    const fs::path bundle = pictures / usualBundle;
    Connection photos = photosApplication(bundle);
    addAsset(photos, "'A', 600000000, 0");
    const Listing before = listingOf(bundle);
    EXPECT_EQ(ask("A"), "2020-01-06 10:40:00");
    EXPECT_EQ(ask("B"), "none");
    EXPECT_EQ(listingOf(bundle), before);

    photos.execute("BEGIN EXCLUSIVE; INSERT INTO ZASSET VALUES ('B', 600000000, 0)");
    EXPECT_EQ(ask("A"), "2020-01-06 10:40:00"); // locked, not committed
    EXPECT_EQ(ask("B"), "none");
    photos.execute("COMMIT");
    EXPECT_EQ(ask("B"), "2020-01-06 10:40:00");

    photos.execute("PRAGMA wal_checkpoint(TRUNCATE)");
    EXPECT_EQ(ask("A"), "2020-01-06 10:40:00");
    addAsset(photos, "'C', 600000000, 0");
    EXPECT_EQ(ask("C"), "2020-01-06 10:40:00");
    EXPECT_EQ(ask("B"), "2020-01-06 10:40:00");
}

TEST_F(PhotosDateQueryTest, TakesTheUsualLibraryElseAnyOtherOnceAndForAll) {
    EXPECT_EQ(ask("A"), "none"); // nothing there yet, and never looked for again
    fs::create_directories(pictures / "Empty.photoslibrary");
    {
        Connection photos = photosApplication(pictures / "Old Holidays.photoslibrary");
        addAsset(photos, "'A', 500000000, 0", "ZGENERICASSET");
    }
    EXPECT_EQ(ask("A"), "none");
    PhotosDateQuery other(pictures.path(), clock);
    EXPECT_EQ(ask(other, "A"), "2016-11-05 00:53:20");
    {
        Connection photos = photosApplication(pictures / usualBundle);
        addAsset(photos, "'A', 600000000, 0");
    }
    PhotosDateQuery usual(pictures.path(), clock);
    EXPECT_EQ(ask(usual, "A"), "2020-01-06 10:40:00");
    EXPECT_EQ(ask(other, "A"), "2016-11-05 00:53:20");

    PhotosDateQuery nowhere({}, clock);
    EXPECT_EQ(ask(nowhere, "A"), "none");
}

TEST_F(PhotosDateQueryTest, HasNoDateWhileTheDatabaseCannotBeRead) {
    const fs::path file = databaseOf(usualBundle);
    pictures.write(file, QByteArray(8192, 'x'));
    EXPECT_EQ(ask("A"), "none");

    fs::remove(pictures / file);
    Connection photos = photosApplication(pictures / usualBundle);
    photos.execute("CREATE TABLE ZALBUM (ZUUID VARCHAR)");
    clock.advance(std::chrono::minutes(2));
    EXPECT_EQ(ask("A"), "none");

    addAsset(photos, "'A', 600000000, 0");
    EXPECT_EQ(ask("A"), "none"); // it is left alone for a while
    clock.advance(std::chrono::minutes(2));
    EXPECT_EQ(ask("A"), "2020-01-06 10:40:00");

    fs::remove_all(pictures / usualBundle);
    EXPECT_EQ(ask("A"), "none");
}
