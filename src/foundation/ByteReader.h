#pragma once

#include "foundation/Error.h"

#include <QByteArrayView>

#include <cstdint>
#include <span>

namespace quorvane {

using ByteView = std::span<const std::uint8_t>;

/// The bytes of an array; valid as long as the array is left alone.
inline ByteView viewOf(QByteArrayView bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<size_t>(bytes.size())};
}

/// Foreign bytes that end too soon or contradict themselves.
class ParseError : public Error {
  public:
    using Error::Error;
};

enum class ByteOrder { bigEndian, littleEndian };

/// The one way foreign bytes are read: a cursor over a bounded range that throws `ParseError`
/// rather than read past its end. Offsets and counts are in bytes. Does not own the bytes.
class ByteReader {
  public:
    explicit ByteReader(ByteView bytes, ByteOrder order = ByteOrder::bigEndian) noexcept
        : bytes_(bytes), order_(order) {}

    std::uint64_t offset() const noexcept { return offset_; }
    std::uint64_t size() const noexcept { return bytes_.size(); }
    std::uint64_t remaining() const noexcept { return bytes_.size() - offset_; }

    void seek(std::uint64_t offset);
    void skip(std::uint64_t count);

    std::uint8_t u8() { return static_cast<std::uint8_t>(unsignedOf(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(unsignedOf(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(unsignedOf(4)); }
    std::uint64_t u64() { return unsignedOf(8); }

    /// An unsigned integer of `width` bytes, 0 to 8; width 0 reads nothing and yields 0.
    std::uint64_t unsignedOf(unsigned width) {
        const ByteView part = take(width);
        std::uint64_t value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = (value << 8) | part[order_ == ByteOrder::bigEndian ? i : width - 1 - i];
        return value;
    }

    /// The next `count` bytes, not copied.
    ByteView take(std::uint64_t count) {
        if (count > remaining())
            failShort();
        const ByteView part = bytes_.subspan(offset_, count);
        offset_ += count;
        return part;
    }

  private:
    [[noreturn]] static void failShort();

    ByteView bytes_;
    std::uint64_t offset_ = 0;
    ByteOrder order_;
};

} // namespace quorvane
