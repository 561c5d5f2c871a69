#include "metadata/ImageMetadata.h"

#include "Dates.h"
#include "ImageFixtures.h"
#include "OtherPrograms.h"
#include "metadata/exif/ExifBlock.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

using namespace quorvane;
using namespace quorvane::test;

namespace {

using Case = MetadataResult::Case;

const Date party(std::chrono::milliseconds(1614987000'750)); // 2021-03-05 23:30:00.75 UTC
const AssetFacts sydney{{}, GeoLocation{-33.86, 151.21, -5}};

/// A temporary folder, and a computer three hours east of Greenwich.
class ImageMetadata : public testing::Test {
  protected:
    MetadataResult enrich(const std::filesystem::path& file, Date date,
                          const std::optional<AssetFacts>& asset = std::nullopt) {
        return enrichImageMetadata(file, date, asset, log_);
    }

    const TimeZone zone_{"UTC-3"};
    TemporaryFolder folder_;
    RecordingLog log_;
};

struct stat statusOf(const std::filesystem::path& file) {
    struct stat status {};
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return status;
}

/// What exiftool reads of every file of a folder, binary values included: tag to value by file.
QMap<QString, QJsonObject> dumpsOf(const std::filesystem::path& folder) {
    const QByteArray json =
        outputOf("exiftool -j -a -u -n -b -G1 --System:all --Composite:all --MediaData %", {folder})
            .value();
    QMap<QString, QJsonObject> dumps;
    for (const auto& file : QJsonDocument::fromJson(json).array())
        dumps[file[u"SourceFile"].toString().section(u'/', -1)] = file.toObject();
    return dumps;
}

/// Without the tags that are written, and those that tell of the container's own bookkeeping.
std::string untouched(QJsonObject tags, bool withPlace, bool hadExif) {
    QStringList gone = {QStringLiteral("SourceFile"),
                        QStringLiteral("IFD0:ModifyDate"),
                        QStringLiteral("ExifIFD:DateTimeOriginal"),
                        QStringLiteral("ExifIFD:CreateDate"),
                        QStringLiteral("ExifIFD:OffsetTime"),
                        QStringLiteral("ExifIFD:OffsetTimeOriginal"),
                        QStringLiteral("ExifIFD:OffsetTimeDigitized"),
                        QStringLiteral("ExifIFD:SubSecTime"),
                        QStringLiteral("ExifIFD:SubSecTimeOriginal"),
                        QStringLiteral("ExifIFD:SubSecTimeDigitized"),
                        QStringLiteral("QuickTime:MediaDataSize"),
                        QStringLiteral("QuickTime:MediaDataOffset")};
    if (!hadExif)
        gone += {QStringLiteral("File:ExifByteOrder"), QStringLiteral("ExifIFD:ExifVersion"),
                 QStringLiteral("File:FileType"),      QStringLiteral("RIFF:WebP_Flags"),
                 QStringLiteral("RIFF:ImageWidth"),    QStringLiteral("RIFF:ImageHeight")};
    for (const QString& key : tags.keys())
        if (gone.contains(key) || key.startsWith(u"ExifTool:") ||
            (withPlace && key.startsWith(u"GPS:")))
            tags.remove(key);
    return QJsonDocument(tags).toJson().toStdString();
}

std::string textOf(const QJsonObject& tags, QStringView name) {
    return tags[name].toVariant().toString().toStdString();
}

/// A check sum of the picture as somebody else's decoder sees it; none when it cannot.
std::optional<QByteArray> decodedBy(const std::filesystem::path& file) {
    return outputOf("ffmpeg -v quiet -i % -f md5 -", {file});
}

} // namespace

TEST_F(ImageMetadata, RealPicturesStateTheDateAndKeepEverythingElse) {
    QUORVANE_REQUIRE_REAL_DATA();
    REQUIRE_PROGRAM("exiftool");
    const std::filesystem::path media = realDataFolder() / "media";
    const auto before = dumpsOf(media);
    const struct {
        Date date;
        std::optional<AssetFacts> asset;
        const char *text, *fraction;
    } rounds[] = {{utc(1970, 6, 1), {}, "1970:06:01 03:00:00", "000"},
                  {party, sydney, "2021:03:06 02:30:00", "750"},
                  {utc(2049, 12, 31), {}, "2049:12:31 03:00:00", "000"}};
    int round = 0;
    for (const auto& row : rounds) {
        const std::filesystem::path copies = folder_ / std::to_string(++round);
        std::filesystem::create_directory(copies);
        std::vector<std::filesystem::path> names;
        for (const auto& entry : std::filesystem::directory_iterator(media)) {
            const auto name = entry.path().filename();
            if (before[pathText(name)][u"File:MIMEType"].toString().startsWith(u"image/") &&
                name != "corrupt_boxes.heif")
                names.push_back(name);
        }
        ASSERT_GE(names.size(), 12U);
        for (const auto& name : names) {
            const auto copy = copies / name;
            std::filesystem::copy_file(media / name, copy);
            EXPECT_EQ(enrich(copy, row.date, row.asset).which, Case::success) << name;
            const QByteArray once = readFile(copy);
            EXPECT_EQ(enrich(copy, row.date, row.asset).which, Case::success) << name;
            EXPECT_EQ(readFile(copy), once) << name;
        }
        EXPECT_EQ(entriesIn(copies), std::ssize(names));
        const auto after = dumpsOf(copies);
        for (const auto& name : names) {
            SCOPED_TRACE(name);
            const QJsonObject old = before[pathText(name)];
            const QJsonObject now = after[pathText(name)];
            for (const auto tag :
                 {u"IFD0:ModifyDate", u"ExifIFD:DateTimeOriginal", u"ExifIFD:CreateDate"})
                EXPECT_EQ(textOf(now, tag), row.text);
            for (const QString& tag : now.keys()) {
                const bool isZone = tag.startsWith(u"ExifIFD:OffsetTime");
                if (isZone || tag.startsWith(u"ExifIFD:SubSecTime")) {
                    EXPECT_EQ(textOf(now, tag), isZone ? "+03:00" : row.fraction);
                }
            }
            if (row.asset) {
                EXPECT_NEAR(now[u"GPS:GPSLatitude"].toDouble(), 33.86, 1e-9);
                EXPECT_NEAR(now[u"GPS:GPSLongitude"].toDouble(), 151.21, 1e-9);
                EXPECT_EQ(textOf(now, u"GPS:GPSLatitudeRef"), "S");
                EXPECT_EQ(textOf(now, u"GPS:GPSLongitudeRef"), "E");
                EXPECT_EQ(now[u"GPS:GPSAltitude"].toDouble(), 5);
                EXPECT_EQ(now[u"GPS:GPSAltitudeRef"].toInt(), 1);
                EXPECT_EQ(textOf(now, u"GPS:GPSTimeStamp"), "23:30:00");
                EXPECT_EQ(textOf(now, u"GPS:GPSDateStamp"), "2021:03:05");
            }
            const bool hadExif = old.contains(u"File:ExifByteOrder");
            EXPECT_EQ(untouched(now, row.asset.has_value(), hadExif),
                      untouched(old, row.asset.has_value(), hadExif));
            if (row.asset && name.extension() != ".heic") {
                EXPECT_TRUE(decodedBy(copies / name));
                EXPECT_EQ(decodedBy(copies / name), decodedBy(media / name));
            }
            EXPECT_EQ(readExistingImageDate(copies / name),
                      std::chrono::floor<std::chrono::seconds>(row.date));
        }
    }
}

TEST_F(ImageMetadata, EveryContainerTakesTheDateWhateverItsNameSays) {
    const struct {
        const char* name;
        QByteArray bytes;
    } rows[] = {
        {"photo.jpg", jpegOf({})},
        {"really-a.png.jpg", pngOf({})},
        {"lossless.webp", webpOf(losslessChunk(3, 2, true))},
        {"motorola.tif", tiffOf(ByteOrder::bigEndian, false)},
        {"intel.tif", tiffOf(ByteOrder::littleEndian, false)},
        {"motorola-big.tif", tiffOf(ByteOrder::bigEndian, true)},
        {"intel-big.tif", tiffOf(ByteOrder::littleEndian, true)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto file = folder_.write(row.name, row.bytes);
        ::chmod(file.c_str(), 0640);
        EXPECT_EQ(readExistingImageDate(file), std::nullopt);
        const MetadataResult result = enrich(file, party, sydney);
        EXPECT_EQ(result.which, Case::success) << result.message.toStdString();
        EXPECT_EQ(result.date, party);
        EXPECT_EQ(readExistingImageDate(file), std::chrono::floor<std::chrono::seconds>(party));
        EXPECT_EQ(statusOf(file).st_mode & 07777, 0640U);
        EXPECT_EQ(statusOf(file).st_mtim.tv_sec, 1614987000);
        // Writing it again leaves the very file in place and only gives it back its date.
        const auto inode = statusOf(file).st_ino;
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now());
        EXPECT_EQ(enrich(file, party, sydney).which, Case::success);
        EXPECT_EQ(statusOf(file).st_ino, inode);
        EXPECT_EQ(statusOf(file).st_mtim.tv_sec, 1614987000);
    }
    EXPECT_EQ(entriesIn(folder_.path()), std::ssize(rows));
    EXPECT_TRUE(log_.messages().isEmpty());
}

TEST_F(ImageMetadata, AFileThatCannotBeRewrittenStaysAsItWas) {
    const std::string longName = QByteArray(250, 'n').append(".jpg").toStdString();
    const struct {
        const char* name;
        QByteArray bytes;
        const char* message;
        bool logged;
    } rows[] = {
        {"empty.jpg", {}, "CGImageSource oluşturulamadı", false},
        {"garbage.jpg", "these are no picture's bytes", "Görsel UTI tipi tespit edilemedi", false},
        {"clip.heic",
         QByteArray("\0\0\0\x14"
                    "ftypqt  \0\0\0\0qt  ",
                    20),
         "Görsel UTI tipi tespit edilemedi", false},
        {"cut.jpg", jpegOf({}).left(40), "CGImageDestination finalize başarısız", true},
        {"cut.png", pngOf({}).left(30), "CGImageDestination finalize başarısız", true},
        {"cut.webp", webpOf(losslessChunk(3, 2, true)).left(20),
         "CGImageDestination finalize başarısız", true},
        {"cut.tif", tiffOf(ByteOrder::bigEndian, false).left(50),
         "CGImageDestination finalize başarısız", true},
        {longName.c_str(), jpegOf({}), "CGImageDestination oluşturulamadı", false},
    };
    int lines = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto file = folder_ / row.name;
        FILE* out = std::fopen(file.c_str(), "wb"); // the long name leaves no room for a sibling
        ASSERT_NE(out, nullptr);
        std::fwrite(row.bytes.constData(), 1, static_cast<size_t>(row.bytes.size()), out);
        std::fclose(out);
        const MetadataResult result = enrich(file, party, sydney);
        EXPECT_EQ(result.which, Case::failed);
        EXPECT_EQ(result.message.toStdString(), row.message);
        EXPECT_EQ(readFile(file), row.bytes);
        EXPECT_EQ(readExistingImageDate(file), std::nullopt);
        lines += row.logged ? 1 : 0;
        EXPECT_EQ(log_.messages().size(), lines);
    }
    for (const QString& line : log_.messages())
        EXPECT_TRUE(line.startsWith(u"[Metadata] ⚠️ ")) << line.toStdString();
    EXPECT_EQ(entriesIn(folder_.path()), std::ssize(rows));
    EXPECT_EQ(enrich(folder_ / "absent.jpg", party).message, u"CGImageSource oluşturulamadı");
    EXPECT_EQ(enrich(folder_.path(), party).message, u"CGImageSource oluşturulamadı");
}

TEST_F(ImageMetadata, WhatOthersOpenIsDated) {
    REQUIRE_PROGRAM("exiftool");
    const exif::Stamp old{"2001:01:01 01:01:01", party, {}};
    const QByteArray dated = exif::newBlock({}, old);
    const QByteArray full = dated + QByteArray(0xfff7 - dated.size(), 'x');
    // One date field, and no room for another.
    QByteArray single = dated;
    single.replace(QByteArray::fromHex("9003"), QByteArray::fromHex("9213"));
    single.replace(QByteArray::fromHex("9004"), QByteArray::fromHex("9214"));
    single += QByteArray(0xfff7 - single.size(), 'x');
    QByteArray wrongType = dated;
    wrongType[8 + 2 + 12 + 3] = 7;
    const struct {
        const char* name;
        QByteArray bytes;
        bool hasRoom = true;
        bool hasAllDates = true;
    } rows[] = {
        {"stray.jpg", jpegOf("stray" + exifSegment(dated) + "stray")},
        {"unreadable.jpg", jpegOf(exifSegment(QByteArray(0xfff7, 'x')))},
        {"two.jpg", jpegOf(exifSegment(dated) + exifSegment(dated))},
        {"junk-first.jpg", jpegOf(exifSegment("junk") + exifSegment(dated))},
        {"full.jpg", jpegOf(exifSegment(full)), false},
        {"single.jpg", jpegOf(exifSegment(single)), false, false},
        {"wrong-type.jpg", jpegOf(exifSegment(wrongType))},
        {"cut-block.jpg", jpegOf(exifSegment(dated.left(20)))},
        {"no-end.png", pngOf({}).chopped(12)},
        {"junk.png", pngOf(pngChunk("eXIf", "junk"))},
        {"junk.webp", webpOf(losslessChunk(3, 2, false) + riffChunk("EXIF", "junk"))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto file = folder_.write(row.name, row.bytes);
        EXPECT_EQ(enrich(file, party, sydney).which, Case::success);
        EXPECT_EQ(readExistingImageDate(file), std::chrono::floor<std::chrono::seconds>(party));
    }
    const auto seen = dumpsOf(folder_.path());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QJsonObject tags = seen[QString::fromLatin1(row.name)];
        for (const auto tag :
             {u"IFD0:ModifyDate", u"ExifIFD:DateTimeOriginal", u"ExifIFD:CreateDate"})
            if (row.hasAllDates || QStringView(tag) == u"IFD0:ModifyDate") {
                EXPECT_EQ(textOf(tags, tag), "2021:03:06 02:30:00");
            }
        EXPECT_EQ(tags.contains(u"GPS:GPSLatitude"), row.hasRoom);
    }
}
