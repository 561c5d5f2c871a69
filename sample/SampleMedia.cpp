#include "sample/SampleMedia.h"

#include "sample/ByteWriter.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace quorvane::sample {

namespace {

constexpr int cells = 12;    // the mosaic is cells x cells
constexpr int cellSize = 16; // pixels
constexpr int edge = cells * cellSize;

struct Color {
    int red, green, blue;
};

/// A soft two-colour gradient with a grain that makes every seed another picture.
Color colorAt(std::uint32_t seed, int x, int y) {
    std::uint32_t grain = seed * 2654435761U + static_cast<std::uint32_t>(y * cells + x) * 40503U;
    grain ^= grain >> 15;
    const int noise = static_cast<int>(grain & 15);
    const int hue = static_cast<int>(seed * 37 % 160);
    return {hue + x * 5 + noise, 60 + y * 9 + noise, 230 - hue - x * 3 + noise % 9};
}

Color pixelColor(std::uint32_t seed, int x, int y) {
    Color color = colorAt(seed, x / cellSize, y / cellSize);
    for (int* part : {&color.red, &color.green, &color.blue})
        *part = std::clamp(*part, 0, 255);
    return color;
}

QByteArray rgbPixels(std::uint32_t seed, bool filterBytes) {
    ByteWriter pixels;
    for (int y = 0; y < edge; ++y) {
        if (filterBytes)
            pixels.u8(0);
        for (int x = 0; x < edge; ++x) {
            const Color color = pixelColor(seed, x, y);
            pixels.u8(static_cast<unsigned>(color.red))
                .u8(static_cast<unsigned>(color.green))
                .u8(static_cast<unsigned>(color.blue));
        }
    }
    return pixels.bytes;
}

/// A little-endian TIFF block with the three dates of Exif 2.3 (tags 0x0132, 0x9003, 0x9004).
QByteArray exifBlock(const QByteArray& date) {
    const QByteArray value = date + '\0';
    ByteWriter block;
    block.text("II").little(42, 2).little(8, 4);
    constexpr unsigned firstValue = 8 + 2 + 2 * 12 + 4; // after the two entries of IFD0
    block.little(2, 2);
    block.little(0x0132, 2).little(2, 2).little(20, 4).little(firstValue, 4);
    block.little(0x8769, 2).little(4, 2).little(1, 4).little(firstValue + 20, 4);
    block.little(0, 4).text(value);
    constexpr unsigned exifValues = firstValue + 20 + 2 + 2 * 12 + 4;
    block.little(2, 2);
    block.little(0x9003, 2).little(2, 2).little(20, 4).little(exifValues, 4);
    block.little(0x9004, 2).little(2, 2).little(20, 4).little(exifValues + 20, 4);
    block.little(0, 4).text(value).text(value);
    return block.bytes;
}

/// Bits, most significant first, with the byte stuffing of JPEG.
class EntropyWriter {
  public:
    void bits(unsigned value, int count) {
        for (int i = count - 1; i >= 0; --i) {
            pending_ = (pending_ << 1) | ((value >> i) & 1);
            if (++filled_ == 8)
                flushByte();
        }
    }
    QByteArray finish() {
        while (filled_ != 0)
            bits(1, 1);
        return out_.bytes;
    }

