#include "metadata/jpeg/JpegContainer.h"

#include "metadata/exif/TiffDirectory.h"
#include "metadata/jpeg/MakerNotePreview.h"

#include <algorithm>

namespace quorvane::jpeg {

namespace {

using namespace std::string_view_literals;

constexpr auto exifSignature = "Exif\0\0"sv;
constexpr auto xmpSignature = "http://ns.adobe.com/xap/1.0/\0"sv;

constexpr std::uint64_t nearlyFull = 0xffff - 256; ///< bytes of a segment that is continued

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

/// Exif data that does not fit goes on, without a TIFF header, in the segment behind a full one.
bool continues(const Segment& exif, const Segment& segment, ByteView file) {
    return exif.end - exif.offset > nearlyFull && segment.offset == exif.end &&
           isExif(segment, file) && !tiff::readHeader(blockOf(segment, file));
}

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
        return {{place, place, app1Segment(exifSignature, exif)}};
    }
    Edit edit{old->offset, old->end, app1Segment(exifSignature, exif)};
    if (edit.growth() != 0)
        edit.bytes = app1Segment(
            exifSignature,
            viewOf(withMovedPreviews(exif, file.subspan(old->payload + exifSignature.size()),
                                     blockOf(*old, file).size(), edit.growth())));
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

std::vector<Segment>::const_iterator xmpSegment(const std::vector<Segment>& segments,
                                                ByteView file) {
    return std::ranges::find_if(segments, [&](const Segment& segment) {
        return segment.marker == app1 && segment.isSigned(file, xmpSignature);
    });
}

/// The packet in place of the old one, or behind the Exif data.
Edit xmpEdit(const std::vector<Segment>& segments, ByteView file, ByteView xmp) {
    const QByteArray bytes = app1Segment(xmpSignature, xmp);
    const auto old = xmpSegment(segments, file);
    if (old != segments.end())
        return {old->offset, old->end, bytes};
    std::uint64_t place = placeForExif(segments);
    for (const Segment& segment : segments)
        if (isExif(segment, file))
            place = segment.end;
    return {place, place, bytes};
}

/// The Exif block of a file that grows behind it.
std::optional<Edit> movedPreviews(const std::vector<Segment>& segments, ByteView file,
                                  const Edit& behind) {
    const auto exif = exifSegment(segments, file);
    if (exif == segments.end() || exif->end > behind.begin)
        return std::nullopt;
    const ByteView block = blockOf(*exif, file);
    const std::uint64_t begin = exif->end - block.size();
    return Edit{begin, exif->end,
                withMovedPreviews(block, file.subspan(begin), block.size(), behind.growth())};
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
    return edited(file, segments, exifEdits(segments, file, exif));
}

std::optional<QByteArray> readXmp(ByteView file, const Limits& limits) {
    const auto segments = segmentsOf(file, limits);
    const auto xmp = xmpSegment(segments, file);
    if (xmp == segments.end())
        return std::nullopt;
    const ByteView packet = xmp->bytesOf(file).subspan(xmpSignature.size());
    return QByteArray::fromRawData(reinterpret_cast<const char*>(packet.data()),
                                   static_cast<qsizetype>(packet.size()));
}

Rewrite replaceXmp(ByteView file, ByteView xmp, const Limits& limits) {
    const auto segments = segmentsOf(file, limits);
    std::vector<Edit> edits{xmpEdit(segments, file, xmp)};
    if (auto exif = movedPreviews(segments, file, edits.front()))
        edits.push_back(std::move(*exif));
    return edited(file, segments, std::move(edits));
}

} // namespace quorvane::jpeg
