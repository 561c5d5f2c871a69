#pragma once

#include "metadata/Rewrite.h"
#include "metadata/exif/TiffDirectory.h"

#include <map>

namespace quorvane::exif {

/// Changes a block by patches of equal length and by additions behind it.
class Editor {
  public:
    Editor(ByteView block, const tiff::Format& format) : block_(block), format_(format) {}

    /// Overwrites bytes of the block. Throws `ContainerError` when they overlap an earlier patch.
    void overwrite(std::uint64_t offset, const QByteArray& bytes);

    /// Where the next addition will stand.
    std::uint64_t end() const { return tailAt() + static_cast<std::uint64_t>(tail_.size()); }
    std::uint64_t append(const QByteArray& bytes);

    /// Gives a directory a field, in place of the one it has of that tag.
    void set(tiff::Directory& directory, const tiff::Field& field);

    /// Writes a changed directory: where it stands when it has as many fields as before, else
    /// behind the block. Returns its place.
    std::uint64_t place(const tiff::Directory& directory, size_t entriesBefore);

    Rewrite finish() const;

  private:
    /// Zeros stand between the block and the additions: a directory that ends the block without
    /// its link goes on reading as the last one.
    std::uint64_t tailAt() const {
        return block_.size() + format_.offsetWidth() + block_.size() % 2;
    }
    bool overwriteText(tiff::Entry& entry, const tiff::Field& field);

    ByteView block_;
    tiff::Format format_;
    std::map<std::uint64_t, QByteArray> patches_;
    QByteArray tail_;
};

} // namespace quorvane::exif
