#pragma once

#include <QString>

#include <span>

namespace quorvane {

/// A smart album that an asset's own row decides, with PhotoKit's number.
struct SmartAlbum {
    int subtype;
    const char* title;
    const char* condition; ///< on the asset table `a`

    QString identifier() const; ///< local identifier
};

/// In the order in which they are listed.
std::span<const SmartAlbum> smartAlbums();

} // namespace quorvane
