#include "platform/bundle/PhotosDatabase.h"

#include <QUuid>

#include <cmath>
#include <unordered_map>

namespace quorvane {

namespace {

using sqlite::Statement;

// The columns that `assetFrom` reads, in its order.
const QString assetColumns =
    QStringLiteral("a.ZUUID, a.ZKIND, a.ZKINDSUBTYPE, a.ZDATECREATED, a.ZLATITUDE, a.ZLONGITUDE, "
                   "{modified}");
// And those that `filesFrom` reads.
const QString originalColumns = QStringLiteral(
    "a.Z_PK, a.ZUUID, a.ZKIND, a.ZKINDSUBTYPE, a.ZDIRECTORY, a.ZFILENAME, x.ZORIGINALFILENAME, "
    "{isReferenced} FROM {asset} a LEFT JOIN ZADDITIONALASSETATTRIBUTES x ON x.ZASSET = a.Z_PK");
const QString seen = QStringLiteral("a.ZTRASHEDSTATE = 0 AND a.ZVISIBILITYSTATE = 0");
const QString inShare = QStringLiteral("a.ZTRASHEDSTATE = 0 AND a.ZCOLLECTIONSHARE");
constexpr std::int64_t livePhoto = 2;

AssetMediaType mediaTypeOf(std::int64_t kind) {
    switch (kind) {
    case 0:
        return AssetMediaType::image;
    case 1:
        return AssetMediaType::video;
    default:
        return AssetMediaType::unknown;
    }
}

std::optional<Date> dateAt(const Statement& row, int column) {
    return row.isNull(column) ? std::nullopt
                              : dateFromUnixSeconds(row.real(column) + referenceDateOffset);
}

/// -180/-180 stands for no place at all.
std::optional<GeoLocation> locationAt(const Statement& row, int column) {
    if (row.isNull(column) || row.isNull(column + 1))
        return std::nullopt;
    const double latitude = row.real(column), longitude = row.real(column + 1);
    if (!(std::abs(latitude) <= 90 && std::abs(longitude) <= 180))
        return std::nullopt;
    return GeoLocation{latitude, longitude, 0};
}

PhotoAsset assetFrom(const Statement& row) {
    PhotoAsset asset;
    asset.localIdentifier = AssetIdentifier::ofUuid(row.view(0));
    asset.mediaType = mediaTypeOf(row.integer(1));
    if (asset.mediaType == AssetMediaType::image && row.integer(2) == livePhoto)
        asset.mediaSubtypes |= mediaSubtypePhotoLive;
    asset.creationDate = dateAt(row, 3);
    asset.location = locationAt(row, 4);
    asset.modificationDate = dateAt(row, 6);
    return asset;
}

PhotosAssetFiles filesFrom(const Statement& row) {
    PhotosAssetFiles asset;
    asset.uuid = row.text(1);
    asset.mediaType = mediaTypeOf(row.integer(2));
    asset.isLive = row.integer(3) == livePhoto;
    asset.directory = row.text(4);
    asset.filename = row.text(5);
    asset.originalFilename = row.text(6);
    asset.isReferenced = row.integer(7) != 0;
    return asset;
}

} // namespace

PhotosDatabase::PhotosDatabase(const std::filesystem::path& file)
    : connection_(file, sqlite::Connection::Mode::foreign),
      schema_(PhotosSchema::of(connection_)) {}

QString PhotosDatabase::libraryUuid() {
    Statement row(connection_, "SELECT Z_UUID FROM Z_METADATA"); // Core Data's own table
    return row.step() ? row.text(0) : QString();
}

/// Puts the names of this version in place of {asset}, {join}, {joinAlbum}, {joinAsset}, ...
Statement PhotosDatabase::prepare(const QString& sql) {
    QString text = sql;
    text.replace(QLatin1String("{originalColumns}"), originalColumns)
        .replace(QLatin1String("{asset}"), schema_.assetTable)
        .replace(QLatin1String("{join}"), schema_.joinTable)
        .replace(QLatin1String("{joinAlbum}"), schema_.joinAlbum)
        .replace(QLatin1String("{joinAsset}"), schema_.joinAsset)
        .replace(QLatin1String("{joinOrder}"), schema_.joinOrder)
        .replace(QLatin1String("{folderOrder}"), schema_.folderOrder)
        .replace(QLatin1String("{assetColumns}"), assetColumns)
        .replace(QLatin1String("{isReferenced}"), schema_.isReferenced)
        .replace(QLatin1String("{modified}"), schema_.modified)
        .replace(QLatin1String("{seen}"), seen);
    return Statement(connection_, text);
}

std::vector<PhotoAsset> PhotosDatabase::collect(Statement& rows) const {
    std::vector<PhotoAsset> assets;
    while (rows.step()) {
        PhotoAsset asset = assetFrom(rows);
        const bool isCanonical = !asset.localIdentifier.uuid().isNull();
        if (isCanonical || !QUuid::fromString(rows.text(0)).isNull()) // a damaged row has no files
            assets.push_back(std::move(asset));
    }
    return assets;
}

std::vector<PhotoAsset> PhotosDatabase::assets(const char* condition) {
    Statement rows = prepare(QStringLiteral("SELECT {assetColumns} FROM {asset} a "
                                            "WHERE {seen} AND %1 ORDER BY a.ZDATECREATED, a.Z_PK")
                                 .arg(QLatin1String(condition)));
    return collect(rows);
}

std::vector<int> PhotosDatabase::counts(const std::vector<const char*>& conditions) {
    QStringList sums{QStringLiteral("0")};
    for (const char* condition : conditions)
        sums.append(QStringLiteral("SUM(%1)").arg(QLatin1String(condition)));
    Statement row =
        prepare(QStringLiteral("SELECT %1 FROM {asset} a WHERE {seen}").arg(sums.join(u',')));
    row.step();
    std::vector<int> counts;
    for (int column = 1; column < sums.size(); ++column)
        counts.push_back(static_cast<int>(row.integer(column)));
    return counts;
}

std::optional<PhotoAsset> PhotosDatabase::asset(const QString& uuid) {
    Statement rows = prepare(QStringLiteral("SELECT {assetColumns} FROM {asset} a "
                                            "WHERE a.ZUUID = ?1 AND a.ZTRASHEDSTATE = 0"));
    rows.bind(1, uuid);
    const std::vector<PhotoAsset> found = collect(rows);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<PhotoAsset> PhotosDatabase::assetsOf(const PhotosAlbum& album) {
    if (album.isShare || album.kind == PhotosAlbum::importSession) {
        Statement rows = prepare(
            QStringLiteral("SELECT {assetColumns} FROM {asset} a WHERE %1 = ?1 "
                           "ORDER BY a.ZDATECREATED, a.Z_PK")
                .arg(album.isShare ? inShare : QStringLiteral("{seen} AND a.ZIMPORTSESSION")));
        rows.bind(1, album.key);
        return collect(rows);
    }
    QString order = QStringLiteral("j.{joinOrder}, a.Z_PK");
    if (album.sortKey == 1)
        order.prepend(album.ascending ? QStringLiteral("a.ZDATECREATED, ")
                                      : QStringLiteral("a.ZDATECREATED DESC, "));
    else if (album.sortKey == 5)
        order.prepend(QStringLiteral("x.ZTITLE, "));
    // What others put into a shared album is not "visible" in the library itself.
    Statement rows =
        prepare(QStringLiteral("SELECT {assetColumns} FROM {join} j "
                               "JOIN {asset} a ON a.Z_PK = j.{joinAsset} "
                               "LEFT JOIN ZADDITIONALASSETATTRIBUTES x ON x.ZASSET = a.Z_PK "
                               "WHERE j.{joinAlbum} = ?1 AND a.ZTRASHEDSTATE = 0 AND "
                               "(a.ZVISIBILITYSTATE = 0 OR ?2) ORDER BY ") +
                order);
    rows.bind(1, album.key);
    rows.bind(2, album.kind == PhotosAlbum::sharedAlbum ? 1 : 0);
    return collect(rows);
}

std::vector<PhotosAlbum> PhotosDatabase::albums() {
    Statement rows =
        prepare(QStringLiteral("SELECT Z_PK, ZUUID, ZKIND, ZTITLE, ZPARENTFOLDER, ZCUSTOMSORTKEY, "
                               "ZCUSTOMSORTASCENDING, ZSTARTDATE FROM ZGENERICALBUM "
                               "WHERE ZTRASHEDSTATE = 0 AND ZUUID IS NOT NULL AND "
                               "(ZKIND IN (1506, 3999, 4000) OR "
                               "(ZKIND IN (2, 1505, 1507) AND ZTITLE IS NOT NULL)) "
                               "ORDER BY {folderOrder}, Z_PK"));
    std::vector<PhotosAlbum> albums;
    while (rows.step()) {
        PhotosAlbum album;
        album.key = rows.integer(0);
        album.uuid = rows.text(1);
        album.kind = static_cast<int>(rows.integer(2));
        album.title = rows.text(3);
        if (!rows.isNull(4))
            album.parent = rows.integer(4);
        album.sortKey = rows.integer(5);
        album.ascending = rows.isNull(6) || rows.integer(6) != 0;
        album.started = dateAt(rows, 7);
        albums.push_back(album);
    }
    countInto(albums);
    if (schema_.hasShares)
        addShares(albums);
    return albums;
}

void PhotosDatabase::addShares(std::vector<PhotosAlbum>& albums) {
    Statement rows = prepare(
        QStringLiteral("SELECT s.Z_PK, s.ZUUID, s.ZTITLE, COUNT(*) FROM ZSHARE s JOIN {asset} a "
                       "ON %1 = s.Z_PK WHERE s.ZTRASHEDSTATE = 0 AND s.ZUUID IS NOT NULL AND "
                       "s.ZTITLE IS NOT NULL GROUP BY s.Z_PK ORDER BY s.Z_PK")
            .arg(inShare));
    while (rows.step()) {
        PhotosAlbum album;
        album.key = rows.integer(0);
        album.uuid = rows.text(1);
        album.kind = PhotosAlbum::sharedAlbum;
        album.title = rows.text(2);
        album.count = static_cast<int>(rows.integer(3));
        album.isShare = true;
        albums.push_back(album);
    }
}

void PhotosDatabase::countInto(std::vector<PhotosAlbum>& albums) {
    std::unordered_map<std::int64_t, int> counts;
    Statement joined = prepare(
        QStringLiteral("SELECT g.Z_PK, COUNT(*) FROM ZGENERICALBUM g "
                       "JOIN {join} j ON j.{joinAlbum} = g.Z_PK "
                       "JOIN {asset} a ON a.Z_PK = j.{joinAsset} WHERE a.ZTRASHEDSTATE = 0 AND "
                       "(a.ZVISIBILITYSTATE = 0 OR g.ZKIND = 1505) GROUP BY g.Z_PK"));
    Statement imported = prepare(
        QStringLiteral("SELECT a.ZIMPORTSESSION, COUNT(*) FROM {asset} a "
                       "WHERE {seen} AND a.ZIMPORTSESSION IS NOT NULL GROUP BY a.ZIMPORTSESSION"));
    for (Statement* rows : {&joined, &imported})
        while (rows->step())
            counts[rows->integer(0)] = static_cast<int>(rows->integer(1));
    for (PhotosAlbum& album : albums)
        if (const auto found = counts.find(album.key); found != counts.end())
            album.count = found->second;
}

QString PhotosDatabase::captionOf(const QString& uuid) {
    if (!schema_.hasCaptions)
        return {};
    Statement row =
        prepare(QStringLiteral("SELECT d.ZLONGDESCRIPTION FROM {asset} a "
                               "JOIN ZADDITIONALASSETATTRIBUTES x ON x.ZASSET = a.Z_PK "
                               "JOIN ZASSETDESCRIPTION d ON d.Z_PK = x.ZASSETDESCRIPTION "
                               "WHERE a.ZUUID = ?1"));
    row.bind(1, uuid);
    return row.step() ? row.text(0) : QString();
}

std::optional<PhotosAssetFiles> PhotosDatabase::filesOf(const QString& uuid) {
    Statement row = prepare(QStringLiteral("SELECT {originalColumns} WHERE a.ZUUID = ?1"));
    row.bind(1, uuid);
    if (!row.step())
        return std::nullopt;
    PhotosAssetFiles asset = filesFrom(row);
    Statement files = prepare(
        QStringLiteral("SELECT ZVERSION, ZDATASTORESUBTYPE, ZRECIPEID FROM ZINTERNALRESOURCE "
                       "WHERE ZASSET = ?1 AND ZDATASTORECLASSID = 0 AND ZTRASHEDSTATE = 0 AND "
                       "((ZVERSION = 0 AND ZDATASTORESUBTYPE IN (17, 18)) OR "
                       "(ZVERSION = 2 AND ZDATASTORESUBTYPE IN (2, 16, 19)))"));
    files.bind(1, row.integer(0));
    while (files.step())
        asset.files.push_back(
            {files.integer(0) == 2, static_cast<int>(files.integer(1)), files.integer(2)});
    return asset;
}

std::vector<PhotosAssetFiles> PhotosDatabase::originals(std::int64_t& after) {
    constexpr int atOnce = 5'000; // about two megabytes
    // A key that is no number is greater than every number: it would come again and again.
    Statement rows = prepare(
        QStringLiteral("SELECT {originalColumns} WHERE a.Z_PK > ?1 AND typeof(a.Z_PK) = 'integer' "
                       "ORDER BY a.Z_PK LIMIT ?2"));
    rows.bind(1, after);
    rows.bind(2, atOnce);
    std::vector<PhotosAssetFiles> originals;
    while (rows.step()) {
        after = rows.integer(0);
        originals.push_back(filesFrom(rows));
    }
    return originals;
}

} // namespace quorvane
