#pragma once

#include "platform/bundle/PhotosBundleLibrary.h"
#include "sqlite/Sqlite.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

/// A library made of statements, for what the real ones do not have.
class MadeBundle : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(bundle / "database");
        database.emplace(bundle / "database/Photos.sqlite",
                         sqlite::Connection::Mode::readWriteCreate);
        database->execute("PRAGMA journal_mode = WAL");
    }

    /// A schema with these entity numbers.
    void make(const std::string& assetTable = "ZASSET", int albumEntity = 30, int assetEntity = 3,
              const char* assetEntityName = "Asset") {
        const std::string album = std::to_string(albumEntity), asset = std::to_string(assetEntity);
        table = assetTable;
        execute("CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER, Z_NAME TEXT);"
                "INSERT INTO Z_PRIMARYKEY VALUES (" +
                album + ", 'Album'), (" + asset + ", '" + assetEntityName +
                "'), (999, 'Asset');"
                "CREATE TABLE " +
                table +
                " (Z_PK INTEGER PRIMARY KEY, ZUUID, ZKIND DEFAULT 0, "
                "ZKINDSUBTYPE DEFAULT 0, ZDATECREATED, ZLATITUDE DEFAULT -180.0, "
                "ZLONGITUDE DEFAULT -180.0, ZDIRECTORY, ZFILENAME, ZTRASHEDSTATE DEFAULT 0, "
                "ZVISIBILITYSTATE DEFAULT 0, ZHIDDEN DEFAULT 0, ZFAVORITE DEFAULT 0, "
                "ZIMPORTSESSION, ZSAVEDASSETTYPE DEFAULT 3, ZCOLLECTIONSHARE);"
                "CREATE TABLE ZSHARE (Z_PK INTEGER PRIMARY KEY, ZUUID, ZTITLE, "
                "ZTRASHEDSTATE DEFAULT 0);"
                "CREATE TABLE ZADDITIONALASSETATTRIBUTES (ZASSET, ZORIGINALFILENAME, ZTITLE);"
                "CREATE TABLE ZINTERNALRESOURCE (ZASSET, ZVERSION, ZDATASTORESUBTYPE, ZRECIPEID, "
                "ZDATASTORECLASSID DEFAULT 0, ZTRASHEDSTATE DEFAULT 0);"
                "CREATE TABLE ZGENERICALBUM (Z_PK INTEGER PRIMARY KEY, ZUUID, ZKIND, ZTITLE, "
                "ZPARENTFOLDER, ZCUSTOMSORTKEY DEFAULT 0, ZCUSTOMSORTASCENDING DEFAULT 1, "
                "ZSTARTDATE, ZTRASHEDSTATE DEFAULT 0);"
                "CREATE TABLE Z_31ASSETS (decoy);"
                "CREATE TABLE Z_" +
                album + "ASSETS (Z_" + album + "ALBUMS, Z_" + asset + "ASSETS, Z_FOK_" + asset +
                "ASSETS);");
    }

    void execute(const std::string& sql) { database->execute(sql.c_str()); }

    static std::string uuid(int number) {
        return QStringLiteral("00000000-0000-4000-8000-%1")
            .arg(number, 12, 10, QLatin1Char('0'))
            .toStdString();
    }

    void addAsset(int key, const std::string& columns = {}, const std::string& values = {}) {
        execute("INSERT INTO " + table + " (Z_PK, ZUUID" + columns + ") VALUES (" +
                std::to_string(key) + ", '" + uuid(key) + "'" + values + ")");
    }

    static std::vector<int> keysOf(const AssetFetchResult& assets) {
        std::vector<int> keys;
        for (const PhotoAsset& asset : *assets)
            keys.push_back(asset.localIdentifier.text().mid(24, 12).toInt());
        return keys;
    }

    PhotoAsset asset(int key) {
        const auto found =
            library.fetchAssets(QStringList{QString::fromStdString(uuid(key) + "/L0/001")});
        return found->at(0);
    }

    TemporaryFolder folder;
    RecordingLog log;
    std::filesystem::path bundle = folder / "Made.photoslibrary", work = folder / "work";
    std::optional<sqlite::Connection> database;
    std::string table;
    PhotosBundleLibrary library{bundle, work, log};
};

} // namespace quorvane::test
