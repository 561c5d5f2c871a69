#include "metadata/MediaMetadataService.h"

#include "Dates.h"
#include "ImageFixtures.h"
#include "MovieBuilder.h"
#include "metadata/FileDates.h"
#include "metadata/exif/ExifBlock.h"
#include "metadata/movie/MovieDates.h"
#include "sqlite/Sqlite.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>

#include <sys/resource.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

using Mode = DateFallbackMode;
using Case = MetadataResult::Case;
using Source = DateSource;

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
        Source source = Source::embedded;
    } rows[] = {
        {"@_L0_001_20150505_151515.mov", true, dated, identifier, dated, ofAsset, Source::asset},
        {"20150505_151515.mov", true, undated, identifier, inLibrary, ofLibrary, Source::asset},
        {"@_L0_001_20150505_151515.mov", true, none, none, inLibrary, ofLibrary, Source::asset},
        {"20150505_151515.mov", true, undated, identifier, undated, ofDatabase,
         Source::photosDatabase},
        {"@_20150505_151515.mov", true, none, none, none, ofDatabase, Source::photosDatabase},
        // The given identifier counts, not the name's.
        {"@_L0_001_20150505_151515.mov", true, none, stranger, none, ofHeader},
        {"20150505_151515.mov", true, undated, none, none, ofHeader},
        {"20150505_151515.MOV", false, none, none, none, inName, Source::fileName},
        {"00000000-0000-0000-0000-000000000000_L0_001_20150505_151515.mov", false, none, none, none,
         inName, Source::fileName},
        {"IMG_0001.mov", false, none, none, none, none},
        // The digits of an identifier tell nothing, those of a name that only looks like one do.
        {"00000000-0000-4000-8000-A1614987000B_L0_001_IMG_0001.mov", false, none, none, none, none},
        {"2015-05-05-abcdefabcdefabcdefabcdefa_IMG_0001.mov", false, none, none, none,
         localDate(2015, 5, 5, 12, 0, 0), Source::fileName},
        {"20150505_151515.mov", true, absurdly, none, none, ofHeader},
        {"IMG_0001.mov", true, none, identifier, absurdly, ofDatabase, Source::photosDatabase},
        {"IMG_0001.mov", true, early, identifier, dated, Date(), Source::asset}, // 1970 is a date
    };
    for (const auto& row : rows) {
        library.assets.clear();
        if (row.library)
            library.assets[identifier] = *row.library;
        const QString name = QString::fromLatin1(row.name).replace(u'@', uuid);
        const auto file = movieNamed(pathFrom(name), row.header);
        const auto expected =
            row.date ? std::optional(ResolvedDate{*row.date, row.source}) : std::nullopt;
        EXPECT_EQ(service.resolveDate(file, row.asset, row.identifier, Mode::strictNone), expected)
            << "row " << &row - rows;
    }
}

TEST_F(MediaMetadataServiceTest, SaysWhichDatesAreSecondBest) {
    const auto file = movieNamed("IMG_0001.mov", false);
    library.broken = true;
    const auto resolved = [&](const std::optional<QString>& id, Mode mode) {
        return service.resolveDate(file, {}, id, mode);
    };
    EXPECT_EQ(resolved(identifier, Mode::strictNone),
              (ResolvedDate{ofDatabase, Source::photosDatabase}));
    EXPECT_EQ(resolved({}, Mode::fileSaveDate), (ResolvedDate{ofFile, Source::fileSaveDate}));
    EXPECT_EQ(resolved({}, Mode::today), (ResolvedDate{clock.now(), Source::today}));
    EXPECT_EQ(service.resolveDate(folder / "absent.mov", {}, {}, Mode::fileSaveDate), std::nullopt);
    EXPECT_EQ(log.messages(),
              QStringList(
                  {QStringLiteral("[Metadata] 🗄️ Photos.sqlite kalıntı taramasından tarih "
                                  "bulundu: 2013-03-03 00:00:00 +0000 (ID: ") +
                       identifier + QStringLiteral(")"),
                   QStringLiteral("[Metadata] 🕒 Dosya kayıt/oluşturulma tarihi kullanıldı: "
                                  "2016-06-06 00:00:00 +0000")}));
}

