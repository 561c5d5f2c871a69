#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <stop_token>
#include <vector>

/// The box structure of ISO/IEC 14496-12: lengths and four-character types, nothing of what is in
/// a box. All numbers are big-endian, all offsets are bytes from the beginning of the file.
namespace quorvane::heif {

/// A box type or an item type, told as its four characters.
constexpr std::uint32_t fourCC(const char (&text)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = (value << 8) | static_cast<std::uint8_t>(text[i]);
    return value;
}

/// A stretch of the file.
struct Range {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    std::uint64_t end() const { return offset + length; }
    bool contains(const Range& other) const {
        return other.offset >= offset && other.offset - offset <= length &&
               other.length <= length - (other.offset - offset);
    }
    bool operator==(const Range&) const = default;
};

struct Box {
    std::uint32_t type = 0;
    Range whole; ///< header and body
    Range body;
};

/// Lets `limit` things pass; one more is a `ParseError`, and any is `Cancelled` after a stop.
class Allowance {
  public:
    explicit Allowance(std::uint32_t limit, std::stop_token stop = {})
        : left_(limit), stop_(std::move(stop)) {}
    void spend(std::uint64_t count = 1);

  private:
    std::uint64_t left_;
    std::stop_token stop_;
};

/// The bytes of a range. Throws `ParseError` when it leaves the file.
ByteView bytesOf(ByteView file, const Range& range);

/// The boxes that fill `range` from its beginning to its end. Only the last box of a whole file may
/// leave its length open. Throws `ParseError` for a box that leaves the range.
std::vector<Box> boxesIn(ByteView file, const Range& range, Allowance& boxes);

/// The only box of a type; none when there is none. Throws `ParseError` when there are more.
std::optional<Box> onlyBox(const std::vector<Box>& boxes, std::uint32_t type);

/// Same, but its absence is a `ParseError` too.
Box requiredBox(const std::vector<Box>& boxes, std::uint32_t type);

/// A reader of a full box's body, past its version and flags.
struct FullBox {
    FullBox(ByteView file, const Box& box);

    ByteReader reader;
    std::uint8_t version;
    std::uint32_t flags;
};

/// Builds a body.
class ByteWriter {
  public:
    /// The lowest `width` bytes of a number, 0 to 8.
    void number(std::uint64_t value, unsigned width);
    void fullBoxHeader(std::uint8_t version, std::uint32_t flags);
    void bytes(ByteView bytes);
    QByteArray take() { return std::move(bytes_); }

  private:
    QByteArray bytes_;
};

/// The header of a box; 16 bytes long when the length does not fit in 8.
QByteArray boxHeader(std::uint32_t type, std::uint64_t bodyLength);

QByteArray boxOf(std::uint32_t type, const QByteArray& body);

} // namespace quorvane::heif
