#pragma once

#include <QByteArray>

#include <cstdint>

namespace quorvane::sample {

/// Appends integers and texts to a byte array.
class ByteWriter {
  public:
    ByteWriter& u8(unsigned value) {
        bytes.append(static_cast<char>(value));
        return *this;
    }
    ByteWriter& big(std::uint64_t value, int width) {
        for (int i = width - 1; i >= 0; --i)
            u8((value >> (8 * i)) & 0xff);
        return *this;
    }
    ByteWriter& little(std::uint64_t value, int width) {
        for (int i = 0; i < width; ++i)
            u8((value >> (8 * i)) & 0xff);
        return *this;
    }
    ByteWriter& text(const QByteArray& value) {
        bytes.append(value);
        return *this;
    }
    ByteWriter& zeros(qsizetype count) {
        bytes.append(QByteArray(count, '\0'));
        return *this;
    }

    QByteArray bytes;
};

} // namespace quorvane::sample
