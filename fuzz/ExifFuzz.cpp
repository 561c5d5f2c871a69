#include "metadata/exif/ExifBlock.h"

#include <cstdlib>

using namespace quorvane;

/// Any block can be replaced by one that takes a stamp at once. Any block is refused with an error
/// of ours or stamped; then it states the new dates, unless its directories overlap what was
/// written, which the reading back of a written file finds out.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView block(data, size);
    exif::Stamp stamp{"2021:03:05 23:30:00", Date(std::chrono::milliseconds(1614987000000)), {}};
    if (size % 2 != 0)
        stamp.location = GeoLocation{-33.86, 151.21, -5};
    const QByteArray replacement = exif::newBlock(block, stamp);
    if (!exif::stamp(viewOf(replacement), stamp).isIdentity(viewOf(replacement)))
        std::abort();
    try {
        exif::instantOf(exif::readDates(block, {64}));
        const Rewrite rewrite = exif::stamp(block, stamp, {64});
        const QByteArray stamped = rewrite.apply(block);
        if (static_cast<std::uint64_t>(stamped.size()) != rewrite.size() || rewrite.size() < size)
            std::abort();
        exif::readDates({reinterpret_cast<const std::uint8_t*>(stamped.constData()),
                         static_cast<size_t>(stamped.size())});
    } catch (const Error&) {
        return 0; // refused
    }
    return 0;
}
