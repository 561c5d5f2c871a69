#include "metadata/ImageFormat.h"

#include "metadata/exif/TiffDirectory.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvane {

namespace {

using namespace std::string_view_literals;

std::string_view textAt(ByteView file, size_t offset, size_t length) {
    if (offset > file.size() || length > file.size() - offset)
        return {};
    return {reinterpret_cast<const char*>(file.data()) + offset, length};
}

/// A file type box (ISO/IEC 14496-12) with a brand of still pictures (ISO/IEC 23008-12).
bool isHeif(ByteView file) {
    constexpr std::array brands = {"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv, "hevx"sv,
                                   "mif1"sv, "mif2"sv, "msf1"sv, "avif"sv, "avis"sv};
    if (textAt(file, 4, 4) != "ftyp"sv)
        return false;
    const std::uint32_t length = ByteReader(file).u32();
    const size_t end = std::min<size_t>(length, std::min<size_t>(file.size(), 1024));
    for (size_t at = 8; at + 4 <= end; at += at == 8 ? 8 : 4) // the second word is a version
        if (std::ranges::find(brands, textAt(file, at, 4)) != brands.end())
            return true;
    return false;
}

} // namespace

std::optional<ImageFormat> imageFormatOf(ByteView file) {
    if (textAt(file, 0, 2) == "\xff\xd8"sv)
        return ImageFormat::jpeg;
    if (textAt(file, 0, 8) == "\x89PNG\r\n\x1a\n"sv)
        return ImageFormat::png;
    if (textAt(file, 0, 4) == "RIFF"sv && textAt(file, 8, 4) == "WEBP"sv)
        return ImageFormat::webp;
    if (tiff::readHeader(file))
        return ImageFormat::tiff;
    if (isHeif(file))
        return ImageFormat::heif;
    return std::nullopt;
}

} // namespace quorvane