  private:
    void flushByte() {
        out_.u8(pending_);
        if (pending_ == 0xff)
            out_.u8(0);
        pending_ = 0;
        filled_ = 0;
    }
    ByteWriter out_;
    unsigned pending_ = 0;
    int filled_ = 0;
};

/// One block: its DC difference (every category has a 4-bit code) and "end of block" (one bit).
void writeBlock(EntropyWriter& entropy, int value, int& previous) {
    const int difference = value - std::exchange(previous, value);
    int category = 0;
    while ((std::abs(difference) >> category) != 0)
        ++category;
    entropy.bits(static_cast<unsigned>(category), 4);
    const int coded = difference < 0 ? difference + (1 << category) - 1 : difference;
    entropy.bits(static_cast<unsigned>(coded), category);
    entropy.bits(0, 1);
}

QByteArray jpegScan(std::uint32_t seed) {
    EntropyWriter entropy;
    std::array<int, 3> previous{};
    for (int y = 0; y < cells; ++y)
        for (int x = 0; x < cells; ++x) {
            const Color c = pixelColor(seed, x * cellSize, y * cellSize);
            // JFIF's YCbCr, level-shifted; a flat block's DC coefficient is eight times its value.
            const std::array<int, 3> dc{
                (299 * c.red + 587 * c.green + 114 * c.blue) / 1000 - 128,
                (-169 * c.red - 331 * c.green + 500 * c.blue) / 1000,
                (500 * c.red - 419 * c.green - 81 * c.blue) / 1000,
            };
            for (size_t part = 0; part < 3; ++part)
                writeBlock(entropy, dc[part], previous[part]);
        }
    return entropy.finish();
}

void segment(ByteWriter& out, unsigned marker, const QByteArray& payload) {
    out.u8(0xff).u8(marker).big(static_cast<std::uint64_t>(payload.size()) + 2, 2).text(payload);
}

std::uint32_t crc32(const QByteArray& bytes) {
    std::uint32_t crc = 0xffffffffU;
    for (const char byte : bytes) {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int i = 0; i < 8; ++i)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320U : 0U);
    }
    return ~crc;
}

void chunk(ByteWriter& out, const QByteArray& type, const QByteArray& payload) {
    out.big(static_cast<std::uint64_t>(payload.size()), 4).text(type).text(payload);
    out.big(crc32(type + payload), 4);
}

/// Bits, least significant first, as WebP's lossless format packs them.
class LosslessWriter {
  public:
    void bits(unsigned value, int count) {
        for (int i = 0; i < count; ++i) {
            if (used_ % 8 == 0)
                bytes.append('\0');
            if (((value >> i) & 1) != 0)
                bytes.back() = static_cast<char>(bytes.back() | (1 << (used_ % 8)));
            ++used_;
        }
    }
    /// A prefix code of one symbol, which then costs no bits.
    void onlySymbol(unsigned symbol) {
        bits(1, 1);
        bits(0, 1);
        bits(1, 1);
        bits(symbol, 8);
    }
    QByteArray bytes;

  private:
    int used_ = 0;
};

} // namespace

QByteArray jpeg(std::uint32_t seed, const std::optional<QByteArray>& exifDate) {
    constexpr unsigned blockEdge = cells * 8;
    ByteWriter out;
    out.u8(0xff).u8(0xd8);
    if (exifDate)
        segment(out, 0xe1, QByteArray("Exif\0\0", 6) + exifBlock(*exifDate));
    else
        segment(out, 0xe0, QByteArray("JFIF\0\x01\x01\0\0\x01\0\x01\0\0", 14));
    segment(out, 0xfe, "sample " + QByteArray::number(seed));
    ByteWriter quantization;
    quantization.u8(0).u8(8).text(QByteArray(63, '\1')); // a DC step of 8 undoes its scale
    segment(out, 0xdb, quantization.bytes);
    ByteWriter frame;
    frame.u8(8).big(blockEdge, 2).big(blockEdge, 2).u8(3);
    for (unsigned part = 1; part <= 3; ++part)
        frame.u8(part).u8(0x11).u8(0);
    segment(out, 0xc0, frame.bytes);
    ByteWriter dcTable; // twelve codes of four bits: category n has the code n
    dcTable.u8(0x00).zeros(3).u8(12).zeros(12);
    for (unsigned category = 0; category < 12; ++category)
        dcTable.u8(category);
    segment(out, 0xc4, dcTable.bytes);
    ByteWriter acTable; // one code of one bit: end of block
    acTable.u8(0x10).u8(1).zeros(15).u8(0);
    segment(out, 0xc4, acTable.bytes);
    segment(out, 0xda, QByteArray("\x03\x01\0\x02\0\x03\0\0\x3f\0", 10));
    out.text(jpegScan(seed)).u8(0xff).u8(0xd9);
    return out.bytes;
}

