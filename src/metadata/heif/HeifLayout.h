#pragma once

#include "metadata/Rewrite.h"
#include "metadata/heif/HeifBoxes.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace quorvane::heif {

/// New bytes over as many bytes of the source.
struct Patch {
    std::uint64_t offset = 0;
    QByteArray bytes;
};

/// A new file in order: stretches of the source that stay whole, and new bytes between them. It
/// knows where each byte of the source has gone, and so what an offset into the file has become.
class Layout {
  public:
    /// Stretches are kept in the order of the source.
    void keep(const Range& range);
    void insert(QByteArray bytes);
    void append(const Layout& layout);

    /// The length of the new file so far.
    std::uint64_t size() const { return size_; }

    /// Where a stretch of the source begins in the new file. Throws `ContainerError` when it is not
    /// within one kept stretch, for then its bytes are not the same any more.
    std::uint64_t newOffsetOf(const Range& range) const;

    /// The new file. Every patch lies within one kept stretch.
    Rewrite rewrite(std::vector<Patch> patches) const;

  private:
    struct Part {
        Range source;
        QByteArray bytes; ///< when not empty, the part; else `source`
    };
    struct Kept {
        Range source;
        std::uint64_t offset = 0; ///< in the new file
    };
    std::vector<Part> parts_;
    std::vector<Kept> kept_;
    std::uint64_t size_ = 0;
};

} // namespace quorvane::heif
