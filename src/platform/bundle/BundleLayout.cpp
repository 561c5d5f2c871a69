#include "platform/bundle/BundleLayout.h"

#include "library/FileExport.h"
#include "metadata/MotionPhoto.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

namespace quorvane {

namespace {

using std::filesystem::path;

/// The name a person knows the asset by.
QString nameOf(const PhotosAssetFiles& asset) {
    return resourceFilename(asset.originalFilename, resourceFilename(asset.filename, asset.uuid));
}

bool isPlain(const path& name) {
    return !name.empty() && !name.is_absolute() &&
           std::ranges::none_of(name, [](const path& part) { return part == ".."; });
}

/// Whether the row names what a library of Photos names: nothing else is looked for in the bundle.
bool isInBundle(const PhotosAssetFiles& asset) {
    const path directory = pathFrom(asset.directory);
    return isPlain(pathFrom(asset.filename)) && (directory.empty() || isPlain(directory));
}

path properPlace(const PhotosAssetFiles& asset) {
    return path("originals") / pathFrom(asset.directory) / pathFrom(asset.filename);
}

/// Where the original of an asset may lie instead.
std::vector<path> furtherPlaces(const PhotosAssetFiles& asset) {
    const path directory = pathFrom(asset.directory), file = pathFrom(asset.filename);
    const path letter = pathFrom(asset.uuid.left(1));
    std::vector<path> places{path("scopes/momentshared/originals") / letter / file,
                             path("scopes/syndication/originals") / letter / file};
    std::vector<path> shared{file};
    if (asset.mediaType == AssetMediaType::video) {
        const std::string stem = file.native().substr(0, file.native().find('.'));
        shared = {asset.uuid.toStdString() + ".medium.MP4", stem + ".medium.MP4"};
        if (file.native().find(".poster.") == std::string::npos)
            shared.push_back(file);
    }
    for (const char* folder : {"scopes/cloudsharing/data", "resources/cloudsharing/data"})
        for (const path& name : shared)
            places.push_back(path(folder) / directory / name);
    return places;
}

/// What follows `folder` in `file`; none when it is not below it.
std::optional<path> below(const path& folder, const path& file) {
    const path rest = file.lexically_relative(folder);
    return isPlain(rest) && rest != "." ? std::optional(rest) : std::nullopt;
}

/// The movie goes with the still that is sent, unless its bytes are not there.
void markMovie(std::vector<PhotoAssetResource>& resources, AssetResourceType type) {
    const QString extension = pathText(resources.front().location.extension()).mid(1).toLower();
    if (!motion::takesMovie(extension))
        return;
    for (PhotoAssetResource& resource : resources)
        resource.joinsStill = resource.type == type && resource.fileSize.has_value();
}

class Resources {
  public:
    Resources(const BundleLayout& layout, const PhotosAssetFiles& asset, const path& original)
        : layout_(layout),
          asset_(asset),
          name_(nameOf(asset)),
          originals_(original.parent_path()),
          renders_(path("resources/renders") / pathFrom(asset.uuid.left(1))) {}

    std::vector<PhotoAssetResource> beside(PhotoAssetResource original) {
        resources_.push_back(std::move(original));
        addTwins();
        addEdit();
        return std::move(resources_);
    }

    QString renamed(const QString& extension) const {
        const qsizetype dot = name_.lastIndexOf(u'.');
        return (dot > 0 ? name_.left(dot) : name_) + extension;
    }

