#include "metadata/ImageMetadata.h"

#include "metadata/FileDates.h"
#include "metadata/ImageFormat.h"
#include "metadata/LocalCalendar.h"
#include "metadata/MappedFile.h"
#include "metadata/exif/ExifBlock.h"
#include "metadata/exif/GpsFields.h"
#include "metadata/heif/HeifContainer.h"
#include "metadata/jpeg/JpegContainer.h"
#include "metadata/png/PngContainer.h"
#include "metadata/webp/WebpContainer.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr auto noSource = "CGImageSource oluşturulamadı";
constexpr auto noType = "Görsel UTI tipi tespit edilemedi";
constexpr auto noDestination = "CGImageDestination oluşturulamadı";
constexpr auto notFinalized = "CGImageDestination finalize başarısız";

MetadataResult failed(const char* message) {
    return MetadataResult::failed(QString::fromUtf8(message));
}

/// Valid as long as `image` is. A TIFF is its own block.
std::optional<QByteArray> exifOf(ByteView image, ImageFormat format, const std::stop_token& stop) {
    switch (format) {
    case ImageFormat::jpeg:
        return jpeg::readExif(image, {.stop = stop});
    case ImageFormat::png:
        return png::readExif(image, {.stop = stop});
    case ImageFormat::webp:
        return webp::readExif(image, {.stop = stop});
    case ImageFormat::heif:
        return heif::readExif(image, {.stop = stop});
    case ImageFormat::tiff:
        break;
    }
    return QByteArray::fromRawData(reinterpret_cast<const char*>(image.data()),
                                   static_cast<qsizetype>(image.size()));
}

/// The block with the stamp. One that cannot be read, by anybody, or whose directories lie over one
/// another so that it does not say the same when it is read again, gives way to a new one.
QByteArray stampedBlock(ByteView block, const exif::Stamp& stamp) {
    try {
        QByteArray once = exif::stamp(block, stamp).apply(block);
        if (exif::stamp(viewOf(once), stamp).isIdentity(viewOf(once)))
            return once;
    } catch (const Error&) {
        if (!stamp.addsFields)
            throw;
    }
    return exif::newBlock(block, stamp);
}

Rewrite stampedAll(ByteView image, ImageFormat format, const exif::Stamp& stamp,
                   const std::stop_token& stop) {
    QByteArray exif;
    if (format != ImageFormat::tiff) {
        const QByteArray block = exifOf(image, format, stop).value_or(QByteArray());
        exif = stampedBlock(viewOf(block), stamp);
    }
    switch (format) {
    case ImageFormat::jpeg:
        return jpeg::replaceExif(image, viewOf(exif), {.stop = stop});
    case ImageFormat::png:
        return png::replaceExif(image, viewOf(exif), {.stop = stop});
    case ImageFormat::webp:
        return webp::replaceExif(image, viewOf(exif), {.stop = stop});
    case ImageFormat::heif:
        return heif::replaceExif(image, viewOf(exif), {.stop = stop});
    case ImageFormat::tiff:
        break;
    }
    return exif::stamp(image, stamp);
}

/// Where there is no room for all of it, without the place, and then only in the date fields that
/// are there: the date matters more than the rest.
Rewrite stamped(ByteView image, ImageFormat format, exif::Stamp stamp,
                const std::stop_token& stop) {
    while (true) {
        try {
            return stampedAll(image, format, stamp, stop);
        } catch (const ContainerError&) {
            if (!stamp.location && !stamp.addsFields)
                throw;
            stamp.addsFields = stamp.location.has_value();
            stamp.location.reset();
        }
    }
}

