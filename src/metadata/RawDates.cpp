#include "metadata/RawDates.h"

#include "metadata/MappedFile.h"

#include <exiv2/exiv2.hpp>

#include <mutex>

namespace quorvane {

namespace {

std::optional<QByteArray> textOf(const Exiv2::ExifData& data, const char* key) {
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found == data.end())
        return std::nullopt;
    return QByteArray::fromStdString(found->toString());
}

/// The library's packet reader keeps a state of its own: one caller at a time.
std::mutex& libraryMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

exif::Dates readRawDates(const std::filesystem::path& file) {
    try {
        const MappedFile source(file);
        const std::lock_guard lock(libraryMutex());
        Exiv2::enableBMFF(true); // CR3
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        const auto image = Exiv2::ImageFactory::open(source.bytes().data(),
                                                     static_cast<long>(source.bytes().size()));
        image->readMetadata();
        const Exiv2::ExifData& data = image->exifData();
        exif::Dates dates;
        dates.original.text = textOf(data, "Exif.Photo.DateTimeOriginal");
        dates.original.offset = textOf(data, "Exif.Photo.OffsetTimeOriginal");
        dates.digitized.text = textOf(data, "Exif.Photo.DateTimeDigitized");
        dates.digitized.offset = textOf(data, "Exif.Photo.OffsetTimeDigitized");
        dates.modified.text = textOf(data, "Exif.Image.DateTime");
        dates.modified.offset = textOf(data, "Exif.Photo.OffsetTime");
        return dates;
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        return {};
    }
}

} // namespace quorvane
