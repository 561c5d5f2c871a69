#pragma once

#include "Bytes.h"
#include "foundation/ByteReader.h"

#include <map>
#include <vector>

namespace quorvane::test {

struct HeifTestItem {
    std::uint32_t id = 0;
    QByteArray type;
    QByteArray bytes;
    int method = 0;
    int extents = 1;
    std::uint16_t dataReference = 0;
    std::uint16_t protection = 0;
};

struct HeifTestReference {
    QByteArray type;
    std::uint32_t from = 0;
    std::vector<std::uint32_t> to;
};

/// Builds tiny HEIF files of any layout.
struct HeifTestFile {
    std::vector<HeifTestItem> items;
    std::vector<HeifTestReference> references;
    std::uint32_t primary = 1;

    int ilocVersion = 1;
    int sizes = 0x4400;          ///< of offset, length, base and index, a digit each
    bool longIds = false;        ///< 32-bit numbers in `pitm`, `iinf`, `infe`, `iref`
    bool longMediaSizes = false; ///< 64-bit sizes of `mdat`
    bool longMetaSize = false;
    QByteArray order = "ftyp meta mdat"; ///< "mdat0" has an open length
    QByteArray chunkTable;               ///< "stco" or "co64": a `moov` in front of `meta`
    QByteArray inTable;                  ///< more boxes beside it
    QByteArray groups;                   ///< body of `grpl`

    QByteArray build() const;

  private:
    using Places = std::map<std::uint32_t, std::vector<std::uint64_t>>; ///< of extents, by item
    QByteArray meta(const Places& places) const;
    QByteArray iloc(const Places& places) const;
    QByteArray iinf() const;
    QByteArray moov(const Places& places) const;
    QByteArray pass(Places& places) const;
};

/// What an independent reader finds in a HEIF file. Any fault throws.
struct HeifContent {
    std::map<std::uint32_t, QByteArray> types;
    std::map<std::uint32_t, QByteArray> items; ///< bytes by number
    std::map<std::uint32_t, int> flags;
    std::vector<HeifTestReference> references;
    std::vector<std::pair<QByteArray, QByteArray>> others;    ///< boxes but `meta`, `mdat`, `moov`
    std::vector<QByteArray> chunks;                           ///< four bytes at each chunk offset
    std::vector<std::pair<QByteArray, QByteArray>> metaBoxes; ///< but iloc, iinf, iref, idat
    std::uint32_t primary = 0;

    explicit HeifContent(const QByteArray& file);
};

/// A little-endian TIFF block without entries, filled up to `length`.
QByteArray tiffBlock(qsizetype length, char filling = 'x');

} // namespace quorvane::test
