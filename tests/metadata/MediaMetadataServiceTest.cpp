#include "metadata/MediaMetadataService.h"

#include "Dates.h"
#include "MovieBuilder.h"
#include "metadata/FileDates.h"
#include "metadata/MovieDates.h"
#include "store/Sqlite.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>

using namespace quorvane;
using namespace quorvane::test;

namespace {

using Mode = DateFallbackMode;
using Case = MetadataResult::Case;

const QString uuid = QStringLiteral("8846E3E6-8AC8-4857-8448-E3D025784410");
const QString identifier = uuid + QStringLiteral("/L0/001");

const Date ofAsset = utc(2011, 1, 1);
const Date ofLibrary = utc(2012, 2, 2);
const Date ofDatabase = utc(2013, 3, 3);
const Date ofHeader = utc(2014, 4, 4);
const Date ofFile = utc(2016, 6, 6);
const Date absurd = *dateFromUnixSeconds(123456789012345.0 + referenceDateOffset);

/// A library that knows what a test tells it, or fails altogether.
class Library final : public AssetFactsSource {
  public:
    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override {
        if (broken)
            throw Error(QStringLiteral("the library is gone"));
        const auto found = assets.find(localIdentifier);
        return found == assets.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<QString, AssetFacts> assets;
    bool broken = false;
};

class MediaMetadataServiceTest : public testing::Test {
  protected:
    MediaMetadataServiceTest() {
        const auto bundle = folder / "Photos Library.photoslibrary/database";
        std::filesystem::create_directories(bundle);
        sqlite::Connection database(bundle / "Photos.sqlite",
                                    sqlite::Connection::Mode::readWriteCreate);
        database.execute("CREATE TABLE ZASSET (ZUUID, ZDATECREATED, ZADDEDDATE)");
        sqlite::Statement row(database, "INSERT INTO ZASSET VALUES (?, ?, NULL)");
        row.bind(1, uuid);
        row.bind(2, static_cast<std::int64_t>(unixSeconds(ofDatabase) - referenceDateOffset));
        row.step();
    }

    std::filesystem::path movieNamed(const std::filesystem::path& name, bool dated) {
        const quint64 time = dated ? movieEpoch + static_cast<quint64>(unixSeconds(ofHeader)) : 0;
        const auto file = folder.write(name, movie(0, time));
        setFileDates(file, ofFile);
        return file;
    }

