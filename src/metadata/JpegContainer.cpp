#include "metadata/JpegContainer.h"

#include "metadata/MultiPictureIndex.h"
#include "metadata/TiffDirectory.h"

#include <algorithm>
#include <vector>

namespace quorvane::jpeg {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t startOfImage = 0xd8;
constexpr std::uint8_t endOfImage = 0xd9;
constexpr std::uint8_t startOfScan = 0xda;
constexpr std::uint8_t app0 = 0xe0;
constexpr std::uint8_t app1 = 0xe1;
constexpr std::uint8_t app2 = 0xe2;

constexpr auto exifSignature = "Exif\0\0"sv;
constexpr auto multiPictureSignature = "MPF\0"sv;

constexpr std::uint64_t longestSegment = 0xffff; ///< what its length field can say
constexpr std::uint64_t lengthField = 2;

struct Segment {
    std::uint8_t marker = 0;
    std::uint64_t offset = 0;  ///< of the marker
    std::uint64_t payload = 0; ///< offset of what follows the length field
    std::uint64_t end = 0;

    ByteView bytesOf(ByteView file) const { return file.subspan(payload, end - payload); }
    bool isSigned(ByteView file, std::string_view signature) const {
        const ByteView bytes = bytesOf(file);
        return bytes.size() >= signature.size() &&
               std::ranges::equal(bytes.first(signature.size()), signature, {}, {},
                                  [](char c) { return static_cast<std::uint8_t>(c); });
    }
};

/// The segments from SOI to the first scan.
std::vector<Segment> segmentsOf(ByteView file, const Limits& limits) {
    ByteReader reader(file);
    if (reader.u8() != 0xff || reader.u8() != startOfImage)
        throw ParseError(QStringLiteral("JPEG başlangıcı yok"));
    std::vector<Segment> segments;
    while (true) {
        Segment segment;
        if (reader.u8() != 0xff)
            throw ParseError(QStringLiteral("JPEG bölümleri arasında yabancı veri var"));
        do {
            segment.marker = reader.u8();
        } while (segment.marker == 0xff); // fill bytes
        if (segment.marker == startOfScan)
            return segments;
        if (segment.marker <= 0x01 || (segment.marker >= 0xd0 && segment.marker <= endOfImage))
            throw ParseError(QStringLiteral("JPEG'de ilk taramadan önce beklenmeyen işaret"));
        segment.offset = reader.offset() - 2;
        const std::uint16_t length = reader.u16();
        if (length < lengthField)
            throw ParseError(QStringLiteral("JPEG bölüm uzunluğu geçersiz"));
        segment.payload = reader.offset();
        reader.skip(length - lengthField);
        segment.end = reader.offset();
        segments.push_back(segment);
        if (segments.size() > limits.segments)
            throw ParseError(QStringLiteral("JPEG'de çok fazla bölüm var"));
    }
}

bool isExif(const Segment& segment, ByteView file) {
    return segment.marker == app1 && segment.isSigned(file, exifSignature);
}

ByteView blockOf(const Segment& segment, ByteView file) {
    return segment.bytesOf(file).subspan(exifSignature.size());
}

/// The Exif segment, the first whose block can be read before any other; `end` when there is none.
std::vector<Segment>::const_iterator exifSegment(const std::vector<Segment>& segments,
                                                 ByteView file) {
    const auto readable = std::ranges::find_if(segments, [&](const Segment& segment) {
        return isExif(segment, file) && tiff::readHeader(blockOf(segment, file));
    });
    if (readable != segments.end())
        return readable;
    return std::ranges::find_if(segments,
                                [&](const Segment& segment) { return isExif(segment, file); });
}

QByteArray exifSegmentBytes(ByteView exif) {
    const std::uint64_t length = lengthField + exifSignature.size() + exif.size();
    if (length > longestSegment)
        throw ContainerError(QStringLiteral("Exif bloğu bir JPEG bölümüne sığmıyor: %1 bayt")
                                 .arg(static_cast<qulonglong>(exif.size())));
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(length) + 2);
    tiff::appendNumber(bytes, 0xff00U | app1, 2, ByteOrder::bigEndian);
    tiff::appendNumber(bytes, length, 2, ByteOrder::bigEndian);
    bytes.append(exifSignature.data(), exifSignature.size());
    bytes.append(reinterpret_cast<const char*>(exif.data()), static_cast<qsizetype>(exif.size()));
    return bytes;
}

/// Exif data of more than one segment goes on, without a TIFF header, in the segment behind.
void refuseSeveralParts(const std::vector<Segment>& segments, const Segment& exif, ByteView file) {
    for (const Segment& segment : segments)
        if (segment.offset == exif.end && isExif(segment, file) &&
            !tiff::readHeader(blockOf(segment, file)))
            throw ContainerError(QStringLiteral("Exif verisi birden çok JPEG bölümüne yayılmış"));
}

} // namespace

std::optional<QByteArray> readExif(ByteView file, const Limits& limits) {
    const auto segments = segmentsOf(file, limits);
    const auto exif = exifSegment(segments, file);
    if (exif == segments.end())
        return std::nullopt;
    const ByteView block = blockOf(*exif, file);
    return QByteArray::fromRawData(reinterpret_cast<const char*>(block.data()),
                                   static_cast<qsizetype>(block.size()));
}

Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits) {
    const auto segments = segmentsOf(file, limits);
    const auto old = exifSegment(segments, file);
    std::uint64_t begin = 2; // behind SOI
    std::uint64_t end = 2;
    if (old != segments.end()) {
        refuseSeveralParts(segments, *old, file);
        begin = old->offset;
        end = old->end;
    } else {
        for (const Segment& segment : segments) {
            if (segment.marker != app0)
                break;
            begin = end = segment.end;
        }
    }
    const QByteArray bytes = exifSegmentBytes(exif);
    const std::int64_t growth = bytes.size() - static_cast<std::int64_t>(end - begin);

    Rewrite rewrite;
    const auto keepRange = [&](std::uint64_t from, std::uint64_t to) {
        std::uint64_t at = from;
        for (const Segment& segment : segments) {
            const bool here = segment.offset >= from && segment.end <= to;
            if (growth == 0 || !here || segment.marker != app2 ||
                !segment.isSigned(file, multiPictureSignature))
                continue;
            const std::uint64_t index = segment.payload + multiPictureSignature.size();
            rewrite.keep(at, index - at);
            rewrite.insert(movedMultiPictureIndex(file.subspan(index, segment.end - index), growth,
                                                  segment.end <= begin));
            at = segment.end;
        }
        rewrite.keep(at, to - at);
    };
    keepRange(0, begin);
    rewrite.insert(bytes);
    keepRange(end, file.size());
    return rewrite;
}

} // namespace quorvane::jpeg
