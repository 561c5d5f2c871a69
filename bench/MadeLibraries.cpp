#include "bench/MadeLibraries.h"

#include "foundation/File.h"

#include <fcntl.h>

namespace quorvane::bench {

namespace {

const std::filesystem::path& created(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    return folder;
}

constexpr const char* schema = R"(
PRAGMA journal_mode = WAL;
CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER, Z_NAME TEXT);
INSERT INTO Z_PRIMARYKEY VALUES (30, 'Album'), (3, 'Asset');
CREATE TABLE ZASSET (Z_PK INTEGER PRIMARY KEY, ZUUID TEXT, ZKIND DEFAULT 0,
  ZKINDSUBTYPE DEFAULT 0, ZDATECREATED, ZMODIFICATIONDATE, ZLATITUDE DEFAULT -180.0,
  ZLONGITUDE DEFAULT -180.0, ZDIRECTORY, ZFILENAME, ZTRASHEDSTATE DEFAULT 0,
  ZVISIBILITYSTATE DEFAULT 0, ZHIDDEN DEFAULT 0, ZFAVORITE DEFAULT 0, ZIMPORTSESSION, ZREST BLOB);
CREATE UNIQUE INDEX Z_UUID ON ZASSET (ZUUID);
CREATE TABLE ZADDITIONALASSETATTRIBUTES (ZASSET, ZORIGINALFILENAME, ZTITLE, ZREST BLOB);
CREATE INDEX Z_ATTRIBUTES ON ZADDITIONALASSETATTRIBUTES (ZASSET);
CREATE TABLE ZINTERNALRESOURCE (ZASSET, ZVERSION, ZDATASTORESUBTYPE, ZRECIPEID,
  ZDATASTORECLASSID DEFAULT 0, ZTRASHEDSTATE DEFAULT 0);
CREATE TABLE ZGENERICALBUM (Z_PK INTEGER PRIMARY KEY, ZUUID, ZKIND, ZTITLE, ZPARENTFOLDER,
  ZCUSTOMSORTKEY DEFAULT 0, ZCUSTOMSORTASCENDING DEFAULT 1, ZSTARTDATE, ZTRASHEDSTATE DEFAULT 0);
CREATE TABLE Z_30ASSETS (Z_30ALBUMS, Z_3ASSETS, Z_FOK_3ASSETS);
)";

const QString assets = QStringLiteral(R"(
BEGIN;
WITH RECURSIVE n(i) AS (SELECT {first} UNION ALL SELECT i + 1 FROM n WHERE i < {last})
INSERT INTO ZASSET (Z_PK, ZUUID, ZKIND, ZDATECREATED, ZDIRECTORY, ZFILENAME, ZREST)
SELECT i, printf('%08X-0000-4000-8000-%012X', i * 7919 % 4294967291, i), i % 10 = 0, i * 600.0,
  printf('%X', i % 16), printf('%d.jpg', i), zeroblob(400) FROM n;
INSERT INTO ZADDITIONALASSETATTRIBUTES SELECT Z_PK, 'IMG_' || Z_PK || '.JPG', NULL, zeroblob(200)
  FROM ZASSET WHERE Z_PK BETWEEN {first} AND {last};
INSERT OR IGNORE INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE)
SELECT DISTINCT Z_PK / 1000, 'ALBUM' || Z_PK / 1000, 2, 'Album ' || Z_PK / 1000 FROM ZASSET
  WHERE Z_PK BETWEEN {first} AND {last};
INSERT INTO Z_30ASSETS SELECT Z_PK / 1000, Z_PK, Z_PK FROM ZASSET WHERE Z_PK BETWEEN {first} AND {last};
COMMIT;
)");

QByteArray assetsFrom(std::int64_t first, std::int64_t last) {
    return QString(assets)
        .replace(QLatin1String("{first}"), QString::number(first))
        .replace(QLatin1String("{last}"), QString::number(last))
        .toUtf8();
}

} // namespace

MadeBundle::MadeBundle(const std::filesystem::path& bundle, int count)
    : database_(created(bundle / "database") / "Photos.sqlite",
                sqlite::Connection::Mode::readWriteCreate) {
    database_.execute(schema);
    database_.execute(assetsFrom(1, count).constData());
    database_.execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

void MadeBundle::change() {
    sqlite::Statement last(database_, "SELECT MAX(Z_PK) FROM ZASSET");
    last.step();
    const std::int64_t next = last.integer(0) + 1;
    last.reset();
    database_.execute(assetsFrom(next, next).constData());
    database_.execute("UPDATE ZASSET SET ZDATECREATED = ZDATECREATED + 1 WHERE Z_PK = 1");
}

void makeFiles(const std::filesystem::path& folder, const char* prefix, int count) {
    for (int i = 0; i < count; ++i) {
        const auto file = folder / std::to_string(i / 1000) / (prefix + std::to_string(i) + ".jpg");
        if (i % 1000 == 0)
            std::filesystem::create_directories(file.parent_path());
        openFile(file, O_WRONLY | O_CREAT, 0644);
    }
}

} // namespace quorvane::bench