    TemporaryFolder folder;
    Library library;
    RecordingLog log;
    FakeClock clock;
    MediaMetadataService service{library, folder.path(), log, clock};
};

} // namespace

TEST_F(MediaMetadataServiceTest, AsksTheSourcesInTheirOrder) {
    using Facts = std::optional<AssetFacts>;
    constexpr auto none = std::nullopt;
    const AssetFacts dated{ofAsset, none}, inLibrary{ofLibrary, none}, early{Date(), none};
    const AssetFacts absurdly{absurd, none}, undated{};
    const QString stranger = QStringLiteral("other");
    const auto inName = localDate(2015, 5, 5, 15, 15, 15);
    const struct {
        const char* name; ///< @ stands for the asset's UUID
        bool header;
        Facts asset;
        std::optional<QString> identifier;
        Facts library;
        std::optional<Date> date;
    } rows[] = {
        {"@_L0_001_20150505_151515.mov", true, dated, identifier, dated, ofAsset},
        {"20150505_151515.mov", true, undated, identifier, inLibrary, ofLibrary},
        {"@_L0_001_20150505_151515.mov", true, none, none, inLibrary, ofLibrary},
        {"20150505_151515.mov", true, undated, identifier, undated, ofDatabase},
        {"@_20150505_151515.mov", true, none, none, none, ofDatabase},
        // The given identifier counts, not the name's.
        {"@_L0_001_20150505_151515.mov", true, none, stranger, none, ofHeader},
        {"20150505_151515.mov", true, undated, none, none, ofHeader},
        {"20150505_151515.MOV", false, none, none, none, inName},
        {"00000000-0000-0000-0000-000000000000_L0_001_20150505_151515.mov", false, none, none, none,
         inName},
        {"IMG_0001.mov", false, none, none, none, none},
        // The digits of an identifier tell nothing, those of a name that only looks like one do.
        {"00000000-0000-4000-8000-A1614987000B_L0_001_IMG_0001.mov", false, none, none, none, none},
        {"2015-05-05-abcdefabcdefabcdefabcdefa_IMG_0001.mov", false, none, none, none,
         localDate(2015, 5, 5, 12, 0, 0)},
        {"20150505_151515.mov", true, absurdly, none, none, ofHeader},
        {"IMG_0001.mov", true, none, identifier, absurdly, ofDatabase},
        {"IMG_0001.mov", true, early, identifier, dated, Date()}, // 1970 is a date
    };
    for (const auto& row : rows) {
        library.assets.clear();
        if (row.library)
            library.assets[identifier] = *row.library;
        const QString name = QString::fromLatin1(row.name).replace(u'@', uuid);
        const auto file = movieNamed(pathFrom(name), row.header);
        EXPECT_EQ(service.resolveDate(file, row.asset, row.identifier, Mode::strictNone), row.date)
            << "row " << &row - rows;
    }
}

TEST_F(MediaMetadataServiceTest, SaysWhichDatesAreSecondBest) {
    const auto file = movieNamed("IMG_0001.mov", false);
    library.broken = true;
    EXPECT_EQ(service.resolveDate(file, {}, identifier, Mode::strictNone), ofDatabase);
    EXPECT_EQ(service.resolveDate(file, {}, {}, Mode::fileSaveDate), ofFile);
    EXPECT_EQ(service.resolveDate(file, {}, {}, Mode::today), clock.now());
    EXPECT_EQ(service.resolveDate(folder / "absent.mov", {}, {}, Mode::fileSaveDate), std::nullopt);
    EXPECT_EQ(log.messages(),
              QStringList(
                  {QStringLiteral("[Metadata] 🗄️ Photos.sqlite kalıntı taramasından tarih "
                                  "bulundu: 2013-03-03 00:00:00 +0000 (ID: ") +
                       identifier + QStringLiteral(")"),
                   QStringLiteral("[Metadata] 🕒 Dosya kayıt/oluşturulma tarihi kullanıldı: "
                                  "2016-06-06 00:00:00 +0000")}));
}

TEST_F(MediaMetadataServiceTest, WritesTheDateByTheKindOfTheFile) {
    const auto clip = movieNamed("clip.M4V", false);
    const MetadataResult written =
        service.ensureMetadata(clip, AssetFacts{ofAsset, {}}, {}, Mode::strictNone);
    EXPECT_EQ(written.which, Case::success);
    EXPECT_EQ(written.date, ofAsset);
    EXPECT_EQ(readMP4CreationDate(clip), ofAsset);
    EXPECT_TRUE(service.hasEmbeddedDate(clip));

    const auto sound = folder.write("2019-01-01.MP3", "tune");
    const MetadataResult other = service.ensureMetadata(sound, {}, {}, Mode::strictNone);
    EXPECT_EQ(other.which, Case::failed);
    EXPECT_EQ(other.message, QStringLiteral("Desteklenmeyen dosya uzantısı: mp3"));
    EXPECT_FALSE(service.hasEmbeddedDate(sound));
    EXPECT_TRUE(log.messages().isEmpty());

    const auto unknown = movieNamed("IMG_0001.mov", false);
    EXPECT_EQ(service.ensureMetadata(unknown, {}, {}, Mode::strictNone).which,
              Case::unresolvedDate);
    EXPECT_EQ(log.messages(),
              QStringList(QStringLiteral(
                  "[Metadata] ⚠️ Tarih çözümlenemedi (UNRESOLVED_DATE): IMG_0001.mov")));
}

TEST_F(MediaMetadataServiceTest, KeepsWhatARealPictureSaysOfItself) {
    QUORVANE_REQUIRE_REAL_DATA();
    const auto media = realDataFolder() / "media";
    const auto picture =
        folder.write("picture.JPG", readFile(media / "iphone4_bigendian_exif_after_jfif_icc.jpg"));
    const auto taken = localDate(2011, 1, 13, 14, 33, 39);
    EXPECT_TRUE(service.hasEmbeddedDate(picture));
    EXPECT_EQ(service.resolveDate(picture, {}, {}, Mode::today), taken);
    EXPECT_EQ(service.ensureMetadata(picture, {}, {}, Mode::strictNone).date, taken);
    EXPECT_EQ(readFileCreationDate(picture), taken);

    const auto unknown = folder.write("unknown.jpg", readFile(media / "zero_date_0000.jpg"));
    EXPECT_FALSE(service.hasEmbeddedDate(unknown));
    EXPECT_EQ(service.resolveDate(unknown, {}, {}, Mode::strictNone), std::nullopt);
}
