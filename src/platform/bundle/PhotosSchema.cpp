#include "platform/bundle/PhotosSchema.h"

#include "library/PhotoLibrary.h"

namespace quorvane {

namespace {

using sqlite::Statement;

[[noreturn]] void throwUnknown(const QString& missing) {
    throw PhotoLibraryError(
        QStringLiteral("Fotoğraflar arşivinin veritabanı tanınmıyor: %1 bulunamadı").arg(missing));
}

bool hasTable(sqlite::Connection& connection, const QString& name) {
    Statement find(connection, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1");
    find.bind(1, name);
    return find.step();
}

bool hasColumn(sqlite::Connection& connection, const QString& table, const QString& column) {
    Statement find(connection, "SELECT 1 FROM pragma_table_info(?1) WHERE name = ?2");
    find.bind(1, table);
    find.bind(2, column);
    return find.step();
}

std::optional<std::int64_t> entityNumber(sqlite::Connection& connection, const QString& name) {
    Statement find(connection, "SELECT Z_ENT FROM Z_PRIMARYKEY WHERE Z_NAME = ?1");
    find.bind(1, name);
    return find.step() ? std::optional(find.integer(0)) : std::nullopt;
}

} // namespace

PhotosSchema PhotosSchema::of(sqlite::Connection& connection) {
    PhotosSchema schema;
    for (const QString& table : {QStringLiteral("ZASSET"), QStringLiteral("ZGENERICASSET")})
        if (schema.assetTable.isEmpty() && hasTable(connection, table))
            schema.assetTable = table;
    if (schema.assetTable.isEmpty() || !hasTable(connection, QStringLiteral("Z_PRIMARYKEY")))
        throwUnknown(QStringLiteral("ZASSET"));

    const auto album = entityNumber(connection, QStringLiteral("Album"));
    // Where both entities exist, the join is made with the general one.
    auto asset = entityNumber(connection, QStringLiteral("GenericAsset"));
    if (!asset)
        asset = entityNumber(connection, QStringLiteral("Asset"));
    if (!album || !asset)
        throwUnknown(QStringLiteral("Album"));
    schema.joinTable = QStringLiteral("Z_%1ASSETS").arg(*album);
    schema.joinAlbum = QStringLiteral("Z_%1ALBUMS").arg(*album);
    schema.joinAsset = QStringLiteral("Z_%1ASSETS").arg(*asset);
    schema.joinOrder = QStringLiteral("Z_FOK_%1ASSETS").arg(*asset);
    for (const QString& column : {schema.joinAlbum, schema.joinAsset, schema.joinOrder})
        if (!hasColumn(connection, schema.joinTable, column))
            throwUnknown(schema.joinTable + u'.' + column);

    const QString modified = QStringLiteral("ZMODIFICATIONDATE");
    schema.modified = hasColumn(connection, schema.assetTable, modified)
                          ? QStringLiteral("a.") + modified
                          : QStringLiteral("NULL");
    const QString byHand = QStringLiteral("Z_FOK_PARENTFOLDER");
    schema.folderOrder = hasColumn(connection, QStringLiteral("ZGENERICALBUM"), byHand)
                             ? byHand
                             : QStringLiteral("Z_PK");
    const QString kind = QStringLiteral("ZSAVEDASSETTYPE"); // 10: not copied into the library
    schema.isReferenced = hasColumn(connection, schema.assetTable, kind)
                              ? QStringLiteral("a.%1 = 10").arg(kind)
                              : QStringLiteral("0");
    schema.hasShares = hasColumn(connection, schema.assetTable, QStringLiteral("ZCOLLECTIONSHARE"));
    schema.hasCaptions = hasColumn(connection, QStringLiteral("ZASSETDESCRIPTION"),
                                   QStringLiteral("ZLONGDESCRIPTION"));
    return schema;
}

} // namespace quorvane
