#pragma once

#include "Bytes.h"

/// Builds ISO-BMFF movies out of bytes, correct ones and broken ones.
namespace quorvane::test {

constexpr quint64 movieEpoch = 2082844800; ///< 1970, in seconds since 1904

/// A box with two time fields (`mvhd`, `tkhd`, `mdhd`) and something behind them.
inline QByteArray timeBox(const QByteArray& type, int version, quint64 created, quint64 modified) {
    const int width = version == 1 ? 8 : 4;
    return box(type, bigEndian(version, 1) + bigEndian(0, 3) + bigEndian(created, width) +
                         bigEndian(modified, width) + QByteArray(20, '\x55'));
}

inline QByteArray ftyp() {
    return box("ftyp", "mp42" + QByteArray(4, '\0') + "isom");
}

/// A movie with one track.
inline QByteArray movie(int version, quint64 created, const QByteArray& more = {}) {
    const QByteArray mdia =
        box("mdia", timeBox("mdhd", version, created, created) + box("hdlr", QByteArray(24, '\0')));
    const QByteArray trak = box("trak", timeBox("tkhd", version, created, created) + mdia);
    return ftyp() + box("mdat", QByteArray(40, '\x33')) +
           box("moov", timeBox("mvhd", version, created, created) + trak + more);
}

} // namespace quorvane::test
