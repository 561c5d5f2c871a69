#include "metadata/jpeg/MultiPictureIndex.h"

#include "metadata/exif/TiffDirectory.h"

namespace quorvane::jpeg {

QByteArray movedMultiPictureIndex(ByteView index, std::int64_t growth, std::int64_t growthBehind) {
    constexpr std::uint16_t pictureListTag = 0xb002;
    constexpr std::uint64_t pictureSize =
        16; // attribute, size, place: 4 each; 2 dependants: 2 each
    constexpr std::uint32_t maxEntries = 1024;

    QByteArray result(reinterpret_cast<const char*>(index.data()),
                      static_cast<qsizetype>(index.size()));
    const auto header = tiff::readHeader(index);
    if (!header || header->format.big)
        throw ParseError(QStringLiteral("Çoklu resim dizini okunamadı"));
    const auto directory =
        tiff::readDirectory(index, header->format, header->firstDirectory, maxEntries);
    const tiff::Entry* list = directory.find(pictureListTag);
    if (list == nullptr)
        return result;
    const auto pictures = tiff::valueOf(*list, header->format, index);
    if (!pictures || list->isInline())
        throw ParseError(QStringLiteral("Çoklu resim dizini okunamadı"));

    const std::uint64_t listAt = list->slotNumber(header->format);
    const auto add = [&](std::uint64_t at, std::int64_t count) {
        ByteReader reader(index, header->format.order);
        reader.seek(at);
        QByteArray moved;
        tiff::appendNumber(moved, static_cast<std::uint64_t>(std::int64_t{reader.u32()} + count), 4,
                           header->format.order);
        result.replace(static_cast<qsizetype>(at), moved.size(), moved);
    };
    for (std::uint64_t at = 0; at + pictureSize <= pictures->size(); at += pictureSize) {
        ByteReader reader(*pictures, header->format.order);
        reader.seek(at + 8);
        const bool isFirst = reader.u32() == 0; // the first picture's place is written as 0
        if (isFirst)
            add(listAt + at + 4, growth);
        else
            add(listAt + at + 8, growthBehind);
    }
    return result;
}

} // namespace quorvane::jpeg
