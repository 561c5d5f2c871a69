#include "metadata/png/PngRawProfile.h"

#include "metadata/exif/TiffDirectory.h"

#include <algorithm>

#include <zlib.h>

namespace quorvane::png {

namespace {

/// Reads up to the next NUL and past it.
std::string_view terminated(ByteReader& reader, ByteView data) {
    const ByteView rest = data.subspan(reader.offset());
    const auto length = static_cast<size_t>(std::ranges::find(rest, 0) - rest.begin());
    reader.skip(length + 1);
    return {reinterpret_cast<const char*>(rest.data()), length};
}

/// The beginning of what the data unpacks to: `limit` bytes, fewer where it ends or is broken.
QByteArray unpacked(ByteView packed, std::uint64_t limit) {
    z_stream stream{};
    stream.next_in = const_cast<Bytef*>(packed.data()); // zlib does not write to it
    stream.avail_in = static_cast<uInt>(packed.size()); // a chunk is shorter than 4 GiB
    if (inflateInit(&stream) != Z_OK)
        return {};
    QByteArray result;
    int state = Z_OK;
    while (state == Z_OK && static_cast<std::uint64_t>(result.size()) < limit) {
        constexpr std::uint64_t most = 1U << 16;
        const auto room = std::min(limit - static_cast<std::uint64_t>(result.size()), most);
        QByteArray part(static_cast<qsizetype>(room), Qt::Uninitialized);
        stream.next_out = reinterpret_cast<Bytef*>(part.data());
        stream.avail_out = static_cast<uInt>(room);
        state = inflate(&stream, Z_NO_FLUSH);
        result.append(part.constData(), part.size() - static_cast<qsizetype>(stream.avail_out));
    }
    inflateEnd(&stream);
    return result;
}

/// The beginning of the text, `limit` bytes of it, of a chunk whose keyword names an Exif profile;
/// none for any other chunk.
std::optional<QByteArray> profileText(std::string_view chunkType, ByteView data,
                                      std::uint64_t limit) {
    if (chunkType != "tEXt" && chunkType != "zTXt" && chunkType != "iTXt")
        return std::nullopt;
    try {
        ByteReader reader(data);
        const std::string_view keyword = terminated(reader, data);
        if (keyword != "Raw profile type exif" && keyword != "Raw profile type APP1")
            return std::nullopt;
        bool packed = chunkType == "zTXt";
        if (chunkType == "iTXt")
            packed = reader.u8() != 0;
        if (chunkType != "tEXt")
            reader.skip(1); // the one compression method there is
        if (chunkType == "iTXt") {
            terminated(reader, data); // language
            terminated(reader, data); // translated keyword
        }
        const ByteView text = reader.take(reader.remaining());
        if (packed)
            return unpacked(text, limit);
        return QByteArray(reinterpret_cast<const char*>(text.data()),
                          static_cast<qsizetype>(std::min<std::uint64_t>(text.size(), limit)));
    } catch (const ParseError&) {
        return std::nullopt;
    }
}

/// "\nexif\n      512\n45786966...": a name, the length, then the bytes in lines of digits.
QByteArray blockIn(const QByteArray& text) {
    const QByteArray trimmed = text.trimmed();
    const qsizetype nameEnd = trimmed.indexOf('\n');
    const qsizetype lengthEnd = trimmed.indexOf('\n', nameEnd + 1);
    if (nameEnd < 0 || lengthEnd < 0)
        return {};
    QByteArray digits = trimmed.mid(lengthEnd + 1);
    digits.removeIf([](char c) { return QByteArrayView("\r\n\t ").contains(c); });
    digits.truncate(digits.size() / 2 * 2);
    QByteArray block = QByteArray::fromHex(digits);
    if (block.startsWith(QByteArray("Exif\0\0", 6)))
        block.remove(0, 6);
    return block;
}

} // namespace

bool isRawExifProfile(std::string_view chunkType, ByteView data) {
    constexpr std::uint64_t beginning = 256;
    const auto text = profileText(chunkType, data, beginning);
    return text && tiff::readHeader(viewOf(blockIn(*text)));
}

std::optional<QByteArray> rawExifProfile(std::string_view chunkType, ByteView data,
                                         std::uint64_t& budget) {
    if (!isRawExifProfile(chunkType, data))
        return std::nullopt;
    const auto text = profileText(chunkType, data, budget);
    const auto length = static_cast<std::uint64_t>(text->size());
    const bool whole = length < budget;
    budget -= length;
    return whole ? std::optional(blockIn(*text)) : std::nullopt;
}

} // namespace quorvane::png
