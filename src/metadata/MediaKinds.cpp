#include "metadata/MediaKinds.h"

#include <algorithm>

namespace quorvane {

namespace {

using enum MediaClass;
using R = DateReading;
using W = DateWriting;
using Text = QLatin1String;

// clang-format off
constexpr MediaKind kinds[] = {
    //                                                  class    raw    read        written   taken
    {Text("jpg"),  Text("image/jpeg"),                  picture, false, R::exif,    W::exif,  true},
    {Text("jpeg"), Text("image/jpeg"),                  picture, false, R::exif,    W::exif,  true},
    {Text("heic"), Text("image/heic"),                  picture, false, R::exif,    W::exif,  true},
    {Text("heif"), Text("image/heif"),                  picture, false, R::exif,    W::exif,  true},
    {Text("hif"),  Text("image/heif"),                  picture, false, R::exif,    W::exif,  true},
    {Text("avif"), Text("image/avif"),                  picture, false, R::exif,    W::exif,  true},
    {Text("png"),  Text("image/png"),                   picture, false, R::exif,    W::exif,  true},
    {Text("tiff"), Text("image/tiff"),                  picture, false, R::exif,    W::exif,  true},
    {Text("tif"),  Text("image/tiff"),                  picture, false, R::exif,    W::exif,  true},
    {Text("webp"), Text("image/webp"),                  picture, false, R::exif,    W::exif,  true},
    {Text("dng"),  Text("image/x-adobe-dng"),           picture, true,  R::exif,    W::exif,  true},
    {Text("cr2"),  Text("image/x-canon-cr2"),           picture, true,  R::rawExif, W::none,  true},
    {Text("cr3"),  Text("image/x-canon-cr3"),           picture, true,  R::rawExif, W::none,  true},
    {Text("nef"),  Text("image/x-nikon-nef"),           picture, true,  R::rawExif, W::none,  true},
    {Text("arw"),  Text("image/x-sony-arw"),            picture, true,  R::rawExif, W::none,  true},
    {Text("raf"),  Text("image/x-fuji-raf"),            picture, true,  R::rawExif, W::none,  true},
    {Text("orf"),  Text("image/x-olympus-orf"),         picture, true,  R::rawExif, W::none,  true},
    {Text("rw2"),  Text("image/x-panasonic-rw2"),       picture, true,  R::rawExif, W::none,  true},
    {Text("gif"),  Text("image/gif"),                   picture, false, R::none,    W::none,  true},
    {Text("bmp"),  Text("image/bmp"),                   picture, false, R::none,    W::none,  true},
    {Text("mov"),  Text("video/quicktime"),             movie,   false, R::movie,   W::movie, true},
    {Text("mp4"),  Text("video/mp4"),                   movie,   false, R::movie,   W::movie, true},
    {Text("m4v"),  Text("video/x-m4v"),                 movie,   false, R::movie,   W::movie, true},
    {Text("3gp"),  Text("video/3gpp"),                  movie,   false, R::movie,   W::movie, true},
    {Text("3g2"),  Text("video/3gpp2"),                 movie,   false, R::movie,   W::movie, true},
    {Text("avi"),  Text("video/x-msvideo"),             movie,   false, R::none,    W::none,  true},
    {Text("mkv"),  Text("video/x-matroska"),            movie,   false, R::none,    W::none,  true},
    {Text("mts"),  Text("video/mp2t"),                  movie,   false, R::none,    W::none,  true},
    {Text("m2ts"), Text("video/mp2t"),                  movie,   false, R::none,    W::none,  true},
    {Text("mpg"),  Text("video/mpeg"),                  movie,   false, R::none,    W::none,  true},
    {Text("mpeg"), Text("video/mpeg"),                  movie,   false, R::none,    W::none,  true},
    {Text("wmv"),  Text("video/x-ms-wmv"),              movie,   false, R::none,    W::none,  true},
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

bool isImageExtension(const QString& extension) {
    return isWritten(extension, DateWriting::exif);
}

bool isVideoExtension(const QString& extension) {
    return isWritten(extension, DateWriting::movie);
}

} // namespace quorvane
