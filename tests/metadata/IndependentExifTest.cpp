#include "ImageFixtures.h"
#include "foundation/File.h"
#include "metadata/HeifContainer.h"
#include "metadata/ImageMetadata.h"
#include "metadata/JpegContainer.h"
#include "metadata/LocalCalendar.h"
#include "metadata/PngContainer.h"
#include "metadata/WebpContainer.h"
#include "sample/SampleMedia.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include <set>

using namespace quorvane;
using namespace quorvane::test;

namespace {

constexpr const char* dateKeys[] = {"Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeDigitized",
                                    "Exif.Image.DateTime"};

/// A file's Exif block as a library that is not ours reads it, maker notes and thumbnail included.
Exiv2::ExifData decoded(const QByteArray& file) {
    const ByteView bytes = viewOf(file);
    std::optional<QByteArray> block = file; // a TIFF is its own block
    if (file.startsWith("\xff\xd8"))
        block = jpeg::readExif(bytes);
    else if (file.startsWith("\x89PNG"))
        block = png::readExif(bytes);
    else if (file.startsWith("RIFF"))
        block = webp::readExif(bytes);
    else if (file.mid(4, 4) == "ftyp")
        block = heif::readExif(bytes);
    Exiv2::ExifData data;
    if (block)
        Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte*>(block->constData()),
                                  static_cast<uint32_t>(block->size()));
    return data;
}

/// Exiv2 0.28 has made the buffer's members private.
template <typename Buffer>
std::string bytesOf(const Buffer& buffer) {
    if constexpr (requires { buffer.c_data(); })
        return {reinterpret_cast<const char*>(buffer.c_data()), buffer.size()};
    else
        return {reinterpret_cast<const char*>(buffer.pData_), static_cast<size_t>(buffer.size_)};
}

/// Key, type and value of everything but the dates and the places of directories.
std::multiset<std::string> untouched(const Exiv2::ExifData& data, bool hadExif) {
    std::set<std::string> written{"Exif.Image.ExifTag"};
    for (const char* tag : {"OffsetTime", "SubSecTime"})
        for (const char* date : {"", "Original", "Digitized"})
            written.insert(std::string("Exif.Photo.") + tag + date);
    written.insert(std::begin(dateKeys), std::end(dateKeys));
    if (!hadExif)
        written.insert("Exif.Photo.ExifVersion");
    std::multiset<std::string> kept;
    for (const Exiv2::Exifdatum& datum : data)
        if (!written.contains(datum.key()))
            kept.insert(datum.key() + ' ' + std::to_string(datum.typeId()) + ' ' +
                        datum.toString());
    kept.insert(bytesOf(Exiv2::ExifThumbC(data).copy()));
    return kept;
}

/// What no sample has all of: a thumbnail, a maker's and unknown tags, in either byte order.
QByteArray foreignBlock(Exiv2::ByteOrder order) {
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "Fujifilm";
    data["Exif.Image.0xabcd"] = "unknown";
    data["Exif.Photo.UserComment"] = "charset=Unicode Çiçek";
    data["Exif.Photo.MakerNote"] = "70 85 74 73 70 73 76 77 12 0 0 0 0 0 0 0 0 0";
    data["Exif.GPSInfo.GPSMapDatum"] = "WGS-84";
    const QByteArray picture = jpegOf({});
    Exiv2::ExifThumb(data).setJpegThumbnail(
        reinterpret_cast<const Exiv2::byte*>(picture.constData()), picture.size());
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, order, data);
    return {reinterpret_cast<const char*>(blob.data()), static_cast<qsizetype>(blob.size())};
}

std::map<std::string, QByteArray> pictures() {
    std::map<std::string, QByteArray> files{{"plain.jpg", sample::jpeg(1, {})},
                                            {"plain.png", sample::png(1, {})},
                                            {"plain.webp", sample::webp(1)},
                                            {"plain.tif", sample::tiff(1, {})},
                                            {"dated.jpg", sample::jpeg(1, "2001:01:01 01:01:01")}};
    for (const Exiv2::ByteOrder order : {Exiv2::littleEndian, Exiv2::bigEndian}) {
        const std::string suffix = std::to_string(order);
        const QByteArray block = foreignBlock(order);
        files[suffix + ".jpg"] = jpegOf(exifSegment(block));
        files[suffix + ".png"] = pngOf(pngChunk("eXIf", block));
        files[suffix + ".webp"] = webpOf(losslessChunk(3, 2, true) + riffChunk("EXIF", block));
    }
    if (!realDataFolder().empty())
        for (const auto& entry : std::filesystem::directory_iterator(realDataFolder() / "media"))
            if (const std::string name = entry.path().filename();
                name != "corrupt_boxes.heif" && name != "SOURCES.tsv" && !name.ends_with(".mov") &&
                !name.ends_with(".mp4"))
                files[name] = readFile(entry.path());
    return files;
}

} // namespace

TEST(IndependentExif, AnotherReaderFindsTheDateAndEverythingElseAsItWas) {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    const TemporaryFolder folder;
    RecordingLog log;
    const Date date{std::chrono::milliseconds(1614987000000)};
    for (const auto& [name, bytes] : pictures()) {
        SCOPED_TRACE(name);
        const auto file = folder.write(name, bytes);
        ASSERT_EQ(enrichImageMetadata(file, date, {}, log).which, MetadataResult::Case::success);
        const Exiv2::ExifData before = decoded(bytes);
        const Exiv2::ExifData after = decoded(readFile(file));
        for (const char* key : dateKeys) {
            const auto found = after.findKey(Exiv2::ExifKey(key));
            ASSERT_NE(found, after.end()) << key;
            EXPECT_EQ(found->toString(), exifDateText(date).toStdString());
        }
        const bool hadExif = before.findKey(Exiv2::ExifKey("Exif.Image.ExifTag")) != before.end();
        EXPECT_EQ(untouched(after, hadExif), untouched(before, hadExif));
    }
}
