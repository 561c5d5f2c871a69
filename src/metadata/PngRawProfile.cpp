#include "metadata/PngRawProfile.h"

#include "metadata/TiffDirectory.h"

#include <zlib.h>

namespace quorvane::png {

namespace {

QByteArray copyOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

/// Reads up to the next NUL and past it.
QByteArray terminated(ByteReader& reader, std::uint64_t longest) {
    QByteArray text;
    while (const char c = static_cast<char>(reader.u8())) {
        if (static_cast<std::uint64_t>(text.size()) == longest)
            throw ParseError(QStringLiteral("PNG metin parçasının anahtarı çok uzun"));
        text += c;
    }
    return text;
}

/// None when the data is broken.
std::optional<QByteArray> unpacked(ByteView packed, std::uint64_t limit) {
    z_stream stream{};
    stream.next_in = const_cast<Bytef*>(packed.data()); // zlib does not write to it
    stream.avail_in = static_cast<uInt>(packed.size()); // a chunk is shorter than 4 GiB
    if (inflateInit(&stream) != Z_OK)
        return std::nullopt;
    QByteArray result;
    QByteArray part(1 << 16, Qt::Uninitialized);
    int state = Z_OK;
    while (state == Z_OK && static_cast<std::uint64_t>(result.size()) <= limit) {
        stream.next_out = reinterpret_cast<Bytef*>(part.data());
        stream.avail_out = static_cast<uInt>(part.size());
        state = inflate(&stream, Z_NO_FLUSH);
        result.append(part.constData(), part.size() - static_cast<qsizetype>(stream.avail_out));
    }
    inflateEnd(&stream);
    if (static_cast<std::uint64_t>(result.size()) > limit)
        throw ParseError(QStringLiteral("PNG ham profili çok büyük"));
    return state == Z_STREAM_END ? std::optional(result) : std::nullopt;
}

/// The text of a chunk whose keyword names an Exif profile.
std::optional<QByteArray> profileText(std::string_view chunkType, ByteView data,
                                      std::uint64_t limit) {
    constexpr std::uint64_t longestKeyword = 79;
    ByteReader reader(data);
    const QByteArray keyword = terminated(reader, longestKeyword);
    if (keyword != "Raw profile type exif" && keyword != "Raw profile type APP1")
        return std::nullopt;
    bool packed = chunkType == "zTXt";
    if (chunkType == "iTXt")
        packed = reader.u8() != 0;
    if (chunkType != "tEXt")
        reader.skip(1); // the one compression method there is
    if (chunkType == "iTXt") {
        terminated(reader, data.size()); // language
        terminated(reader, data.size()); // translated keyword
    }
    const ByteView text = reader.take(reader.remaining());
    if (packed)
        return unpacked(text, limit);
    if (text.size() > limit)
        throw ParseError(QStringLiteral("PNG ham profili çok büyük"));
    return copyOf(text);
}

} // namespace

std::optional<QByteArray> rawExifProfile(std::string_view chunkType, ByteView data,
                                         std::uint64_t limit) {
    if (chunkType != "tEXt" && chunkType != "zTXt" && chunkType != "iTXt")
        return std::nullopt;
    constexpr std::string_view begin = "Raw profile type ";
    if (data.size() < begin.size() ||
        std::string_view(reinterpret_cast<const char*>(data.data()), begin.size()) != begin)
        return std::nullopt;
    const auto text = profileText(chunkType, data, limit);
    if (!text)
        return std::nullopt;
    // "\nexif\n      512\n45786966...": a name, the length, then the bytes in lines of digits.
    const QByteArray trimmed = text->trimmed();
    const qsizetype nameEnd = trimmed.indexOf('\n');
    const qsizetype lengthEnd = trimmed.indexOf('\n', nameEnd + 1);
    if (nameEnd < 0 || lengthEnd < 0)
        return std::nullopt;
    QByteArray block = QByteArray::fromHex(trimmed.mid(lengthEnd + 1));
    if (block.startsWith(QByteArray("Exif\0\0", 6)))
        block.remove(0, 6);
    return tiff::readHeader(viewOf(block)) ? std::optional(block) : std::nullopt;
}

} // namespace quorvane::png
