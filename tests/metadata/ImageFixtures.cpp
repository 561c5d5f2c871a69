#include "ImageFixtures.h"

#include "Bytes.h"
#include "metadata/exif/TiffDirectory.h"

#include <zlib.h>

namespace quorvane::test {

namespace {

QByteArray little(quint32 value) {
    const quint32 swapped = qToLittleEndian(value);
    return {reinterpret_cast<const char*>(&swapped), sizeof swapped};
}

quint32 checkSum(const QByteArray& bytes) {
    return static_cast<quint32>(crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()),
                                      static_cast<uInt>(bytes.size())));
}

const QByteArray pngSignature("\x89PNG\r\n\x1a\n", 8);

} // namespace

QByteArray jpegSegment(int marker, const QByteArray& payload) {
    return QByteArray(1, '\xff') + static_cast<char>(marker) +
           big(static_cast<quint16>(payload.size() + 2)) + payload;
}

QByteArray exifSegment(const QByteArray& block) {
    return jpegSegment(0xe1, QByteArray("Exif\0\0", 6) + block);
}

QByteArray jpegOf(const QByteArray& segments) {
    const QByteArray oneCode = QByteArray(1, 1) + QByteArray(15, 0) + QByteArray(1, 0);
    return QByteArray("\xff\xd8") + segments +
           jpegSegment(0xdb, QByteArray(1, 0) + QByteArray(64, 1)) +
           jpegSegment(0xc0, QByteArray::fromHex("080008000801011100")) +
           jpegSegment(0xc4, QByteArray(1, 0x00) + oneCode) +
           jpegSegment(0xc4, QByteArray(1, 0x10) + oneCode) +
           jpegSegment(0xda, QByteArray::fromHex("010100003f00")) + QByteArray("\x3f\xff\xd9");
}

QByteArray scanOf(const QByteArray& jpeg) {
    qsizetype at = 2;
    while (static_cast<uchar>(jpeg[at + 1]) != 0xda)
        at += 2 + qFromBigEndian<quint16>(jpeg.constData() + at + 2);
    return jpeg.mid(at);
}

QByteArray pngChunk(const QByteArray& type, const QByteArray& data) {
    return big(static_cast<quint32>(data.size())) + type + data + big(checkSum(type + data));
}

QByteArray pngOf(const QByteArray& before, const QByteArray& behind) {
    return pngSignature + pngChunk("IHDR", QByteArray::fromHex("00000001000000010800000000")) +
           before + pngChunk("IDAT", qCompress(QByteArray(2, 0)).mid(4)) + behind +
           pngChunk("IEND", {});
}

QByteArray riffChunk(const QByteArray& type, const QByteArray& data) {
    return type + little(static_cast<quint32>(data.size())) + data +
           QByteArray(data.size() % 2, '\0');
}

QByteArray webpOf(const QByteArray& chunks) {
    return "RIFF" + little(static_cast<quint32>(chunks.size() + 4)) + "WEBP" + chunks;
}

QByteArray losslessChunk(quint32 width, quint32 height, bool alpha) {
    return riffChunk("VP8L", QByteArray(1, 0x2f) +
                                 little((width - 1) | (height - 1) << 14 | quint32{alpha} << 28));
}

QByteArray tiffOf(ByteOrder order, bool bigTiff) {
    const tiff::Format format{order, bigTiff};
    const auto number = [&](std::uint16_t tag, std::uint64_t value) {
        QByteArray bytes;
        tiff::appendNumber(bytes, value, 4, order);
        return tiff::Field{tag, tiff::longType, 1, bytes};
    };
    const auto fields = [&](std::uint64_t strip) {
        return std::vector{number(0x0100, 1), number(0x0101, 1), number(0x0102, 8),
                           number(0x0103, 1), number(0x0106, 1), number(0x0111, strip),
                           number(0x0116, 1), number(0x0117, 1)};
    };
    const QByteArray header = tiff::headerBytes(format);
    const auto length = header.size() + tiff::serialize(fields(0), header.size(), format).size();
    return header +
           tiff::serialize(fields(static_cast<std::uint64_t>(length)),
                           static_cast<std::uint64_t>(header.size()), format) +
           '\x7f';
}

} // namespace quorvane::test
