#include "metadata/MotionPhoto.h"

#include "foundation/MediaKinds.h"
#include "metadata/ImageFormat.h"
#include "metadata/MotionXmp.h"
#include "metadata/heif/HeifContainer.h"
#include "metadata/jpeg/JpegContainer.h"

#include <algorithm>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane::motion {

namespace {

using namespace std::string_view_literals;
using heif::fourCC;

constexpr std::uint64_t shortHeader = 8; ///< of a box, in bytes
constexpr std::uint64_t longestMovie = UINT32_MAX - shortHeader;

std::vector<heif::Box> boxesOf(ByteView file, const std::stop_token& stop) {
    heif::Allowance boxes(heif::Limits().boxes, stop);
    return heif::boxesIn(file, {0, file.size()}, boxes);
}

QByteArray typeOf(ByteView movie) {
    constexpr std::uint64_t brandAt = 8;
    ByteReader reader(movie);
    reader.seek(4);
    if (reader.u32() != fourCC("ftyp"))
        return "video/quicktime"; // of the time before brands
    reader.seek(brandAt);
    return reader.u32() == fourCC("qt  ") ? "video/quicktime" : "video/mp4";
}

bool endsWith(ByteView file, std::string_view text) {
    return file.size() >= text.size() &&
           std::ranges::equal(file.last(text.size()), text, {}, {},
                              [](char c) { return static_cast<std::uint8_t>(c); });
}

Rewrite announcingJpeg(ByteView still, ByteView movie, const std::stop_token& stop) {
    if (endsWith(still, "SEFT"sv)) // Samsung's own trailer, which may hold a movie and stays last
        throw ContainerError(QStringLiteral("Fotoğrafın sonunda başka veriler var"));
    const jpeg::Limits limits{.stop = stop};
    const QByteArray xmp = withMovie(jpeg::readXmp(still, limits).value_or(QByteArray()),
                                     {"image/jpeg", typeOf(movie), movie.size()});
    return jpeg::replaceXmp(still, viewOf(xmp), limits);
}

Rewrite announcingHeif(ByteView still, ByteView movie, const std::stop_token& stop) {
    const std::vector<heif::Box> boxes = boxesOf(still, stop);
    if (std::ranges::find(boxes, fourCC("mpvd"), &heif::Box::type) != boxes.end())
        throw ContainerError(QStringLiteral("Fotoğrafın zaten bir videosu var"));
    if (ByteReader(still.subspan(boxes.back().whole.offset)).u32() == 0)
        throw ContainerError(QStringLiteral("Fotoğrafın son kutusu açık uçlu"));
    const bool isAv1 = ByteReader(still.subspan(shortHeader)).u32() == fourCC("avif");
    const heif::Limits limits{.stop = stop};
    const QByteArray xmp =
        withMovie(heif::readXmp(still, limits).value_or(QByteArray()),
                  {isAv1 ? "image/avif" : "image/heic", typeOf(movie), movie.size(), shortHeader});
    Rewrite rewrite = heif::replaceXmp(still, viewOf(xmp), limits);
    rewrite.insert(heif::boxHeader(fourCC("mpvd"), movie.size()));
    return rewrite;
}

std::optional<QByteArray> xmpOf(ByteView file, const std::stop_token& stop) {
    return imageFormatOf(file) == ImageFormat::jpeg ? jpeg::readXmp(file, {.stop = stop})
                                                    : heif::readXmp(file, {.stop = stop});
}

/// What was written must say where the movie is, and it must be there.
void verify(const std::filesystem::path& file, ByteView movie, const std::stop_token& stop) {
    const MappedFile written(file);
    const auto range = movieIn(written.bytes(), stop);
    if (!range || !std::ranges::equal(heif::bytesOf(written.bytes(), *range), movie))
        throw ContainerError(QStringLiteral("Yazılan dosya doğrulanamadı"));
}

} // namespace

bool takesMovie(const QString& extension) {
    const MediaKind* kind = mediaKindOf(extension);
    return kind != nullptr && (kind->mimeType == QLatin1String("image/jpeg") ||
                               kind->mimeType == QLatin1String("image/heic") ||
                               kind->mimeType == QLatin1String("image/heif"));
}

void requireMovie(ByteView movie, const std::stop_token& stop) {
    heif::Allowance allowance(heif::Limits().boxes, stop);
    const auto boxes = heif::boxesIn(movie, {0, movie.size()}, allowance);
    const auto moov =
        heif::boxesIn(movie, heif::requiredBox(boxes, fourCC("moov")).body, allowance);
    heif::requiredBox(moov, fourCC("mvhd"));
    const auto has = [](const std::vector<heif::Box>& among, std::uint32_t type) {
        return std::ranges::find(among, type, &heif::Box::type) != among.end();
    };
    if (!has(moov, fourCC("trak")) || !has(boxes, fourCC("mdat")))
        throw ParseError(QStringLiteral("Videoda izlenecek bir şey yok"));
}

Rewrite announcing(ByteView still, ByteView movie, const std::stop_token& stop) {
    requireMovie(movie, stop);
    if (movie.size() > longestMovie)
        throw ContainerError(QStringLiteral("Video çok büyük"));
    switch (imageFormatOf(still).value_or(ImageFormat::tiff)) {
    case ImageFormat::jpeg:
        return announcingJpeg(still, movie, stop);
    case ImageFormat::heif:
        return announcingHeif(still, movie, stop);
    default:
        throw ContainerError(QStringLiteral("Bu biçime video eklenemez"));
    }
}

void join(const std::filesystem::path& still, const std::filesystem::path& movie,
          const std::filesystem::path& destination, const std::stop_token& stop) {
    const MappedFile picture(still);
    const MappedFile film(movie);
    const Rewrite beginning = announcing(picture.bytes(), film.bytes(), stop);
    Rewrite all;
    all.keep(0, film.bytes().size());
    const FileDescriptor file = openFile(destination, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    try {
        beginning.writeTo(file.get(), picture, destination, stop);
        all.writeTo(file.get(), film, destination, stop);
        flushFile(file.get(), destination);
        verify(destination, film.bytes(), stop);
    } catch (...) {
        ::unlink(destination.c_str());
        throw;
    }
}

std::optional<heif::Range> movieIn(ByteView file, const std::stop_token& stop) {
    try {
        const auto format = imageFormatOf(file);
        if (format != ImageFormat::jpeg && format != ImageFormat::heif)
            return std::nullopt;
        const auto xmp = xmpOf(file, stop);
        const auto length = xmp ? announcedMovieLength(*xmp) : std::nullopt;
        if (!length || *length == 0 || *length >= file.size())
            return std::nullopt;
        const heif::Range movie{file.size() - *length, *length};
        if (format == ImageFormat::heif) {
            const heif::Box last = boxesOf(file, stop).back();
            if (last.type != fourCC("mpvd") || last.body != movie)
                return std::nullopt;
        }
        requireMovie(heif::bytesOf(file, movie), stop);
        return movie;
    } catch (const Error&) {
        return std::nullopt;
    }
}

} // namespace quorvane::motion
