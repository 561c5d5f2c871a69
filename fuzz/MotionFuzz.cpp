#include "metadata/MotionPhoto.h"
#include "metadata/MotionXmp.h"

#include <cstdlib>

using namespace quorvane;

namespace {

/// A header with a track, and media data.
const QByteArray film("\0\0\0\x18moov\0\0\0\x08mvhd\0\0\0\x08trak\0\0\0\x08mdat", 32);

} // namespace

/// Whatever the bytes are: they are refused as a still, or joined to a movie that is found again
/// and that no second one follows. As a packet they announce a movie, or are refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView file(data, size);
    motion::movieIn(file);
    try {
        const auto text = reinterpret_cast<const char*>(data);
        motion::withMovie(QByteArray(text, static_cast<qsizetype>(size)), {"image/jpeg", "b", 1});
    } catch (const Error&) { // refused
    }
    QByteArray joined;
    try {
        joined = motion::announcing(file, viewOf(film)).apply(file) + film;
    } catch (const Error&) {
        return 0;
    }
    const auto found = motion::movieIn(viewOf(joined));
    if (!found || heif::bytesOf(viewOf(joined), *found).size() != size_t(film.size()))
        std::abort();
    try {
        motion::announcing(viewOf(joined), viewOf(film));
        std::abort();
    } catch (const Error&) {
        return 0;
    }
}
