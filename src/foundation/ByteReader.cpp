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

void ByteReader::failShort() {
    throw ParseError(QStringLiteral("Veri beklenenden kısa"));
}

} // namespace quorvane