/// The hidden sibling a file is written to; removed with this object unless it took the file's
/// place.
class TemporaryFile {
  public:
    /// Throws `FileError`. What a dead run left under the name is removed.
    explicit TemporaryFile(const std::filesystem::path& file)
        : path_(file.parent_path() / ("." + file.filename().native() + ".tmp")) {
        ::unlink(path_.c_str());
        descriptor_ = openFile(path_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    const std::filesystem::path& path() const { return path_; }

    /// Throws `FileError`, or `Cancelled`.
    void write(const Rewrite& rewrite, const MappedFile& source, const std::stop_token& stop) {
        rewrite.writeTo(descriptor_.get(), source, path_, stop);
        // As far as the system lets us: a foreign owner is no reason to fail.
        const struct stat& like = source.information();
        const bool owned = ::fchown(descriptor_.get(), like.st_uid, like.st_gid) == 0;
        ::fchmod(descriptor_.get(), like.st_mode & (owned ? 07777 : 0777));
        flushFile(descriptor_.get(), path_);
    }

    /// Throws `FileError` and leaves the file as it was. The folder is not flushed: a name that a
    /// power cut takes back stands for the file as it was.
    void replace(const std::filesystem::path& file) {
        if (::rename(path_.c_str(), file.c_str()) != 0)
            throw FileError(QStringLiteral("Dosya değiştirilemedi"), file, errno);
        path_.clear();
    }

  private:
    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

/// A second stamp of what was written must find nothing to do.
void verify(ByteView written, ImageFormat format, const exif::Stamp& stamp,
            const std::stop_token& stop) {
    if (imageFormatOf(written) != format ||
        !stamped(written, format, stamp, stop).isIdentity(written))
        throw ContainerError(QStringLiteral("Yazılan dosya doğrulanamadı"));
}

MetadataResult publish(const Rewrite& rewrite, const MappedFile& source, ImageFormat format,
                       const exif::Stamp& stamp, const std::filesystem::path& file,
                       const std::stop_token& stop) {
    std::optional<TemporaryFile> temporary;
    try {
        temporary.emplace(file);
    } catch (const FileError& error) {
        if (isSystems(error))
            throw;
        return failed(noDestination);
    }
    temporary->write(rewrite, source, stop);
    verify(MappedFile(temporary->path()).bytes(), format, stamp, stop);
    try {
        temporary->replace(file);
    } catch (const FileError& error) {
        if (isSystems(error))
            throw;
        return MetadataResult::failed(QStringLiteral("Atomic swap hatası: ") +
                                      error.localizedDescription());
    }
    return MetadataResult::success(stamp.date);
}

/// Step by step, each failure under its own text. Other failures are exceptions.
MetadataResult enrich(const std::filesystem::path& file, const exif::Stamp& stamp, Effect effect,
                      const std::stop_token& stop) {
    std::optional<MappedFile> source;
    try {
        source.emplace(file);
    } catch (const FileError& error) {
        if (isSystems(error))
            throw;
        return failed(noSource);
    }
    if (source->bytes().empty())
        return failed(noSource);
    const auto format = imageFormatOf(source->bytes());
    if (!format)
        return failed(noType);
    const Rewrite rewrite = stamped(source->bytes(), *format, stamp, stop);
    if (rewrite.isIdentity(source->bytes()))
        return MetadataResult::success(stamp.date);
    if (effect == Effect::write)
        return publish(rewrite, *source, *format, stamp, file, stop);
    // The image data is not read for it: that would cost as much as the run itself.
    return MetadataResult::success(stamp.date);
}

exif::Stamp stampOf(Date date, const std::optional<AssetFacts>& asset) {
    exif::Stamp stamp{exifDateText(date).toLatin1(), date, std::nullopt};
    if (asset && asset->location && isValid(*asset->location))
        stamp.location = asset->location;
    return stamp;
}

} // namespace

std::optional<Date> readExistingImageDate(const std::filesystem::path& file,
                                          const std::stop_token& stop) {
    try {
        const MappedFile source(file);
        const auto format = imageFormatOf(source.bytes());
        if (!format)
            return std::nullopt;
        const auto block = exifOf(source.bytes(), *format, stop);
        return block ? exif::instantOf(exif::readDates(viewOf(*block))) : std::nullopt;
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        return std::nullopt;
    }
}

MetadataResult enrichImageMetadata(const std::filesystem::path& file, Date targetDate,
                                   const std::optional<AssetFacts>& asset, Log& log, Effect effect,
                                   const std::stop_token& stop) {
    try {
        if (!writableDate(targetDate))
            throw ContainerError(QStringLiteral("Tarih dört haneli bir yılda değil"));
        MetadataResult result = enrich(file, stampOf(targetDate, asset), effect, stop);
        if (result.which == MetadataResult::Case::success && effect == Effect::write)
            setFileDates(file, targetDate);
        return result;
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        log.log(QStringLiteral("[Metadata] ⚠️ Görsele tarih yazılamadı: %1 (%2)")
                    .arg(pathText(file.filename()), describe(error)));
        return failed(notFinalized);
    }
}

int removeLeftoverTemporaries(const std::filesystem::path& folder) noexcept {
    int removed = 0;
    std::error_code ignored;
    for (std::filesystem::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        const std::string name = entry->path().filename().native();
        const bool isOurs = name.size() > 5 && name.starts_with('.') && name.ends_with(".tmp");
        std::error_code failure;
        if (isOurs && entry->symlink_status(failure).type() == std::filesystem::file_type::regular)
            removed += std::filesystem::remove(entry->path(), failure) ? 1 : 0;
    }
    return removed;
}

} // namespace quorvane
