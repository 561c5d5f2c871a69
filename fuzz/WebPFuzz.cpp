#include "ReplacedExif.h"
#include "metadata/webp/WebpContainer.h"

using namespace quorvane;

/// Any bytes are refused with an error of ours or rewritten consistently.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::checkReplacedExif(
        {data, size}, [](ByteView file) { return webp::readExif(file); },
        [](ByteView file, ByteView exif) { return webp::replaceExif(file, exif); });
    return 0;
}
