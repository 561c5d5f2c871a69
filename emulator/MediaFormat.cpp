#include "emulator/MediaFormat.h"

#include <array>

namespace quorvane::emulator {

namespace {

struct Signature {
    qsizetype offset;
    QByteArrayView bytes;
    const char* mimeType;
};

using namespace std::string_view_literals;

constexpr QByteArrayView view(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

// Order matters where one signature is the beginning of another. Raw pictures are TIFF files or
// close relatives of them.
constexpr std::array signatures{
    Signature{0, view("\xFF\xD8\xFF"sv), "image/jpeg"},
    Signature{0, view("\x89PNG\r\n\x1A\n"sv), "image/png"},
    Signature{0, view("GIF87a"sv), "image/gif"},
    Signature{0, view("GIF89a"sv), "image/gif"},
    Signature{8, view("WEBP"sv), "image/webp"},
    Signature{0, view("II*\0"sv), "image/tiff"},
    Signature{0, view("MM\0*"sv), "image/tiff"},
    Signature{0, view("IIU\0"sv), "image/x-panasonic-rw2"},
    Signature{0, view("IIRO"sv), "image/x-olympus-orf"},
    Signature{0, view("IIRS"sv), "image/x-olympus-orf"},
    Signature{0, view("FUJIFILMCCD-RAW"sv), "image/x-fuji-raf"},
    Signature{0, view("BM"sv), "image/bmp"},
    Signature{0, view("\0\0\x01\0"sv), "image/x-icon"},
    Signature{4, view("ftyphei"sv), "image/heic"},
    Signature{4, view("ftyphev"sv), "image/heic"},
    Signature{4, view("ftypmif1"sv), "image/heif"},
    Signature{4, view("ftypmsf1"sv), "image/heif"},
    Signature{4, view("ftypavif"sv), "image/avif"},
    Signature{4, view("ftypcrx "sv), "image/x-canon-cr3"},
    Signature{4, view("ftypqt  "sv), "video/quicktime"},
    Signature{4, view("ftypM4V"sv), "video/x-m4v"},
    Signature{4, view("ftyp3g"sv), "video/3gpp"},
    Signature{4, view("ftyp"sv), "video/mp4"},
    Signature{4, view("moov"sv), "video/quicktime"},
    Signature{4, view("mdat"sv), "video/quicktime"},
    Signature{4, view("wide"sv), "video/quicktime"},
    Signature{8, view("AVI "sv), "video/x-msvideo"},
    Signature{0, view("\x1A\x45\xDF\xA3"sv), "video/x-matroska"},
    Signature{0, view("\0\0\x01\xBA"sv), "video/mpeg"},
    Signature{0, view("\0\0\x01\xB3"sv), "video/mpeg"},
    Signature{0, view("\x47\x40"sv), "video/mp2t"},
    Signature{4, view("\x47\x40"sv), "video/mp2t"}, // with the time stamps of a disc before it
    Signature{0, view("\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv), "video/x-ms-wmv"},
};

} // namespace

std::optional<QString> mediaFormatOf(QByteArrayView start) {
    for (const Signature& signature : signatures) {
        if (start.size() < signature.offset + signature.bytes.size())
            continue;
        if (start.sliced(signature.offset, signature.bytes.size()) == signature.bytes)
            return QString::fromLatin1(signature.mimeType);
    }
    return std::nullopt;
}

} // namespace quorvane::emulator
