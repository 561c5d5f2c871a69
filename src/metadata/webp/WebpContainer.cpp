#include "metadata/webp/WebpContainer.h"

#include "metadata/exif/TiffDirectory.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace quorvane::webp {

namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t headerSize = 12; ///< "RIFF", length, "WEBP"
constexpr std::uint8_t exifFlag = 0x08;
constexpr std::uint8_t alphaFlag = 0x10;

struct Chunk {
    std::string_view type; ///< four letters of the file
    std::uint64_t offset = 0;
    std::uint64_t end = 0; ///< behind the padding
    ByteView data;
};

struct Riff {
    std::vector<Chunk> chunks;
    std::uint64_t end = 0;
    bool lacksPadding = false; ///< the file ends in a chunk of odd length without its padding
};

std::string_view textOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Riff riffOf(ByteView file, const Limits& limits) {
    ByteReader header(file, ByteOrder::littleEndian);
    const bool isRiff = textOf(header.take(4)) == "RIFF"sv;
    const std::uint64_t length = header.u32();
    if (!isRiff || textOf(header.take(4)) != "WEBP"sv)
        throw ParseError(QStringLiteral("WebP başlığı yok"));
    Riff riff;
    riff.end = 8 + length;
    if (riff.end == file.size() + 1) // the padding was counted but not written
        riff.end = file.size();
    if (riff.end > file.size() || riff.end < headerSize)
        throw ParseError(QStringLiteral("WebP verisi eksik"));

    ByteReader reader(file.first(riff.end), ByteOrder::littleEndian);
    reader.seek(headerSize);
    while (reader.remaining() > 0) {
        if (limits.stop.stop_requested())
            throw Cancelled();
        Chunk chunk;
        chunk.offset = reader.offset();
        chunk.type = textOf(reader.take(4));
        const std::uint32_t size = reader.u32();
        chunk.data = reader.take(size);
        riff.lacksPadding = size % 2 != 0 && reader.remaining() == 0;
        if (size % 2 != 0 && !riff.lacksPadding)
            reader.skip(1);
        chunk.end = reader.offset();
        riff.chunks.push_back(chunk);
        if (riff.chunks.size() > limits.chunks)
            throw ParseError(QStringLiteral("WebP'de çok fazla parça var"));
    }
    return riff;
}

QByteArray chunkBytes(const QByteArray& type, ByteView data) {
    QByteArray bytes = type;
    tiff::appendNumber(bytes, data.size(), 4, ByteOrder::littleEndian);
    bytes.append(reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size()));
    if (data.size() % 2 != 0)
        bytes += '\0';
    return bytes;
}

struct Canvas {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool hasAlpha = false;
};

/// The picture's size from a lossy (RFC 6386, 9.1) or a lossless bit stream.
Canvas canvasOf(const Chunk& image) {
    ByteReader reader(image.data, ByteOrder::littleEndian);
    Canvas canvas;
    if (image.type == "VP8 "sv) {
        constexpr std::array<std::uint8_t, 3> startCode = {0x9d, 0x01, 0x2a};
        const bool isKeyFrame = (reader.u8() & 1) == 0;
        reader.skip(2);
        if (!isKeyFrame || !std::ranges::equal(reader.take(3), startCode))
            throw ParseError(QStringLiteral("WebP görüntüsünün başlığı okunamadı"));
        canvas.width = reader.u16() & 0x3fff;
        canvas.height = reader.u16() & 0x3fff;
    } else {
        if (reader.u8() != 0x2f)
            throw ParseError(QStringLiteral("WebP görüntüsünün başlığı okunamadı"));
        const std::uint32_t bits = reader.u32();
        canvas.width = (bits & 0x3fff) + 1;
        canvas.height = (bits >> 14 & 0x3fff) + 1;
        canvas.hasAlpha = (bits >> 28 & 1) != 0;
    }
    if (canvas.width == 0 || canvas.height == 0)
        throw ParseError(QStringLiteral("WebP görüntüsünün boyutu sıfır"));
    return canvas;
}

