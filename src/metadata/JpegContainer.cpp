#include "metadata/JpegContainer.h"

#include "metadata/MakerNotePreview.h"
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
    std::uint64_t fill = 0;    ///< offset of the fill bytes before the marker, or of the marker
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

/// Markers that stand alone, without a length: TEM and the restarts.
bool standsAlone(std::uint8_t marker) {
    return marker == 0x01 || (marker >= 0xd0 && marker < startOfImage);
}

/// The next marker. What is none is passed over, fill bytes too.
Segment nextMarker(ByteReader& reader, ByteView file) {
    Segment segment;
    while (segment.marker == 0) {
        const auto rest = file.subspan(reader.offset());
        reader.skip(static_cast<std::uint64_t>(std::ranges::find(rest, 0xff) - rest.begin()));
        segment.fill = reader.offset();
        do {
            segment.marker = reader.u8();
        } while (segment.marker == 0xff);
    }
    return segment;
}

/// The segments from SOI to the first scan.
std::vector<Segment> segmentsOf(ByteView file, const Limits& limits) {
    ByteReader reader(file);
    if (reader.u8() != 0xff || reader.u8() != startOfImage)
        throw ParseError(QStringLiteral("JPEG başlangıcı yok"));
    std::vector<Segment> segments;
    std::uint32_t markers = 0;
    while (true) {
        if (limits.stop.stop_requested())
            throw Cancelled();
        Segment segment = nextMarker(reader, file);
        if (++markers > limits.segments)
            throw ParseError(QStringLiteral("JPEG'de çok fazla bölüm var"));
        if (segment.marker == startOfScan)
            return segments;
        if (standsAlone(segment.marker))
            continue;
        if (segment.marker == startOfImage || segment.marker == endOfImage)
            throw ParseError(QStringLiteral("JPEG'de ilk taramadan önce beklenmeyen işaret"));
        segment.offset = reader.offset() - 2;
        const std::uint16_t length = reader.u16();
        if (length < lengthField)
            throw ParseError(QStringLiteral("JPEG bölüm uzunluğu geçersiz"));
        segment.payload = reader.offset();
        reader.skip(length - lengthField);
        segment.end = reader.offset();
        segments.push_back(segment);
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

/// Exif data that does not fit goes on, without a TIFF header, in the segment behind a full one.
bool continues(const Segment& exif, const Segment& segment, ByteView file) {
    constexpr std::uint64_t nearlyFull = longestSegment - 256;
    return exif.end - exif.offset > nearlyFull && segment.offset == exif.end &&
           isExif(segment, file) && !tiff::readHeader(blockOf(segment, file));
}

/// Bytes in place of a range of the file.
struct Edit {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    QByteArray bytes;

    std::int64_t growth() const { return bytes.size() - static_cast<std::int64_t>(end - begin); }
};

/// Where a new Exif segment goes: behind SOI and the JFIF segments.
std::uint64_t placeForExif(const std::vector<Segment>& segments) {
    std::uint64_t place = 2;
    for (const Segment& segment : segments) {
        if (segment.marker != app0)
            break;
        place = segment.end;
    }
    return place;
}

/// The new block in place of the old one, and every other Exif segment gone.
std::vector<Edit> exifEdits(const std::vector<Segment>& segments, ByteView file, ByteView exif) {
    const auto old = exifSegment(segments, file);
    if (old == segments.end()) {
        const std::uint64_t place = placeForExif(segments);
        return {{place, place, exifSegmentBytes(exif)}};
    }
    Edit edit{old->offset, old->end, exifSegmentBytes(exif)};
    if (edit.growth() != 0)
        edit.bytes = exifSegmentBytes(viewOf(
            withMovedPreviews(exif, file.subspan(old->payload + exifSignature.size()),
                              old->end - old->payload - exifSignature.size(), edit.growth())));
    std::vector<Edit> edits;
    for (auto segment = segments.begin(); segment != segments.end(); ++segment) {
        if (segment == old) {
            edits.push_back(edit);
        } else if (continues(*old, *segment, file)) {
            if (edit.growth() != 0)
                throw ContainerError(
                    QStringLiteral("Exif verisi birden çok JPEG bölümüne yayılmış"));
        } else if (isExif(*segment, file)) {
            edits.push_back({segment->fill, segment->end, {}});
        }
    }
    return edits;
}

/// The index of a multi-picture file after the edits.
void moveMultiPictureIndex(std::vector<Edit>& edits, const std::vector<Segment>& segments,
                           ByteView file) {
    const std::vector<Edit> before = edits;
    for (const Segment& segment : segments) {
        if (segment.marker != app2 || !segment.isSigned(file, multiPictureSignature))
            continue;
        std::int64_t growth = 0;
        std::int64_t growthBehind = 0;
        for (const Edit& edit : before) {
            growth += edit.growth();
            growthBehind += edit.begin >= segment.end ? edit.growth() : 0;
        }
        const std::uint64_t index = segment.payload + multiPictureSignature.size();
        if (growth != 0 || growthBehind != 0)
            edits.push_back({index, segment.end,
                             movedMultiPictureIndex(file.subspan(index, segment.end - index),
                                                    growth, growthBehind)});
    }
    std::ranges::sort(edits, {}, &Edit::begin);
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
    std::vector<Edit> edits = exifEdits(segments, file, exif);
    moveMultiPictureIndex(edits, segments, file);
    Rewrite rewrite;
    std::uint64_t at = 0;
    for (const Edit& edit : edits) {
        rewrite.keep(at, edit.begin - at);
        rewrite.insert(edit.bytes);
        at = edit.end;
    }
    rewrite.keep(at, file.size() - at);
    return rewrite;
}

} // namespace quorvane::jpeg
