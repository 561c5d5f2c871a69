#include "metadata/heif/HeifContainer.h"

#include <cstddef>
#include <cstdlib>

using namespace quorvane;

/// Whatever the bytes are: an error, or a file from which the new block is read again and which a
/// second call leaves alone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr std::uint8_t block[] = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    const ByteView file(data, size);
    QByteArray first;
    try {
        heif::readExif(file);
        first = heif::replaceExif(file, block).apply(file);
    } catch (const Error&) {
        return 0;
    }
    const ByteView rewritten(reinterpret_cast<const std::uint8_t*>(first.constData()),
                             static_cast<std::size_t>(first.size()));
    const std::optional<QByteArray> read = heif::readExif(rewritten);
    if (!read || *read != QByteArray(reinterpret_cast<const char*>(block), sizeof block) ||
        !heif::replaceExif(rewritten, block).isIdentity(rewritten))
        std::abort();
    return 0;
}
