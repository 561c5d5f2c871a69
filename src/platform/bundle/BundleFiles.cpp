#include "platform/bundle/BundleFiles.h"

#include "library/FileExport.h"

#include <algorithm>

#include <sys/stat.h>

namespace quorvane {

namespace {

using std::filesystem::path;

class Resources {
  public:
    Resources(const path& bundle, const PhotosAssetFiles& asset)
        : bundle_(bundle),
          asset_(asset),
          name_(resourceFilename(asset.originalFilename,
                                 resourceFilename(asset.filename, asset.uuid))),
          originals_(path("originals") / pathFrom(asset.directory)),
          renders_(path("resources/renders") / pathFrom(asset.uuid.left(1))) {}

    std::vector<PhotoAssetResource> list() {
        addOriginal();
        addTwins();
        addEdit();
        return std::move(resources_);
    }

  private:
    void addOriginal() {
        const bool isMovie = asset_.mediaType == AssetMediaType::video;
        const path directory = pathFrom(asset_.directory);
        const path file = pathFrom(asset_.filename);
        const path location =
            file.empty() ? path() : (directory.is_absolute() ? directory : originals_) / file;
        addWhetherThereOrNot(isMovie ? AssetResourceType::video : AssetResourceType::photo, name_,
                             location);
    }

    void addTwins() {
        if (asset_.isLive)
            addWhetherThereOrNot(AssetResourceType::pairedVideo, renamed(QStringLiteral(".MOV")),
                                 twin("_3.mov"));
        if (has(false, PhotosFile::rawTwin))
            if (const auto file = startingWith(originals_, twinName("_4.")))
                addIfThere(AssetResourceType::alternatePhoto, renamed(pathText(file->extension())),
                           *file);
    }

    void addEdit() {
        const std::size_t before = resources_.size();
        addIfThere(AssetResourceType::adjustmentData, QStringLiteral("Adjustments.plist"),
                   renders_ / (asset_.uuid.toStdString() + ".plist"));
        if (resources_.size() == before)
            addIfThere(AssetResourceType::adjustmentData, renamed(QStringLiteral(".AAE")),
                       twin("_5.aae"));
        addRender(PhotosFile::editedPhoto, AssetResourceType::fullSizePhoto);
        addRender(PhotosFile::editedVideo, AssetResourceType::fullSizeVideo);
        addRender(PhotosFile::editedPairedVideo, AssetResourceType::fullSizePairedVideo);
    }

    /// A render is named by its recipe: "<UUID>_<high half>_<low half / 2>_a.<extension>".
    void addRender(PhotosFile::Store store, AssetResourceType type) {
        for (const PhotosFile& file : asset_.files) {
            if (!file.edited || file.store != store)
                continue;
            const QString prefix = QStringLiteral("%1_%2_%3_a.")
                                       .arg(asset_.uuid)
                                       .arg(file.recipe >> 16)
                                       .arg((file.recipe & 0xFFFF) >> 1);
            if (const auto render = startingWith(renders_, prefix.toStdString()))
                addIfThere(type, QStringLiteral("FullSizeRender") + pathText(render->extension()),
                           *render);
        }
    }

    bool has(bool edited, PhotosFile::Store store) const {
        return std::ranges::any_of(asset_.files, [&](const PhotosFile& file) {
            return file.edited == edited && file.store == store;
        });
    }

    std::string twinName(const char* tail) const { return asset_.uuid.toStdString() + tail; }
    path twin(const char* tail) const { return originals_ / twinName(tail); }

    QString renamed(const QString& extension) const {
        const qsizetype dot = name_.lastIndexOf(u'.');
        return (dot > 0 ? name_.left(dot) : name_) + extension;
    }

    /// The first entry, by name, of a folder of the bundle that begins with `prefix`.
    std::optional<path> startingWith(const path& folder, const std::string& prefix) const {
        std::optional<path> found;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(bundle_ / folder, error)) {
            const path name = entry.path().filename();
            if (name.native().starts_with(prefix) && (!found || folder / name < *found))
                found = folder / name;
        }
        return found;
    }

    std::optional<std::int64_t> sizeOf(const path& location) const {
        try {
            const FileDescriptor file = location.is_absolute()
                                            ? openOriginal(location)
                                            : openOriginalBeneath(bundle_, location);
            struct stat status {};
            return ::fstat(file.get(), &status) == 0 ? std::optional<std::int64_t>(status.st_size)
                                                     : std::nullopt;
        } catch (const FileError&) {
            return std::nullopt;
        }
    }

    void addWhetherThereOrNot(AssetResourceType type, const QString& name, const path& location) {
        resources_.push_back({type, name, sizeOf(location), location});
    }

    void addIfThere(AssetResourceType type, const QString& name, const path& location) {
        if (const auto size = sizeOf(location))
            resources_.push_back({type, name, size, location});
    }

    const path& bundle_;
    const PhotosAssetFiles& asset_;
    const QString name_;
    const path originals_, renders_;
    std::vector<PhotoAssetResource> resources_;
};

} // namespace

std::vector<PhotoAssetResource> resourcesIn(const std::filesystem::path& bundle,
                                            const PhotosAssetFiles& asset) {
    return Resources(bundle, asset).list();
}

} // namespace quorvane
