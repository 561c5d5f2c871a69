#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <stop_token>
#include <string_view>
#include <vector>

/// The segments of a JPEG file before its first scan (ITU-T T.81, Annex B), and changes to them.
/// Offsets and lengths are in bytes. Any thread.
namespace quorvane::jpeg {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t segments = 65'536; ///< before the first scan
    std::stop_token stop = {};       ///< when requested, `Cancelled` is thrown
};

inline constexpr std::uint8_t app0 = 0xe0;
inline constexpr std::uint8_t app1 = 0xe1;

struct Segment {
    std::uint8_t marker = 0;
    std::uint64_t fill = 0;    ///< offset of the fill bytes before the marker, or of the marker
    std::uint64_t offset = 0;  ///< of the marker
    std::uint64_t payload = 0; ///< offset of what follows the length field
    std::uint64_t end = 0;

    ByteView bytesOf(ByteView file) const { return file.subspan(payload, end - payload); }
    bool isSigned(ByteView file, std::string_view signature) const;
};

/// From SOI to the first scan. Throws `ParseError`.
std::vector<Segment> segmentsOf(ByteView file, const Limits& limits);

/// A whole APP1 segment. Throws `ContainerError` when it would be longer than its length field can
/// say.
QByteArray app1Segment(std::string_view signature, ByteView content);

/// Bytes in place of a range of the file.
struct Edit {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    QByteArray bytes;

    std::int64_t growth() const { return bytes.size() - static_cast<std::int64_t>(end - begin); }
};

/// The file with the edits, in whose order nothing is said; the index of a multi-picture file (CIPA
/// DC-007) is moved along. Throws `ParseError` when that is broken.
Rewrite edited(ByteView file, const std::vector<Segment>& segments, std::vector<Edit> edits);

} // namespace quorvane::jpeg