QByteArray extendedHeader(const Canvas& canvas) {
    QByteArray data;
    const std::uint8_t flags = exifFlag | (canvas.hasAlpha ? alphaFlag : 0);
    tiff::appendNumber(data, flags, 4, ByteOrder::littleEndian);
    tiff::appendNumber(data, canvas.width - 1, 3, ByteOrder::littleEndian);
    tiff::appendNumber(data, canvas.height - 1, 3, ByteOrder::littleEndian);
    return chunkBytes("VP8X", viewOf(data));
}

bool isImage(const Chunk& chunk) {
    return chunk.type == "VP8 "sv || chunk.type == "VP8L"sv || chunk.type == "ANMF"sv;
}

/// The length of the RIFF chunk's contents, once they stand.
QByteArray riffHeader(std::uint64_t contents) {
    if (contents + 4 > 0xfffffffe)
        throw ContainerError(QStringLiteral("WebP dosyası RIFF sınırını aşıyor"));
    QByteArray bytes = "RIFF";
    tiff::appendNumber(bytes, contents + 4, 4, ByteOrder::littleEndian);
    return bytes + "WEBP";
}

/// The chunks with `exif`, without what stands before and behind them.
void writeChunks(Rewrite& rewrite, const Riff& riff, const QByteArray& exif) {
    const auto& chunks = riff.chunks;
    const auto last = std::find_if(chunks.rbegin(), chunks.rend(), isImage);
    if (last == chunks.rend())
        throw ParseError(QStringLiteral("WebP'de görüntü verisi yok"));
    const auto behindImage = last.base();
    const auto old = std::ranges::find(chunks, "EXIF"sv, &Chunk::type);

    if (chunks.front().type != "VP8X"sv)
        rewrite.insert(extendedHeader(canvasOf(*std::ranges::find_if(chunks, isImage))));
    for (auto chunk = chunks.begin(); chunk != chunks.end(); ++chunk) {
        if (chunk == behindImage && old == chunks.end())
            rewrite.insert(exif);
        if (chunk == old) {
            rewrite.insert(exif);
        } else if (chunk == chunks.begin() && chunk->type == "VP8X"sv) {
            if (chunk->data.empty())
                throw ParseError(QStringLiteral("WebP başlığı okunamadı"));
            constexpr std::uint64_t flagsAt = 8;
            rewrite.keep(chunk->offset, flagsAt);
            rewrite.insert(QByteArray(1, static_cast<char>(chunk->data[0] | exifFlag)));
            rewrite.keep(chunk->offset + flagsAt + 1, chunk->end - chunk->offset - flagsAt - 1);
        } else {
            rewrite.keep(chunk->offset, chunk->end - chunk->offset);
            if (riff.lacksPadding && std::next(chunk) == chunks.end())
                rewrite.insert(QByteArray(1, '\0'));
        }
    }
    if (behindImage == chunks.end() && old == chunks.end())
        rewrite.insert(exif);
}

} // namespace

std::optional<QByteArray> readExif(ByteView file, const Limits& limits) {
    const Riff riff = riffOf(file, limits);
    const auto found = std::ranges::find(riff.chunks, "EXIF"sv, &Chunk::type);
    if (found == riff.chunks.end())
        return std::nullopt;
    constexpr auto prefix = "Exif\0\0"sv; // some writers put it before the block
    const bool prefixed = textOf(found->data).starts_with(prefix);
    const ByteView block = found->data.subspan(prefixed ? prefix.size() : 0);
    return QByteArray::fromRawData(reinterpret_cast<const char*>(block.data()),
                                   static_cast<qsizetype>(block.size()));
}

Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits) {
    const Riff riff = riffOf(file, limits);
    const QByteArray bytes = chunkBytes("EXIF", exif);
    Rewrite contents;
    writeChunks(contents, riff, bytes);

    Rewrite rewrite;
    rewrite.insert(riffHeader(contents.size()));
    writeChunks(rewrite, riff, bytes);
    rewrite.keep(riff.end, file.size() - riff.end);
    return rewrite;
}

} // namespace quorvane::webp
