#include "foundation/ByteReader.h"

namespace quorvane {

void ByteReader::seek(std::uint64_t offset) {
    if (offset > bytes_.size())
        throw ParseError(QStringLiteral("Konum verinin dışında: %1").arg(offset));
    offset_ = offset;
}

void ByteReader::skip(std::uint64_t count) {
    take(count);
}

std::uint64_t ByteReader::unsignedOf(unsigned width) {
    const ByteView part = take(width);
    std::uint64_t value = 0;
    for (unsigned i = 0; i < width; ++i)
        value = (value << 8) | part[order_ == ByteOrder::bigEndian ? i : width - 1 - i];
    return value;
}

ByteView ByteReader::take(std::uint64_t count) {
    if (count > remaining())
        throw ParseError(QStringLiteral("Veri beklenenden kısa"));
    const ByteView part = bytes_.subspan(offset_, count);
    offset_ += count;
    return part;
}

} // namespace quorvane
