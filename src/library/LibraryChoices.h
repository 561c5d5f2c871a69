#pragma once

#include "foundation/Preferences.h"

#include <filesystem>
#include <vector>

namespace quorvane {

/// Originals that a library names at one place and that are found at another, both absolute.
struct OriginalsMapping {
    std::filesystem::path from; ///< as the library names it, "/Volumes/NAME" for one
    std::filesystem::path to;   ///< on this machine

    bool operator==(const OriginalsMapping&) const = default;

    /// "FROM=TO". Throws `Error` unless both are absolute.
    static OriginalsMapping parse(const QString& text);
};

/// What a person chose for one library, remembered for it. Any thread.
struct LibraryChoices {
    /// Which version of an edited picture or movie is sent.
    enum class Versions { original, edited };

    /// What of a live photo is sent.
    enum class Live {
        still,
        motion, ///< still and movie in one file, as a Motion Photo
    };

    std::vector<OriginalsMapping> originals;
    Versions versions = Versions::original;
    Live live = Live::still;
    bool captions = false;     ///< what was written about an item is its description, too
    bool mirrorAlbums = false; ///< the library's albums are albums at the destination, too

    bool operator==(const LibraryChoices&) const = default;

    /// Tells files that are made of an asset in one manner from those made in another.
    QString form() const;

    /// Takes the place of the mapping of the same `from`.
    void add(const OriginalsMapping& mapping);

    /// `library` is what tells the library from every other. What cannot be read is the default.
    static LibraryChoices of(const QString& library, const Preferences& preferences);
    void save(const QString& library, Preferences& preferences) const;
};

} // namespace quorvane
