#include "metadata/heif/HeifLayout.h"

#include <algorithm>

namespace quorvane::heif {

void Layout::keep(const Range& range) {
    if (range.length == 0)
        return;
    parts_.push_back({range, {}});
    kept_.push_back({range, size_});
    size_ += range.length;
}

void Layout::insert(QByteArray bytes) {
    size_ += static_cast<std::uint64_t>(bytes.size());
    if (!bytes.isEmpty())
        parts_.push_back({{}, std::move(bytes)});
}

void Layout::append(const Layout& layout) {
    for (const Part& part : layout.parts_)
        part.bytes.isEmpty() ? keep(part.source) : insert(part.bytes);
}

std::uint64_t Layout::newOffsetOf(const Range& range) const {
    const auto after = std::ranges::upper_bound(
        kept_, range.offset, {}, [](const Kept& kept) { return kept.source.offset; });
    if (after == kept_.begin() || !std::prev(after)->source.contains(range))
        throw ContainerError(QStringLiteral("Öğe verisi değişmeyen bir bölümde değil"));
    const Kept& kept = *std::prev(after);
    return kept.offset + (range.offset - kept.source.offset);
}

Rewrite Layout::rewrite(std::vector<Patch> patches) const {
    std::ranges::sort(patches, {}, &Patch::offset);
    auto patch = patches.begin();
    Rewrite result;
    for (const Part& part : parts_) {
        if (!part.bytes.isEmpty()) {
            result.insert(part.bytes);
            continue;
        }
        std::uint64_t at = part.source.offset;
        for (; patch != patches.end() && patch->offset < part.source.end(); ++patch) {
            result.keep(at, patch->offset - at);
            result.insert(patch->bytes);
            at = patch->offset + static_cast<std::uint64_t>(patch->bytes.size());
        }
        result.keep(at, part.source.end() - at);
    }
    return result;
}

} // namespace quorvane::heif
