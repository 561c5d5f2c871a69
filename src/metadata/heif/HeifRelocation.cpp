#include "metadata/heif/HeifRelocation.h"

#include "metadata/heif/HeifLayout.h"
#include "metadata/heif/HeifMovie.h"

#include <algorithm>

namespace quorvane::heif {

namespace {

/// A new `meta` and the block behind it.
struct Change {
    const Picture& picture;
    QByteArray payload;
    Locations locations;                  ///< of the old file, with one extent for the block
    std::size_t location = 0;             ///< the block's, among them
    std::optional<QByteArray> itemInfo;   ///< when set, the new `iinf`
    std::optional<QByteArray> references; ///< when set, the new `iref`
    std::optional<Box> dropped;           ///< the box behind `meta` that holds the old block only
};

/// The box that an earlier rewrite put behind `meta`.
std::optional<Box> ownBoxOf(const Picture& picture, const MetadataItem& item) {
    const auto next = std::ranges::find(picture.boxes, picture.meta.whole.end(),
                                        [](const Box& box) { return box.whole.offset; });
    const bool isOwn = next != picture.boxes.end() && next->type == fourCC("mdat") &&
                       item.ranges == std::vector<Range>{next->body} && canOverwrite(picture, item);
    return isOwn ? std::optional<Box>(*next) : std::nullopt;
}

Change replacementOf(const Picture& picture, const MetadataItem& item, QByteArray payload) {
    Change change{picture,      std::move(payload), picture.locations,      item.location,
                  std::nullopt, std::nullopt,       ownBoxOf(picture, item)};
    change.locations.entries[item.location].extents.resize(1);
    return change;
}

Change additionTo(const Picture& picture, const ItemKind& kind, QByteArray payload,
                  const Limits& limits) {
    if (std::ranges::find(picture.items, picture.primary, &Item::id) == picture.items.end())
        throw ParseError(QStringLiteral("Birincil görsel öğeler arasında yok"));
    const std::uint32_t id = unusedId(picture, limits);
    Change change{picture,
                  std::move(payload),
                  picture.locations,
                  picture.locations.entries.size(),
                  withItem(picture.file, requiredBox(picture.children, fourCC("iinf")), id, kind),
                  withReference(picture.file, onlyBox(picture.children, fourCC("iref")),
                                fourCC("cdsc"), id, picture.primary),
                  std::nullopt};
    Location location;
    location.item = id;
    location.extents.resize(1);
    change.locations.entries.push_back(location);
    return change;
}

Layout layOutMeta(const Change& change, const QByteArray& iloc) {
    Layout body;
    body.keep({change.picture.meta.body.offset, 4}); // version and flags
    bool hasReferences = false;
    for (const Box& child : change.picture.children) {
        hasReferences |= child.type == fourCC("iref");
        if (child.type == fourCC("iloc"))
            body.insert(iloc);
        else if (child.type == fourCC("iinf") && change.itemInfo)
            body.insert(*change.itemInfo);
        else if (child.type == fourCC("iref") && change.references)
            body.insert(*change.references);
        else
            body.keep(child.whole);
    }
    if (change.references && !hasReferences)
        body.insert(*change.references);
    return body;
}

struct NewFile {
    Layout layout;
    std::uint64_t blockOffset = 0;
};

NewFile layOut(const Change& change, const QByteArray& iloc) {
    const Box& meta = change.picture.meta;
    const Layout body = layOutMeta(change, iloc);
    NewFile file;
    file.layout.keep({0, meta.whole.offset});
    file.layout.insert(boxHeader(meta.type, body.size()));
    file.layout.append(body);
    file.layout.insert(
        boxHeader(fourCC("mdat"), static_cast<std::uint64_t>(change.payload.size())));
    file.blockOffset = file.layout.size();
    file.layout.insert(change.payload);
    const std::uint64_t rest = change.dropped ? change.dropped->whole.end() : meta.whole.end();
    file.layout.keep({rest, change.picture.file.size() - rest});
    return file;
}

/// Corrects the location of an item that keeps its bytes.
void move(Location& location, const Layout& layout) {
    if (location.method == Location::inItemData || location.method == Location::inItem)
        return;
    if (location.method != Location::inFile || location.dataReference != 0)
        throw ContainerError(QStringLiteral("Bir öğe bu dosyanın dışında"));
    const std::uint64_t oldBase = location.base;
    for (Extent& extent : location.extents) {
        if (extent.length == 0 || extent.offset > UINT64_MAX - oldBase)
            throw ContainerError(QStringLiteral("Bir öğenin yeri belli değil"));
        extent.offset = layout.newOffsetOf({oldBase + extent.offset, extent.length});
        location.base = std::min(location.base, extent.offset);
    }
    for (Extent& extent : location.extents)
        extent.offset -= location.base;
}

/// The locations in the new file, in fields at least as wide as those of `fields`.
Locations movedLocations(const Change& change, const Locations& fields, const NewFile& file) {
    Locations moved = fields;
    moved.entries = change.locations.entries;
    for (std::size_t i = 0; i < moved.entries.size(); ++i) {
        Location& location = moved.entries[i];
        if (i == change.location)
            location = {location.item,
                        Location::inFile,
                        0,
                        0,
                        {{0, file.blockOffset, static_cast<std::uint64_t>(change.payload.size())}}};
        else
            move(location, file.layout);
    }
    return moved;
}

Rewrite rewrite(const Change& change, const Limits& limits) {
    // Wider fields make `iloc` longer and move what it points at, which may need wider fields
    // still; three kinds of field that grow twice at most end this soon.
    Locations iloc = change.locations;
    bool isSettled = false;
    while (!isSettled) {
        iloc = movedLocations(change, iloc, layOut(change, iloc.toBox()));
        isSettled = !iloc.widen();
    }
    const Layout layout = layOut(change, iloc.toBox()).layout;
    return layout.rewrite(movedChunkOffsets(change.picture, layout, limits));
}

} // namespace

Rewrite relocate(const Picture& picture, const std::optional<MetadataItem>& item,
                 const ItemKind& kind, QByteArray payload, const Limits& limits) {
    if (std::ranges::any_of(picture.items, &Item::isProtected))
        throw ContainerError(QStringLiteral("Dosyada korumalı öğeler var"));
    return rewrite(item ? replacementOf(picture, *item, std::move(payload))
                        : additionTo(picture, kind, std::move(payload), limits),
                   limits);
}

} // namespace quorvane::heif
