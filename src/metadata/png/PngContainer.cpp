#include "metadata/png/PngContainer.h"

#include "metadata/exif/TiffDirectory.h"
#include "metadata/png/PngRawProfile.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include <zlib.h>

namespace quorvane::png {

namespace {

using namespace std::string_view_literals;

constexpr std::array<std::uint8_t, 8> signature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::uint64_t longestChunk = 0x7fffffff;

struct Chunk {
    std::string_view type; ///< four letters of the file
    std::uint64_t offset = 0;
    std::uint64_t end = 0; ///< behind the check sum
    ByteView data;
};

/// The next chunk, or what is there of it.
Chunk nextChunk(ByteReader& reader) {
    constexpr std::uint64_t checkSum = 4;
    Chunk chunk;
    chunk.offset = reader.offset();
    const std::uint64_t length = reader.u32();
    const ByteView type = reader.take(4);
    chunk.type = {reinterpret_cast<const char*>(type.data()), type.size()};
    chunk.data = reader.take(std::min(length, reader.remaining()));
    reader.skip(std::min(checkSum, reader.remaining()));
    chunk.end = reader.offset();
    return chunk;
}

/// The chunks from the signature to IEND, or to the end of a file that lacks it.
std::vector<Chunk> chunksOf(ByteView file, const Limits& limits) {
    ByteReader reader(file);
    if (!std::ranges::equal(reader.take(signature.size()), signature))
        throw ParseError(QStringLiteral("PNG imzası yok"));
    constexpr std::uint64_t header = 8;
    std::vector<Chunk> chunks;
    while (reader.remaining() >= header && (chunks.empty() || chunks.back().type != "IEND"sv)) {
        if (limits.stop.stop_requested())
            throw Cancelled();
        chunks.push_back(nextChunk(reader));
        if (chunks.size() > limits.chunks)
            throw ParseError(QStringLiteral("PNG'de çok fazla parça var"));
    }
    return chunks;
}

/// The block without the "Exif\0\0" that some writers put before it.
ByteView withoutPrefix(ByteView block) {
    constexpr auto prefix = "Exif\0\0"sv;
    const bool prefixed = block.size() >= prefix.size() &&
                          std::ranges::equal(block.first(prefix.size()), prefix, {}, {},
                                             [](char c) { return static_cast<std::uint8_t>(c); });
    return prefixed ? block.subspan(prefix.size()) : block;
}

QByteArray chunkBytes(ByteView data, const QByteArray& type) {
    if (data.size() > longestChunk)
        throw ContainerError(QStringLiteral("Exif bloğu bir PNG parçasına sığmıyor"));
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(data.size()) + 12);
    tiff::appendNumber(bytes, data.size(), 4, ByteOrder::bigEndian);
    bytes += type;
    bytes.append(reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size()));
    const auto* checked = reinterpret_cast<const Bytef*>(bytes.constData()) + 4;
    tiff::appendNumber(bytes, crc32(0, checked, static_cast<uInt>(bytes.size() - 4)), 4,
                       ByteOrder::bigEndian);
    return bytes;
}

/// Image data, or the frame control of an animation that must stand right before it.
bool beginsImage(const Chunk& chunk) {
    return chunk.type == "IDAT"sv || chunk.type == "fcTL"sv;
}

bool isExif(const Chunk& chunk) {
    return chunk.type == "eXIf"sv;
}

} // namespace

std::optional<QByteArray> readExif(ByteView file, const Limits& limits) {
    const auto chunks = chunksOf(file, limits);
    for (const Chunk& chunk : chunks) {
        const ByteView block = withoutPrefix(chunk.data);
        if (isExif(chunk) && tiff::readHeader(block))
            return QByteArray::fromRawData(reinterpret_cast<const char*>(block.data()),
                                           static_cast<qsizetype>(block.size()));
    }
    std::uint64_t budget = limits.profileBytes;
    for (const Chunk& chunk : chunks) {
        if (limits.stop.stop_requested())
            throw Cancelled();
        if (auto profile = rawExifProfile(chunk.type, chunk.data, budget))
            return profile;
    }
    return std::nullopt;
}

Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits) {
    const auto chunks = chunksOf(file, limits);
    const auto image = std::ranges::find_if(chunks, beginsImage);
    if (image == chunks.end())
        throw ParseError(QStringLiteral("PNG'de görüntü verisi yok"));
    // An eXIf chunk before the image keeps its place; one behind it is met too late by readers
    // that stop at the image.
    auto place = std::find_if(chunks.begin(), image, isExif);

    Rewrite rewrite;
    rewrite.keep(0, signature.size());
    for (auto chunk = chunks.begin(); chunk != chunks.end(); ++chunk) {
        if (limits.stop.stop_requested())
            throw Cancelled();
        if (chunk == place)
            rewrite.insert(chunkBytes(exif, "eXIf"));
        if (!isExif(*chunk) && !isRawExifProfile(chunk->type, chunk->data))
            rewrite.keep(chunk->offset, chunk->end - chunk->offset);
    }
    rewrite.keep(chunks.back().end, file.size() - chunks.back().end);
    return rewrite;
}

} // namespace quorvane::png
