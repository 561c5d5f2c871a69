#include "library/UndatedReview.h"

#include "foundation/File.h"
#include "library/AlbumCollector.h"
#include "metadata/movie/MovieDates.h"
#include "metadata/movie/MovieMetadata.h"

#include <algorithm>

namespace quorvane {

namespace {

/// Whether a date from there says when a picture was taken.
bool isTrusted(const QString& source) {
    const auto known = dateSourceFrom(source);
    return known && *known != DateSource::numberInName && *known != DateSource::fileSaveDate &&
           *known != DateSource::today;
}

/// One file that cannot be read just now costs the review nothing but what it would say.
template <typename Read>
auto ifReadable(Read&& read) -> decltype(read()) {
    try {
        return read();
    } catch (const FileError&) {
        return std::nullopt;
    }
}

class Review {
  public:
    Review(const UndatedServices& services, const std::stop_token& stop, int filesRead)
        : s_(services), stop_(stop), filesLeft_(filesRead) {}

    std::vector<UndatedItem> run() {
        for (const SyncRecord& record : s_.db.fetchRecords(SyncStatus::dateUnresolved))
            held_.insert(record.assetLocalIdentifier, record);
        if (held_.empty())
            return {};
        for (auto& [identifier, date] : RecordDates(s_.db).all())
            if (isTrusted(date.source))
                dates_.insert(identifier, date.date);
        const std::vector<ItemAlbum> albums = listItems();
        const DateReasoning reasoning(std::move(items_), albums, s_.clock.now());
        judge(reasoning);
        return std::move(undated_);
    }

  private:
    /// Returns the albums, where the items do not stand in folders.
    std::vector<ItemAlbum> listItems() {
        const AssetFetchResult assets = s_.library.fetchAssets(stop_);
        items_.reserve(assets->size());
        bool hasFolders = true;
        for (const PhotoAsset& asset : *assets) {
            if (stop_.stop_requested())
                throw Cancelled();
            if (const auto resource = resourceToStage(s_.library.assetResources(asset)))
                hasFolders = listItem(asset, *resource) && hasFolders;
        }
        return hasFolders ? std::vector<ItemAlbum>() : listAlbums();
    }

    /// False when it does not stand in a folder of the person's own.
    bool listItem(const PhotoAsset& asset, const PhotoAssetResource& resource) {
        const QString& identifier = asset.localIdentifier;
        const auto held = held_.constFind(identifier);
        const std::filesystem::path file = s_.root / resource.location;
        DatedItem item;
        item.identifier = identifier;
        item.name = resource.originalFilename;
        item.isMovie = asset.mediaType == AssetMediaType::video;
        if (pathText(resource.location.filename()) == resource.originalFilename) {
            item.folder = pathText(resource.location.parent_path());
            item.fileTime = asset.modificationDate;
        }
        const auto noted = dates_.constFind(identifier);
        if (held == held_.constEnd())
            item.date = asset.creationDate           ? asset.creationDate
                        : noted != dates_.constEnd() ? std::optional(*noted)
                                                     : readDate(asset, item.name, file);
        else
            item.partnerDate = movieDateOf(asset);
        if (held != held_.constEnd())
            undated_.push_back({*held, item.name, item.folder.value_or(QString()), false, {}});
        if (held != held_.constEnd())
            files_.push_back(file);
        const bool hasFolder = item.folder.has_value();
        items_.push_back(std::move(item));
        return hasFolder;
    }

    std::optional<Date> readDate(const PhotoAsset& asset, const QString& name,
                                 const std::filesystem::path& file) {
        if (filesLeft_ <= 0)
            return std::nullopt;
        --filesLeft_;
        const auto resolved = ifReadable([&] {
            return s_.metadata.resolveDate(file, asset.facts(), asset.localIdentifier,
                                           DateFallbackMode::strictNone, name, stop_);
        });
        return resolved && isTrusted(rawValue(resolved->source)) ? std::optional(resolved->date)
                                                                 : std::nullopt;
    }

    std::optional<Date> movieDateOf(const PhotoAsset& asset) {
        if ((asset.mediaSubtypes & mediaSubtypePhotoLive) == 0)
            return std::nullopt;
        for (const PhotoAssetResource& resource : s_.library.assetResources(asset))
            if (resource.type == AssetResourceType::pairedVideo && resource.fileSize)
                return ifReadable([&] {
                    return readExistingVideoDate(s_.root / resource.location, {.stop = stop_},
                                                 resource.originalFilename);
                });
        return std::nullopt;
    }

    std::vector<ItemAlbum> listAlbums() {
        std::vector<ItemAlbum> albums;
        for (const AssetCollection& album : AlbumCollector(s_.library).collect()) {
            if (album.type != CollectionType::album)
                continue;
            ItemAlbum& listed = albums.emplace_back(ItemAlbum{album.title, {}});
            const AssetFetchResult assets = s_.library.fetchAssets(album);
            for (const PhotoAsset& asset : *assets)
                listed.identifiers += asset.localIdentifier;
        }
        return albums;
    }

    void judge(const DateReasoning& reasoning) {
        const std::set<QString> undatable = RecordDates(s_.db).heldUndatable();
        for (std::size_t i = 0; i < undated_.size(); ++i) {
            if (stop_.stop_requested())
                throw Cancelled();
            UndatedItem& item = undated_[i];
            const QString& identifier = item.record.assetLocalIdentifier;
            item.isUndatable = undatable.contains(identifier);
            if (!item.isUndatable)
                item.evidence = reasoning.about(identifier, readTextDates(files_[i]));
            held_.remove(identifier);
        }
        for (const SyncRecord& gone : held_)
            undated_.push_back({gone,
                                gone.assetLocalIdentifier,
                                {},
                                undatable.contains(gone.assetLocalIdentifier),
                                {}});
    }

    const UndatedServices& s_;
    const std::stop_token& stop_;
    int filesLeft_;
    QHash<QString, SyncRecord> held_;
    QHash<QString, Date> dates_;
    std::vector<DatedItem> items_;
    std::vector<UndatedItem> undated_;
    std::vector<std::filesystem::path> files_; ///< of the undated ones, in their order
};

} // namespace

std::vector<UndatedItem> reviewUndated(const UndatedServices& services, const std::stop_token& stop,
                                       int filesRead) {
    return Review(services, stop, filesRead).run();
}

} // namespace quorvane
