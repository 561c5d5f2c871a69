#include "metadata/jpeg/JpegSegments.h"

#include "metadata/exif/TiffDirectory.h"
#include "metadata/jpeg/MultiPictureIndex.h"

#include <algorithm>

namespace quorvane::jpeg {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t startOfImage = 0xd8;
constexpr std::uint8_t endOfImage = 0xd9;
constexpr std::uint8_t startOfScan = 0xda;
constexpr std::uint8_t app2 = 0xe2;

constexpr auto multiPictureSignature = "MPF\0"sv;

constexpr std::uint64_t longestSegment = 0xffff; ///< what its length field can say
constexpr std::uint64_t lengthField = 2;

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

bool Segment::isSigned(ByteView file, std::string_view signature) const {
    const ByteView bytes = bytesOf(file);
    return bytes.size() >= signature.size() &&
           std::ranges::equal(bytes.first(signature.size()), signature, {}, {},
                              [](char c) { return static_cast<std::uint8_t>(c); });
}

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

QByteArray app1Segment(std::string_view signature, ByteView content) {
    const std::uint64_t length = lengthField + signature.size() + content.size();
    if (length > longestSegment)
        throw ContainerError(QStringLiteral("Veri bir JPEG bölümüne sığmıyor: %1 bayt")
                                 .arg(static_cast<qulonglong>(content.size())));
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(length) + 2);
    tiff::appendNumber(bytes, 0xff00U | app1, 2, ByteOrder::bigEndian);
    tiff::appendNumber(bytes, length, 2, ByteOrder::bigEndian);
    bytes.append(signature.data(), static_cast<qsizetype>(signature.size()));
    bytes.append(reinterpret_cast<const char*>(content.data()),
                 static_cast<qsizetype>(content.size()));
    return bytes;
}

Rewrite edited(ByteView file, const std::vector<Segment>& segments, std::vector<Edit> edits) {
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