QByteArray png(std::uint32_t seed, const std::optional<QByteArray>& exifDate) {
    ByteWriter out;
    out.text("\x89PNG\r\n\x1a\n");
    ByteWriter header;
    header.big(edge, 4).big(edge, 4).u8(8).u8(2).zeros(3);
    chunk(out, "IHDR", header.bytes);
    if (exifDate)
        chunk(out, "eXIf", exifBlock(*exifDate));
    chunk(out, "IDAT", qCompress(rgbPixels(seed, true)).mid(4)); // a zlib stream after Qt's length
    chunk(out, "IEND", {});
    return out.bytes;
}

QByteArray tiff(std::uint32_t seed, const std::optional<QByteArray>& exifDate) {
    struct Entry {
        unsigned tag, type, count, value;
    };
    const QByteArray pixels = rgbPixels(seed, false);
    const auto pixelBytes = static_cast<unsigned>(pixels.size());
    const unsigned bitsAt = 8 + pixelBytes;
    const unsigned dateAt = bitsAt + 6;
    const unsigned exifAt = dateAt + 20;
    const unsigned directoryAt = exifAt + (exifDate ? 2 + 2 * 12 + 4 + 40 : 0);
    std::vector<Entry> entries{{256, 3, 1, edge}, {257, 3, 1, edge}, {258, 3, 3, bitsAt},
                               {259, 3, 1, 1},    {262, 3, 1, 2},    {273, 4, 1, 8},
                               {277, 3, 1, 3},    {278, 3, 1, edge}, {279, 4, 1, pixelBytes}};
    if (exifDate) {
        entries.push_back({0x0132, 2, 20, dateAt});
        entries.push_back({0x8769, 4, 1, exifAt});
    }
    ByteWriter out;
    out.text("II").little(42, 2).little(directoryAt, 4).text(pixels);
    out.little(8, 2).little(8, 2).little(8, 2);
    const QByteArray value = exifDate.value_or(QByteArray(19, ' ')) + '\0';
    out.text(value);
    if (exifDate) {
        out.little(2, 2);
        out.little(0x9003, 2).little(2, 2).little(20, 4).little(exifAt + 30, 4);
        out.little(0x9004, 2).little(2, 2).little(20, 4).little(exifAt + 50, 4);
        out.little(0, 4).text(value).text(value);
    }
    out.little(entries.size(), 2);
    for (const Entry& entry : entries)
        out.little(entry.tag, 2)
            .little(entry.type, 2)
            .little(entry.count, 4)
            .little(entry.value, 4);
    out.little(0, 4);
    return out.bytes;
}

QByteArray webp(std::uint32_t seed) {
    const Color color = pixelColor(seed, 0, 0);
    LosslessWriter image;
    image.bits(0x2f, 8);
    image.bits(edge - 1, 14);
    image.bits(edge - 1, 14);
    image.bits(0, 1); // no alpha
    image.bits(0, 3); // version
    image.bits(0, 1); // no transform
    image.bits(0, 1); // no colour cache
    image.bits(0, 1); // one group of codes
    for (const int symbol : {color.green, color.red, color.blue, 255, 0})
        image.onlySymbol(static_cast<unsigned>(symbol));
    if (image.bytes.size() % 2 != 0)
        image.bytes.append('\0');
    ByteWriter out;
    out.text("RIFF")
        .little(static_cast<std::uint64_t>(image.bytes.size()) + 12, 4)
        .text("WEBPVP8L");
    out.little(static_cast<std::uint64_t>(image.bytes.size()), 4).text(image.bytes);
    return out.bytes;
}

QByteArray gif(std::uint32_t seed) {
    const Color color = pixelColor(seed, 0, 0);
    ByteWriter out;
    out.text("GIF89a").little(1, 2).little(1, 2).u8(0x80).zeros(2);
    out.u8(static_cast<unsigned>(color.red))
        .u8(static_cast<unsigned>(color.green))
        .u8(static_cast<unsigned>(color.blue))
        .zeros(3);
    out.u8(0x2c).zeros(4).little(1, 2).little(1, 2).u8(0);
    out.text(QByteArray("\x02\x02\x44\x01\x00\x3b", 6));
    return out.bytes;
}

} // namespace quorvane::sample