  private:
    void addTwins() {
        if (asset_.isLive)
            resources_.push_back({AssetResourceType::pairedVideo, renamed(QStringLiteral(".MOV")),
                                  layout_.sizeOf(twin("_3.mov")), twin("_3.mov")});
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

    /// The first entry, by name, of a folder of the bundle that begins with `prefix`.
    std::optional<path> startingWith(const path& folder, const std::string& prefix) const {
        std::optional<path> found;
        std::error_code error;
        for (const auto& entry :
             std::filesystem::directory_iterator(layout_.pathOf(folder), error)) {
            const path name = entry.path().filename();
            if (name.native().starts_with(prefix) && (!found || folder / name < *found))
                found = folder / name;
        }
        return found;
    }

    void addIfThere(AssetResourceType type, const QString& name, const path& location) {
        if (const auto size = layout_.sizeOf(location))
            resources_.push_back({type, name, size, location});
    }

    const BundleLayout& layout_;
    const PhotosAssetFiles& asset_;
    const QString name_;
    const path originals_, renders_;
    std::vector<PhotoAssetResource> resources_;
};

} // namespace

std::vector<PhotoAssetResource> BundleLayout::resources(const PhotosAssetFiles& asset) const {
    const Original original = originalOf(asset);
    const bool isMovie = asset.mediaType == AssetMediaType::video;
    Resources list(*this, asset, original.location);
    auto resources =
        list.beside({isMovie ? AssetResourceType::video : AssetResourceType::photo, nameOf(asset),
                     original.size, original.location, original.absence});
    const auto edit = std::ranges::find(
        resources, isMovie ? AssetResourceType::fullSizeVideo : AssetResourceType::fullSizePhoto,
        &PhotoAssetResource::type);
    const bool isEdit =
        choices_.versions == LibraryChoices::Versions::edited && edit != resources.end();
    if (isEdit) {
        edit->type = resources.front().type; // it stands for the asset
        edit->originalFilename = list.renamed(pathText(edit->location.extension()));
        std::rotate(resources.begin(), edit, edit + 1);
    }
    if (choices_.live == LibraryChoices::Live::motion)
        markMovie(resources,
                  isEdit ? AssetResourceType::fullSizePairedVideo : AssetResourceType::pairedVideo);
    return resources;
}

std::optional<AbsentOriginal> BundleLayout::absence(const PhotosAssetFiles& asset,
                                                    FoldersBeneath& bundle) const {
    if (pathFrom(asset.directory).is_absolute())
        return originalOf(asset).absence;
    const auto isMissing = [&bundle](const path& place) { return bundle.isMissing(place); };
    if (!isInBundle(asset) || !isMissing(properPlace(asset)) ||
        !std::ranges::all_of(furtherPlaces(asset), isMissing))
        return std::nullopt;
    return AbsentOriginal{
        AbsentOriginal::Why::onlyInCloud,
        QStringLiteral("%1 yalnızca iCloud'da, özgün dosyası bu bilgisayarda değil")
            .arg(nameOf(asset))};
}

/// A row that names what no library of Photos names gets no location: whoever asks for its bytes is
/// refused.
BundleLayout::Original BundleLayout::originalOf(const PhotosAssetFiles& asset) const {
    if (isPlain(pathFrom(asset.filename)) && pathFrom(asset.directory).is_absolute())
        return asset.isReferenced ? referenced(asset) : Original();
    if (!isInBundle(asset))
        return {};
    const path proper = properPlace(asset);
    if (const auto size = sizeOf(proper))
        return {proper, size, {}};
    for (const path& place : furtherPlaces(asset))
        if (const auto size = sizeOf(place))
            return {place, size, {}};
    FoldersBeneath bundle(bundle_);
    return {proper, {}, absence(asset, bundle)};
}

BundleLayout::Original BundleLayout::referenced(const PhotosAssetFiles& asset) const {
    const path named = (pathFrom(asset.directory) / pathFrom(asset.filename)).lexically_normal();
    for (const OriginalsMapping& mapping : choices_.originals)
        if (const auto rest = below(mapping.from, named)) {
            const path location = mapping.to / *rest;
            if (const auto size = sizeOf(location))
                return {location, size, {}};
        }
    return {{},
            {},
            AbsentOriginal{
                AbsentOriginal::Why::elsewhere,
                QStringLiteral("%1 arşivin dışında duruyor ve bu bilgisayarda bulunamadı: %2")
                    .arg(nameOf(asset), pathText(named))}};
}

FileDescriptor BundleLayout::open(const path& location) const {
    if (!location.is_absolute())
        return openOriginalBeneath(bundle_, location);
    for (const OriginalsMapping& mapping : choices_.originals)
        if (const auto rest = below(mapping.to, location))
            return openOriginalBeneath(mapping.to, *rest);
    throw FileError(QStringLiteral("Dosya açılamadı"), location, EACCES);
}

std::optional<std::int64_t> BundleLayout::sizeOf(const path& location) const {
    try {
        const FileDescriptor file = open(location);
        struct stat status {};
        return ::fstat(file.get(), &status) == 0 ? std::optional<std::int64_t>(status.st_size)
                                                 : std::nullopt;
    } catch (const FileError&) {
        return std::nullopt;
    }
}

} // namespace quorvane
