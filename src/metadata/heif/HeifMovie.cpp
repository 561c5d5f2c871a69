#include "metadata/heif/HeifMovie.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace quorvane::heif {

namespace {

bool isOneOf(std::uint32_t type, std::initializer_list<std::uint32_t> types) {
    return std::ranges::find(types, type) != types.end();
}

/// One walk over all movies of a file.
class ChunkOffsets {
  public:
    ChunkOffsets(ByteView file, const Layout& layout, const Limits& limits)
        : file_(file),
          layout_(layout),
          boxes_(limits.boxes, limits.stop),
          chunks_(limits.chunks, limits.stop),
          depth_(limits.depth) {}

    void visit(const Box& box, unsigned level);
    std::vector<Patch> take() { return std::move(patches_); }

  private:
    void moveTable(const Box& box, unsigned width);
    void requireOwnData(const Box& dataReferences);
    void requireNoItems(const Box& box) const;

    ByteView file_;
    const Layout& layout_;
    Allowance boxes_;
    Allowance chunks_;
    unsigned depth_;
    std::vector<Patch> patches_;
};

void ChunkOffsets::visit(const Box& box, unsigned level) {
    if (level > depth_)
        throw ParseError(QStringLiteral("Kutular çok derin"));
    if (isOneOf(box.type, {fourCC("moov"), fourCC("trak"), fourCC("mdia"), fourCC("minf"),
                           fourCC("dinf"), fourCC("stbl")})) {
        for (const Box& child : boxesIn(file_, box.body, boxes_))
            visit(child, level + 1);
    } else if (box.type == fourCC("stco")) {
        moveTable(box, 4);
    } else if (box.type == fourCC("co64")) {
        moveTable(box, 8);
    } else if (box.type == fourCC("dref")) {
        requireOwnData(box);
    } else if (isOneOf(box.type, {fourCC("meta"), fourCC("udta")})) {
        requireNoItems(box);
    } else if (isOneOf(box.type, {fourCC("mvex"), fourCC("saio"), fourCC("cmov")})) {
        throw ContainerError(QStringLiteral("Filmdeki konumlar düzeltilemiyor"));
    }
}

void ChunkOffsets::moveTable(const Box& box, unsigned width) {
    FullBox table(file_, box);
    const std::uint32_t count = table.reader.u32();
    chunks_.spend(count);
    const std::uint64_t begin = box.body.offset + table.reader.offset();
    ByteWriter moved;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t offset = layout_.newOffsetOf({table.reader.unsignedOf(width), 1});
        if (width == 4 && offset > std::numeric_limits<std::uint32_t>::max())
            throw ContainerError(QStringLiteral("Filmdeki konumlar 32 bite sığmıyor"));
        moved.number(offset, width);
    }
    patches_.push_back({begin, moved.take()});
}

void ChunkOffsets::requireOwnData(const Box& dataReferences) {
    FullBox dref(file_, dataReferences);
    dref.reader.u32(); // the number of entries
    const std::uint64_t at = dref.reader.offset();
    const Range entries{dataReferences.body.offset + at, dataReferences.body.length - at};
    for (const Box& entry : boxesIn(file_, entries, boxes_))
        if ((FullBox(file_, entry).flags & 1) == 0)
            throw ContainerError(QStringLiteral("Film başka bir dosyaya başvuruyor"));
}

void ChunkOffsets::requireNoItems(const Box& box) const {
    constexpr std::array<std::uint8_t, 4> iloc{'i', 'l', 'o', 'c'};
    const ByteView body = bytesOf(file_, box.body);
    if (std::search(body.begin(), body.end(), iloc.begin(), iloc.end()) != body.end())
        throw ContainerError(QStringLiteral("Filmin kendi öğeleri var"));
}

} // namespace

std::vector<Patch> movedChunkOffsets(const Picture& picture, const Layout& layout,
                                     const Limits& limits) {
    ChunkOffsets offsets(picture.file, layout, limits);
    for (const Box& box : picture.boxes) {
        if (isOneOf(box.type, {fourCC("moof"), fourCC("mfra"), fourCC("sidx"), fourCC("ssix")}))
            throw ContainerError(QStringLiteral("Dosyada taşınamayan bir dizin var"));
        if (box.type == fourCC("moov"))
            offsets.visit(box, 0);
    }
    return offsets.take();
}

} // namespace quorvane::heif
