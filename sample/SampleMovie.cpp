#include "sample/ByteWriter.h"
#include "sample/SampleMedia.h"

namespace quorvane::sample {

namespace {

constexpr unsigned width = 64;
constexpr unsigned height = 48;
constexpr unsigned frames = 5;
constexpr unsigned frameBytes = width * height * 3;
constexpr unsigned timeScale = 600;

/// A box of ISO/IEC 14496-12: size, type, payload.
QByteArray box(const QByteArray& type, const QByteArray& payload) {
    ByteWriter out;
    out.big(static_cast<std::uint64_t>(payload.size()) + 8, 4).text(type).text(payload);
    return out.bytes;
}

void unityMatrix(ByteWriter& out) {
    out.big(0x00010000, 4).zeros(12).big(0x00010000, 4).zeros(12).big(0x40000000, 4);
}

QByteArray movieHeader(std::uint32_t time) {
    ByteWriter out;
    out.zeros(4).big(time, 4).big(time, 4).big(timeScale, 4).big(timeScale, 4);
    out.big(0x00010000, 4).big(0x0100, 2).zeros(10);
    unityMatrix(out);
    out.zeros(24).big(2, 4);
    return box("mvhd", out.bytes);
}

QByteArray trackHeader(std::uint32_t time) {
    ByteWriter out;
    out.big(7, 4).big(time, 4).big(time, 4).big(1, 4).zeros(4).big(timeScale, 4).zeros(16);
    unityMatrix(out);
    out.big(width << 16, 4).big(height << 16, 4);
    return box("tkhd", out.bytes);
}

QByteArray sampleTable(std::uint32_t mediaOffset) {
    ByteWriter entry; // QuickTime's uncompressed RGB, 24 bits
    entry.zeros(6).big(1, 2).zeros(16).big(width, 2).big(height, 2);
    entry.big(72 << 16, 4).big(72 << 16, 4).zeros(4).big(1, 2).zeros(32).big(24, 2).big(0xffff, 2);
    const QByteArray description = ByteWriter().zeros(4).big(1, 4).bytes + box("raw ", entry.bytes);
    const QByteArray times =
        ByteWriter().zeros(4).big(1, 4).big(frames, 4).big(timeScale / frames, 4).bytes;
    const QByteArray chunks =
        ByteWriter().zeros(4).big(1, 4).big(1, 4).big(frames, 4).big(1, 4).bytes;
    const QByteArray sizes = ByteWriter().zeros(4).big(frameBytes, 4).big(frames, 4).bytes;
    const QByteArray offsets = ByteWriter().zeros(4).big(1, 4).big(mediaOffset, 4).bytes;
    return box("stbl", box("stsd", description) + box("stts", times) + box("stsc", chunks) +
                           box("stsz", sizes) + box("stco", offsets));
}

QByteArray track(std::uint32_t time, std::uint32_t mediaOffset) {
    const QByteArray mediaHeader = ByteWriter()
                                       .zeros(4)
                                       .big(time, 4)
                                       .big(time, 4)
                                       .big(timeScale, 4)
                                       .big(timeScale, 4)
                                       .big(0x55c4, 2)
                                       .zeros(2)
                                       .bytes;
    const QByteArray handler = ByteWriter().zeros(8).text("vide").zeros(13).bytes;
    const QByteArray videoHeader = ByteWriter().big(1, 4).zeros(8).bytes;
    const QByteArray reference =
        ByteWriter().zeros(4).big(1, 4).text(box("url ", ByteWriter().big(1, 4).bytes)).bytes;
    const QByteArray information =
        box("minf", box("vmhd", videoHeader) + box("dinf", box("dref", reference)) +
                        sampleTable(mediaOffset));
    return box("trak", trackHeader(time) + box("mdia", box("mdhd", mediaHeader) +
                                                           box("hdlr", handler) + information));
}

QByteArray frameData(std::uint32_t seed) {
    ByteWriter out;
    for (unsigned frame = 0; frame < frames; ++frame)
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width; ++x)
                out.u8((seed * 29 + x * 3 + frame * 20) & 0xff)
                    .u8((seed * 53 + y * 4) & 0xff)
                    .u8((seed * 11 + frame * 40) & 0xff);
    return out.bytes;
}

} // namespace

QByteArray movie(std::uint32_t seed, MovieBrand brand, std::uint32_t secondsSince1904) {
    const QByteArray type =
        brand == MovieBrand::quickTime
            ? box("ftyp", ByteWriter().text("qt  ").zeros(4).text("qt  ").bytes)
            : box("ftyp", ByteWriter().text("isom").big(512, 4).text("isommp42").bytes);
    const auto mediaOffset = static_cast<std::uint32_t>(type.size()) + 8;
    return type + box("mdat", frameData(seed)) +
           box("moov", movieHeader(secondsSince1904) + track(secondsSince1904, mediaOffset));
}

} // namespace quorvane::sample
