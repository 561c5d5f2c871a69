#pragma once

#include "library/PhotoLibrary.h"
#include "platform/bundle/PhotosSchema.h"

#include <map>
#include <vector>

namespace quorvane {

/// One row of the albums and folders; `kind` has Photos' own numbers.
struct PhotosAlbum {
    enum Kind : int {
        album = 2,
        sharedAlbum = 1505,
        importSession = 1506,
        smartAlbum = 1507, ///< made by the person; its members are not stored
        rootFolder = 3999,
        folder = 4000,
    };

    std::int64_t key = 0;
    QString uuid;
    int kind = album;
    QString title;
    std::optional<std::int64_t> parent;
    std::int64_t sortKey = 0; ///< 0 by hand, 1 by date, 5 by title
    bool ascending = true;
    std::optional<Date> started; ///< of an import session
    int count = 0;               ///< assets that can be seen
    bool isShare = false;        ///< `key` is one of the table of shares, not of albums
};

/// A file that belongs to an asset, as the database describes it.
struct PhotosFile {
    enum Store : int {
        rawTwin = 17,
        pairedVideo = 18,
        editedPhoto = 2,
        editedVideo = 16,
        editedPairedVideo = 19,
    };
    bool edited = false; ///< a rendered edit; else part of the original
    int store = 0;
    std::int64_t recipe = 0;
};

/// What the database knows of an asset's files. Texts are foreign: nothing is a safe path yet.
struct PhotosAssetFiles {
    QString uuid;
    AssetMediaType mediaType = AssetMediaType::unknown;
    bool isLive = false;
    bool isReferenced = false; ///< the original stands outside the bundle
    QString directory;         ///< absolute then
    QString filename;
    QString originalFilename;
    std::vector<PhotosFile> files;
};

/// Reads the copy of a Photos database, of every version since macOS 10.15. Used from one thread
/// at a time. Every operation throws `SqliteError` when the file is damaged or absurd, and
/// `Cancelled` when it is stopped.
class PhotosDatabase {
  public:
    explicit PhotosDatabase(const std::filesystem::path& file);

    /// What comes from now on can be stopped.
    void stopOn(std::stop_token stop) { connection_.stopOn(std::move(stop)); }

    /// The library's own identifier; empty when the database has none.
    QString libraryUuid();

    /// Not trashed and visible: hidden ones too, burst frames that were not picked not. By creation
    /// date, then age in the library. `condition` is a part of an SQL WHERE over the asset table.
    std::vector<PhotoAsset> assets(const char* condition = "1");
    /// How many of them meet each condition, in one pass.
    std::vector<int> counts(const std::vector<const char*>& conditions);

    std::optional<PhotoAsset> asset(const QString& uuid);

    /// In the album's own order.
    std::vector<PhotoAsset> assetsOf(const PhotosAlbum& album);

    /// What is not trashed, in the order of the folders they stand in.
    std::vector<PhotosAlbum> albums();

    /// What the person wrote about the asset; empty when nothing.
    QString captionOf(const QString& uuid);

    std::optional<PhotosAssetFiles> filesOf(const QString& uuid);
    /// Where the originals of the next assets are, without `files`; empty at the end. `after` is 0
    /// at first and moved on.
    std::vector<PhotosAssetFiles> originals(std::int64_t& after);

  private:
    sqlite::Statement prepare(const QString& sql);
    std::vector<PhotoAsset> collect(sqlite::Statement& rows) const;
    void addShares(std::vector<PhotosAlbum>& albums);
    void countInto(std::vector<PhotosAlbum>& albums);

    sqlite::Connection connection_;
    PhotosSchema schema_;
};

} // namespace quorvane
