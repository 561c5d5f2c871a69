#include "ReplacedExif.h"
#include "metadata/exif/ExifBlock.h"
#include "metadata/jpeg/JpegContainer.h"

using namespace quorvane;

/// Any bytes are refused with an error of ours or rewritten consistently, and a block of their own
/// that takes a date and a place reads back in its length.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView file(data, size);
    fuzz::checkReplacedExif(
        file, [](ByteView bytes) { return jpeg::readExif(bytes); },
        [](ByteView bytes, ByteView exif) { return jpeg::replaceExif(bytes, exif); });
    const exif::Stamp stamp{"2021:03:05 23:30:00", Date(std::chrono::seconds(1614987000)),
                            GeoLocation{-33.86, 151.21, -5}};
    try {
        const QByteArray old = jpeg::readExif(file).value_or(QByteArray());
        const QByteArray exif = exif::stamp(viewOf(old), stamp).apply(viewOf(old));
        const QByteArray written = jpeg::replaceExif(file, viewOf(exif)).apply(file);
        const auto read = jpeg::readExif(viewOf(written));
        if (!read || read->size() != exif.size())
            std::abort();
    } catch (const Error&) {
        return 0; // refused
    }
    return 0;
}
