#include "foundation/MediaKinds.h"

#include "foundation/File.h"

#include <algorithm>

namespace quorvane {

namespace {

using enum MediaClass;
using R = DateReading;
using W = DateWriting;
using Text = QLatin1String;

// clang-format off
constexpr MediaKind kinds[] = {
    //                                                  told   class    raw    read        written
    {Text("jpg"),  Text("image/jpeg"),                  true,  picture, false, R::exif,    W::exif},
    {Text("jpeg"), Text("image/jpeg"),                  true,  picture, false, R::exif,    W::exif},
    {Text("heic"), Text("image/heic"),                  true,  picture, false, R::exif,    W::exif},
    {Text("heif"), Text("image/heif"),                  true,  picture, false, R::exif,    W::exif},
    {Text("hif"),  Text("image/heif"),                  false, picture, false, R::exif,    W::exif},
    {Text("avif"), Text("image/avif"),                  false, picture, false, R::exif,    W::exif},
    {Text("png"),  Text("image/png"),                   true,  picture, false, R::exif,    W::exif},
    {Text("tiff"), Text("image/tiff"),                  false, picture, false, R::exif,    W::exif},
    {Text("tif"),  Text("image/tiff"),                  false, picture, false, R::exif,    W::exif},
    {Text("webp"), Text("image/webp"),                  true,  picture, false, R::exif,    W::exif},
    {Text("dng"),  Text("image/x-adobe-dng"),           false, picture, true,  R::exif,    W::exif},
    {Text("cr2"),  Text("image/x-canon-cr2"),           false, picture, true,  R::rawExif, W::none},
    {Text("cr3"),  Text("image/x-canon-cr3"),           false, picture, true,  R::rawExif, W::none},
    {Text("nef"),  Text("image/x-nikon-nef"),           false, picture, true,  R::rawExif, W::none},
    {Text("arw"),  Text("image/x-sony-arw"),            false, picture, true,  R::rawExif, W::none},
    {Text("raf"),  Text("image/x-fuji-raf"),            false, picture, true,  R::rawExif, W::none},
    {Text("orf"),  Text("image/x-olympus-orf"),         false, picture, true,  R::rawExif, W::none},
    {Text("rw2"),  Text("image/x-panasonic-rw2"),       false, picture, true,  R::rawExif, W::none},
    {Text("gif"),  Text("image/gif"),                   true,  picture, false, R::none,    W::none},
    {Text("bmp"),  Text("image/bmp"),                   false, picture, false, R::none,    W::none},
    {Text("ico"),  Text("image/x-icon"),                false, picture, false, R::none,    W::none},
    {Text("mov"),  Text("video/quicktime"),             true,  movie,   false, R::movie,   W::movie},
    {Text("mp4"),  Text("video/mp4"),                   true,  movie,   false, R::movie,   W::movie},
    {Text("m4v"),  Text("video/x-m4v"),                 true,  movie,   false, R::movie,   W::movie},
    {Text("3gp"),  Text("video/3gpp"),                  false, movie,   false, R::movie,   W::movie},
    {Text("3g2"),  Text("video/3gpp2"),                 false, movie,   false, R::movie,   W::movie},
    {Text("avi"),  Text("video/x-msvideo"),             false, movie,   false, R::none,    W::none},
    {Text("mkv"),  Text("video/x-matroska"),            false, movie,   false, R::none,    W::none},
    {Text("mts"),  Text("video/mp2t"),                  false, movie,   false, R::none,    W::none},
    {Text("m2ts"), Text("video/mp2t"),                  false, movie,   false, R::none,    W::none},
    {Text("m2t"),  Text("video/mp2t"),                  false, movie,   false, R::none,    W::none},
    {Text("tod"),  Text("video/mp2t"),                  false, movie,   false, R::none,    W::none},
    {Text("mod"),  Text("video/mpeg"),                  false, movie,   false, R::none,    W::none},
    {Text("mpg"),  Text("video/mpeg"),                  false, movie,   false, R::none,    W::none},
    {Text("mpeg"), Text("video/mpeg"),                  false, movie,   false, R::none,    W::none},
    {Text("wmv"),  Text("video/x-ms-wmv"),              false, movie,   false, R::none,    W::none},
    {Text("asf"),  Text("video/x-ms-asf"),              false, movie,   false, R::none,    W::none},
    {Text("divx"), Text("video/x-msvideo"),             false, movie,   false, R::none,    W::none},
    {Text("mmv"),  Text("application/octet-stream"),    false, movie,   false, R::none,    W::none},
};
// clang-format on

bool isWritten(const QString& extension, DateWriting writing) {
    const MediaKind* kind = mediaKindOf(extension);
    return kind != nullptr && kind->writing == writing && extension == kind->extension;
}

} // namespace

std::span<const MediaKind> mediaKinds() {
    return kinds;
}

const MediaKind* mediaKindOf(const QString& extension) {
    const auto found = std::ranges::find_if(kinds, [&](const MediaKind& kind) {
        return extension.compare(kind.extension, Qt::CaseInsensitive) == 0;
    });
    return found == std::end(kinds) ? nullptr : found;
}

QByteArray uploadType(const std::filesystem::path& file) {
    const MediaKind* kind = mediaKindOf(pathText(file.extension()).mid(1));
    return kind != nullptr && kind->isTold
               ? QByteArray(kind->mimeType.data(), kind->mimeType.size())
               : QByteArray("application/octet-stream");
}

bool isImageExtension(const QString& extension) {
    return isWritten(extension, DateWriting::exif);
}

bool isVideoExtension(const QString& extension) {
    return isWritten(extension, DateWriting::movie);
}

} // namespace quorvane
