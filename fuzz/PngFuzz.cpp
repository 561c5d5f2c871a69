#include "ReplacedExif.h"
#include "metadata/png/PngContainer.h"

using namespace quorvane;

/// Any bytes are refused with an error of ours or rewritten consistently.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::checkReplacedExif(
        {data, size}, [](ByteView file) { return png::readExif(file); },
        [](ByteView file, ByteView exif) { return png::replaceExif(file, exif); });
    return 0;
}