TEST_F(MediaMetadataServiceTest, SaysWhatItCannotDate) {
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

TEST_F(MediaMetadataServiceTest, ForetellsWhatARunMakesOfAFile) {
    constexpr auto none = std::nullopt;
    const Date in2026 = utc(2026, 5, 5);
    const QByteArray plain = tiffOf(ByteOrder::bigEndian, false);
    const QByteArray dated =
        exif::stamp(viewOf(plain), {"2009:09:09 09:09:09", utc(2009, 9, 9), none})
            .apply(viewOf(plain));
    const QByteArray headless = ftyp() + box("moov", box("trak", timeBox("tkhd", 0, 1, 1)));
    const struct {
        const char* name;
        QByteArray bytes;
        std::optional<AssetFacts> asset;
        Mode mode;
        Case which;
        bool carries;
        bool undatable = false;
        QString original = {};
    } rows[] = {
        {"a.mov", movie(0, 0), AssetFacts{ofAsset, none}, Mode::strictNone, Case::success, true},
        // Of a year that a header alone is not believed.
        {"b.mov", movie(0, 0), AssetFacts{in2026, none}, Mode::strictNone, Case::success, true},
        {"c.mov", movie(0, 0), none, Mode::today, Case::success, true},
        {"d.mov", movie(0, movieEpoch + static_cast<quint64>(unixSeconds(in2026))), none,
         Mode::strictNone, Case::unresolvedDate, false},
        {"e.mov", movie(0, 0), none, Mode::strictNone, Case::unresolvedDate, false},
        {"f.mov", headless, AssetFacts{ofAsset, none}, Mode::strictNone, Case::success, false},
        {"g.mov", ftyp(), AssetFacts{ofAsset, none}, Mode::strictNone, Case::failed, false},
        {"h.3gp", movie(0, 0), AssetFacts{ofAsset, none}, Mode::strictNone, Case::success, true},
        {"i.jpg", jpegOf({}), AssetFacts{ofAsset, none}, Mode::strictNone, Case::success, true},
        {"j.jpg", jpegOf({}), none, Mode::fileSaveDate, Case::success, true},
        {"k.jpg", "no picture", AssetFacts{ofAsset, none}, Mode::strictNone, Case::failed, false},
        {"l.gif", "GIF89a", AssetFacts{ofAsset, none}, Mode::strictNone, Case::failed, false, true},
        {"m.nef", "garbage", AssetFacts{ofAsset, none}, Mode::strictNone, Case::failed, false,
         true},
        {"n.nef", tiffOf(ByteOrder::bigEndian, false), none, Mode::today, Case::failed, false,
         true},
        {"o.nef", dated, AssetFacts{ofAsset, none}, Mode::today, Case::skippedAlreadyHasDate, true},
        {"o2.jpg", dated, AssetFacts{in2026, none, ofAsset}, Mode::today, Case::success, true},
        {"p.dng", dated, AssetFacts{ofAsset, none}, Mode::strictNone, Case::success, true},
        {"cut", movie(0, 0), none, Mode::strictNone, Case::success, true, false,
         QString(300, u'n') + QStringLiteral("_20150505_151515.mov")},
    };
    clock.advance(in2026 - clock.now());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto file = folder.write(row.name, row.bytes);
        setFileDates(file, ofFile);
        const auto logged = log.messages();
        const auto foretold =
            service.wouldEnsureMetadata(file, row.asset, none, row.mode, row.original);
        EXPECT_EQ(readFile(file), row.bytes);
        EXPECT_EQ(readFileCreationDate(file), ofFile);
        EXPECT_EQ(log.messages(), logged);
        EXPECT_EQ(service.isUndatable(file, row.original), row.undatable);
        EXPECT_EQ(foretold.result.which, row.which);
        EXPECT_EQ(foretold.carriesDate, row.carries);

        const auto done = service.ensureMetadata(file, row.asset, none, row.mode, row.original);
        EXPECT_EQ(done.which, foretold.result.which);
        EXPECT_EQ(done.message, foretold.result.message);
        EXPECT_EQ(done.date, foretold.result.date);
        EXPECT_EQ(done.source, foretold.result.source);
        EXPECT_EQ(service.carriesDate(file, done, row.original), foretold.carriesDate);
    }
}

TEST_F(MediaMetadataServiceTest, StopsWhenItIsToldTo) {
    std::stop_source stop;
    stop.request_stop();
    for (const auto& [name, bytes] : std::map<std::string, QByteArray>{
             {"a.jpg", jpegOf({})}, {"a.png", pngOf({})}, {"a.mov", movie(0, 0)}}) {
        const auto file = folder.write(name, bytes);
        EXPECT_THROW(service.ensureMetadata(file, AssetFacts{ofAsset, {}}, {}, Mode::strictNone, {},
                                            stop.get_token()),
                     Cancelled);
        EXPECT_THROW(service.hasEmbeddedDate(file, {}, stop.get_token()), Cancelled);
        EXPECT_EQ(readFile(file), bytes);
    }
}

#ifndef __SANITIZE_ADDRESS__ // whose checks need descriptors themselves
TEST_F(MediaMetadataServiceTest, TakesNoOtherDateWhereTheSystemRefusesToRead) {
    rlimit usual{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    for (const char* kind : {"jpg", "mov", "cr2"}) {
        const auto file = folder.write(std::string("20150505_151515.") + kind, "any");
        const rlimit noFiles{0, usual.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &noFiles), 0);
        EXPECT_THROW(service.ensureMetadata(file, {}, {}, Mode::strictNone), FileError) << kind;
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    }
}
#endif
