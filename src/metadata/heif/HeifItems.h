#pragma once

#include "metadata/heif/HeifBoxes.h"
#include "metadata/heif/HeifContainer.h"

#include <cstdint>
#include <optional>
#include <vector>

/// What the `meta` box of a HEIF file says of its items.
namespace quorvane::heif {

struct Item {
    std::uint32_t id = 0;
    std::uint32_t type = 0; ///< 0 in the entries of old versions, which have none
    bool isProtected = false;
    QByteArray contentType = {}; ///< of a "mime" item; with ";" and its encoding where it has one
};

/// What kind of item holds some metadata.
struct ItemKind {
    std::uint32_t type = 0;
    QByteArray contentType = {};

    bool isOf(const Item& item) const {
        return item.type == type && item.contentType == contentType;
    }
};
inline const ItemKind exifKind{fourCC("Exif")};
inline const ItemKind xmpKind{fourCC("mime"), "application/rdf+xml"};

struct Reference {
    std::uint32_t type = 0;
    std::uint32_t from = 0;
    std::vector<std::uint32_t> to;
};

/// A part of an item's bytes. A length of 0 stands for all of `idat`; in a file it is not defined.
struct Extent {
    std::uint64_t index = 0;
    std::uint64_t offset = 0; ///< from the location's base
    std::uint64_t length = 0;
};

/// Where the bytes of an item stand.
struct Location {
    enum Method : std::uint8_t { inFile = 0, inItemData = 1, inItem = 2 };

    std::uint32_t item = 0;
    std::uint8_t method = inFile;
    std::uint16_t dataReference = 0; ///< 0: in this very file
    std::uint64_t base = 0;
    std::vector<Extent> extents;
};

/// The `iloc` box.
struct Locations {
    std::uint8_t version = 0;
    std::uint32_t flags = 0;
    unsigned offsetSize = 0; ///< bytes of a field: 0, 4 or 8
    unsigned lengthSize = 0;
    unsigned baseSize = 0;
    unsigned indexSize = 0;
    std::vector<Location> entries;

    /// Makes the fields wide enough for the entries' values; true when one had to grow.
    bool widen();

    /// The box. Throws `ContainerError` when this version cannot hold the entries.
    QByteArray toBox() const;
};

/// A HEIF file as far as it concerns its items. Refers to the file's bytes, does not own them.
struct Picture {
    ByteView file;
    std::vector<Box> boxes; ///< of the file
    Box meta;
    std::vector<Box> children; ///< of `meta`
    std::uint32_t primary = 0;
    std::vector<Item> items;
    std::vector<Reference> references;
    Locations locations;
    std::optional<Box> itemData; ///< `idat`

    /// The stretches of the file that hold an item's bytes; none when it is stored in another file
    /// or item, or out of bounds.
    std::optional<std::vector<Range>> rangesOf(const Location& location) const;
};

/// Throws `ParseError`.
Picture readPicture(ByteView file, const Limits& limits);

/// The `iinf` box with one more entry: a hidden item of a kind without a name.
QByteArray withItem(ByteView file, const Box& itemInfo, std::uint32_t id, const ItemKind& kind);

/// The `iref` box (a new one when there is none) with one more reference. Throws `ContainerError`
/// when its version cannot hold the numbers.
QByteArray withReference(ByteView file, const std::optional<Box>& references, std::uint32_t type,
                         std::uint32_t from, std::uint32_t to);

/// A number that no item and no entity group has. Throws `ContainerError` when there is none.
std::uint32_t unusedId(const Picture& picture, const Limits& limits);

} // namespace quorvane::heif
