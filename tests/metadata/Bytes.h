#pragma once

#include <QByteArray>
#include <QtEndian>

/// Big-endian numbers and the boxes of ISO-BMFF files (movies, HEIF).
namespace quorvane::test {

inline QByteArray bigEndian(std::uint64_t value, int width) {
    const quint64 swapped = qToBigEndian<quint64>(value);
    return QByteArray(reinterpret_cast<const char*>(&swapped), sizeof swapped).last(width);
}

template <typename Number>
QByteArray big(Number number) {
    return bigEndian(number, sizeof number);
}

inline QByteArray box(const QByteArray& type, const QByteArray& payload) {
    return bigEndian(8 + payload.size(), 4) + type + payload;
}

/// A box whose size is written in 64 bits.
inline QByteArray largeBox(const QByteArray& type, const QByteArray& payload) {
    return bigEndian(1, 4) + type + bigEndian(16 + payload.size(), 8) + payload;
}

/// How many bytes differ, as far as both go.
inline int differences(const QByteArray& a, const QByteArray& b) {
    int count = 0;
    for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i)
        count += a[i] != b[i];
    return count;
}

} // namespace quorvane::test
