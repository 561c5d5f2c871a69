#pragma once

#include "metadata/Rewrite.h"

#include <cstdlib>

namespace quorvane::fuzz {

/// What holds of every container whose Exif could be replaced: the block reads back as it was
/// written, and writing it again changes nothing. Ends the process when it does not hold.
template <class Read, class Replace>
void checkReplacedExif(ByteView file, Read read, Replace replace) {
    const QByteArray exif("MM\0*\0\0\0\x08\0\0\0\0\0\0\0", 15);
    QByteArray once;
    try {
        read(file);
        once = replace(file, viewOf(exif)).apply(file);
    } catch (const Error&) {
        return; // refused
    }
    if (read(viewOf(once)) != exif || !replace(viewOf(once), viewOf(exif)).isIdentity(viewOf(once)))
        std::abort();
}

} // namespace quorvane::fuzz
