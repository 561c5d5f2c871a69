#pragma once

#include "metadata/MovieBoxes.h"

#include <QByteArray>
#include <QtEndian>

/// Builds ISO-BMFF movies out of bytes, correct ones and broken ones.
namespace quorvane::test {

template <typename Number>
QByteArray big(Number number) {
    QByteArray bytes(sizeof(Number), Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

inline QByteArray box(const QByteArray& type, const QByteArray& payload) {
    return big(static_cast<quint32>(8 + payload.size())) + type + payload;
}

/// A box whose size is written in 64 bits.
inline QByteArray largeBox(const QByteArray& type, const QByteArray& payload) {
    return big(quint32(1)) + type + big(static_cast<quint64>(16 + payload.size())) + payload;
}

/// A box with two time fields (`mvhd`, `tkhd`, `mdhd`) and something behind them.
inline QByteArray timeBox(const QByteArray& type, int version, quint64 created, quint64 modified) {
    const QByteArray head = QByteArray(1, static_cast<char>(version)) + QByteArray(3, '\0');
    const QByteArray times = version == 1 ? big(created) + big(modified)
                                          : big(quint32(created)) + big(quint32(modified));
    return box(type, head + times + QByteArray(20, '\x55'));
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

/// A QuickTime metadata value or an iTunes item: text under a number or a type.
inline QByteArray item(const QByteArray& type, const QByteArray& text) {
    return box(type, box("data", big(quint32(1)) + big(quint32(0)) + text));
}

/// `moov/meta` with one QuickTime metadata key.
inline QByteArray quickTimeMeta(const QByteArray& key, const QByteArray& text, bool isoHeader) {
    const QByteArray keys =
        box("keys", big(quint32(0)) + big(quint32(2)) + box("mdta", "other") + box("mdta", key));
    return box("meta", (isoHeader ? big(quint32(0)) : QByteArray()) +
                           box("hdlr", QByteArray(24, '\0')) + keys +
                           box("ilst", item(big(quint32(1)), "2001-01-01T00:00:00Z") +
                                           item(big(quint32(2)), text)));
}

/// A QuickTime user data text.
inline QByteArray userText(const QByteArray& type, const QByteArray& text) {
    return box(type, big(static_cast<quint16>(text.size())) + big(quint16(0x15c7)) + text);
}

} // namespace quorvane::test
