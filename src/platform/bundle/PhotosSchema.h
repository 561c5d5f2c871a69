#pragma once

#include "sqlite/Sqlite.h"

namespace quorvane {

/// The names in a Photos database that differ between its versions, read off the database itself.
/// Core Data numbers its join tables by entity, and the numbers go up and down.
struct PhotosSchema {
    QString assetTable;   ///< ZASSET, or ZGENERICASSET
    QString joinTable;    ///< which assets stand in which album
    QString joinAlbum;    ///< its album column
    QString joinAsset;    ///< its asset column
    QString joinOrder;    ///< its column of the order made by hand
    QString modified;     ///< when the asset `a` was last changed; NULL where that is not known
    QString folderOrder;  ///< the column that orders what stands in a folder
    QString isReferenced; ///< of the asset `a`: whether its original stands outside the bundle
    /// Shared albums are rows of ZSHARE since macOS 26, and an asset of one names it.
    bool hasShares = false;
    bool hasCaptions = false; ///< they are rows of ZASSETDESCRIPTION

    /// Throws `PhotoLibraryError` when this is no Photos database, `SqliteError` when it is none
    /// at all.
    static PhotosSchema of(sqlite::Connection& connection);
};

} // namespace quorvane
