#include "platform/folder/FolderLibrary.h"

#include "library/FileExport.h"
#include "library/LocalIdentifier.h"
#include "platform/folder/FolderDeletion.h"
#include "platform/folder/FolderIdentity.h"
#include "platform/folder/FolderScanner.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace quorvane {

namespace {

using namespace localIdentifier;

QString identifierText(const QUuid& identifier, const QString& tail) {
    return identifier.toString(QUuid::WithoutBraces).toUpper() + tail;
}

/// Null when the text is no identifier with that tail.
QUuid identifierFrom(const QString& text, const QString& tail) {
    return QUuid::fromString(uuidOf(text, tail));
}

PhotoAsset assetOf(const KnownFile& file) {
    PhotoAsset asset;
    asset.localIdentifier = AssetIdentifier(file.identifier);
    asset.mediaType = mediaTypeOfName(file.path);
    asset.modificationDate = Date(std::chrono::duration_cast<Date::duration>(
        std::chrono::nanoseconds(file.version.modified)));
    return asset;
}

AssetFetchResult assetsOf(const FolderIndex& index) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    assets->reserve(index.files().size());
    std::ranges::transform(index.files(), std::back_inserter(*assets), assetOf);
    return assets;
}

AssetFetchResult assetsOf(const FolderIndex& index, const QUuid& album) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    if (const Folder* folder = index.album(album))
        for (const std::size_t position : folder->files)
            assets->push_back(assetOf(index.files()[position]));
    return assets;
}

QString oneLine(const std::string& path) {
    return pathText(path).replace(u'\n', u' ');
}

QString titleOf(const Folder& folder) {
    return pathText(std::filesystem::path(folder.path).filename());
}

AssetCollection albumOf(const Folder& folder) {
    return {identifierText(folder.albumIdentifier, albumTail), titleOf(folder),
            CollectionType::album, collectionSubtype::albumRegular,
            static_cast<int>(folder.files.size())};
}

CollectionList listOf(const Folder& folder) {
    return {identifierText(folder.listIdentifier, folderTail), titleOf(folder),
            CollectionListType::folder};
}

std::vector<Collection> collectionsIn(const FolderIndex& index, const Folder& parent) {
    std::vector<Collection> collections;
    for (const std::size_t position : parent.folders) {
        const Folder& folder = index.folders()[position];
        if (folder.isAlbum())
            collections.emplace_back(albumOf(folder));
        if (index.isList(folder))
            collections.emplace_back(listOf(folder));
    }
    return collections;
}

} // namespace

/// The right to scan: what is known may be changed by one scan at a time.
class FolderLibrary::ScanTurn {
  public:
    ScanTurn(FolderLibrary& library, const std::stop_token& stop) : library_(library) {
        auto state = library_.state_.lock();
        if (!state.wait(library_.scanEnded_, stop, [&state] { return !state->isScanning; }))
            throw Cancelled();
        state->isScanning = true;
    }
    ~ScanTurn() {
        library_.state_.lock()->isScanning = false;
        library_.scanEnded_.notify_one();
    }
    ScanTurn(const ScanTurn&) = delete;
    ScanTurn& operator=(const ScanTurn&) = delete;

  private:
    FolderLibrary& library_;
};

FolderLibrary::FolderLibrary(std::filesystem::path root, KnownFiles& known,
                             DeletionConfirmation& confirmation, Log& log, const WatchTimes& times)
    : root_(std::move(root)),
      identity_(folderLibraryIdentity(root_)),
      known_(known),
      confirmation_(confirmation),
      log_(log),
      watch_(
          QStringLiteral("[FolderLibrary]"), FolderNotifier::Events::entries,
          [this](bool told, const std::stop_token& stop) { return look(told, stop); }, fetches_,
          log, times) {}

AuthorizationStatus FolderLibrary::authorizationStatus() const {
    if (root_.empty())
        return AuthorizationStatus::notDetermined;
    std::error_code error;
    if (!std::filesystem::is_directory(root_, error) || ::access(root_.c_str(), R_OK | X_OK) != 0)
        return AuthorizationStatus::denied;
    return ::access(root_.c_str(), W_OK) == 0 ? AuthorizationStatus::authorized
                                              : AuthorizationStatus::limited;
}

FolderLibrary::Index FolderLibrary::scan(const std::stop_token& stop) {
    const ScanTurn turn(*this, stop);
    const auto report = [this](const std::string& path, const QString& reason) {
        reportSkip(path, reason);
    };
    const KnownByPath known = knownByPath();
    const auto isKnown = [&known](const std::string& path, const FileVersion& version) {
        return known.isKnown(path, version);
    };
    FolderScan found = scanFolder(root_, isKnown, report, stop);
    if (found.files.empty() && !identity_.isEmpty() && folderLibraryIdentity(root_) != identity_)
        throw PhotoLibraryError::away(
            QStringLiteral("Resim klasörünün diski takılı değil: %1").arg(pathText(root_)));
    absent_ = recognise(found, known, stop);
    reportOthers(found);
    const LeftOut leftOut = found.leftOut;
    Index index = std::make_shared<const FolderIndex>(std::move(found));
    const auto state = state_.lock();
    state->leftOut = leftOut;
    if (!state->index || *state->index != *index) // the same index tells that nothing changed
        state->index.swap(index);
    return state->index;
}

KnownByPath FolderLibrary::knownByPath() {
    if (!absent_)
        absent_ = known_.files();
    std::vector<const KnownFile*> known;
    for (const KnownFile& file : *absent_)
        known.push_back(&file);
    if (const Index index = state_.lock()->index) // kept until this scan ends
        for (const KnownFile& file : index->files())
            known.push_back(&file);
    return KnownByPath(std::move(known));
}

std::vector<KnownFile> FolderLibrary::recognise(FolderScan& found, const KnownByPath& known,
                                                const std::stop_token& stop) {
    FileDifferences differences =
        recogniseFiles(found.files, known, folderLibraryIdentifier(root_), known_,
                       [&](const std::string& path) { return read(path, found.leftOut, stop); });
    if (differences.areThere())
        known_.update(differences.changed, differences.gone, differences.superseded);
    return std::move(differences.absent);
}

std::optional<SourceContent> FolderLibrary::read(const std::string& path, LeftOut& leftOut,
                                                 const std::stop_token& stop) {
    try {
        return quorvane::readContent(openOriginalBeneath(root_, path), root_ / path, stop);
    } catch (const FileError& error) {
        if (error.errorNumber() == ENOENT)
            return std::nullopt; // went since it was seen
        ++leftOut.unreadable;
        reportSkip(path, errorNumberText(error.errorNumber()));
    } catch (const PhotoLibraryError&) {
        ++leftOut.inUse;
        reportSkip(path, QStringLiteral("henüz yazılıyor"));
    }
    return std::nullopt;
}

FolderLibrary::Index FolderLibrary::lastScan() {
    const Index index = state_.lock()->index;
    return index ? index : scan();
}

FolderLibrary::Index FolderLibrary::current() {
    const Index index = lastScan();
    return index->isOutdated(root_) ? scan() : index;
}

std::optional<KnownFile> FolderLibrary::find(const QString& localIdentifier) {
    const QUuid identifier = identifierFrom(localIdentifier, assetTail);
    if (identifier.isNull())
        return std::nullopt;
    const Index index = lastScan();
    const KnownFile* file = index->file(identifier);
    if (file && fileVersion(root_ / file->path) == file->version)
        return *file;
    const Index newer = file ? scan() : current();
    file = newer->file(identifier);
    return file && fileVersion(root_ / file->path) ? std::optional(*file) : std::nullopt;
}

void FolderLibrary::reportSkip(const std::string& path, const QString& reason) {
    if (!state_.lock()->reported.insert(path).second)
        return;
    log_.log(QStringLiteral("[FolderLibrary] Atlandı: %1 (%2)").arg(oneLine(path), reason));
}

void FolderLibrary::reportOthers(const FolderScan& found) {
    if (std::exchange(othersReported_, found.leftOut.otherFiles) == found.leftOut.otherFiles)
        return;
    QStringList names;
    for (const std::string& path : found.otherFiles)
        names.append(oneLine(path));
    const auto more = found.leftOut.otherFiles - static_cast<int>(found.otherFiles.size());
    log_.log(QStringLiteral("[FolderLibrary] Resim veya film olmayan %1 dosya yedeklenmez: %2%3")
                 .arg(found.leftOut.otherFiles)
                 .arg(names.join(QStringLiteral(", ")),
                      more > 0 ? QStringLiteral(" (+%1)").arg(more) : QString()));
}

template <typename List>
AssetFetchResult FolderLibrary::remember(const Index& index, List list) {
    return fetches_.remember(
        list(*index), [this, list, seen = std::weak_ptr(index)]() mutable -> AssetFetchResult {
            const Index now = lastScan();
            if (now == seen.lock())
                return nullptr;
            seen = now;
            return list(*now);
        });
}

AssetFetchResult FolderLibrary::fetchAssets(std::stop_token stop) {
    return remember(scan(stop), [](const FolderIndex& index) { return assetsOf(index); });
}

AssetFetchResult FolderLibrary::fetchAssets(const AssetCollection& collection) {
    const QUuid album = identifierFrom(collection.localIdentifier, albumTail);
    return remember(current(),
                    [album](const FolderIndex& index) { return assetsOf(index, album); });
}

AssetFetchResult FolderLibrary::fetchAssets(const QStringList& localIdentifiers) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    for (const QString& identifier : localIdentifiers)
        if (const auto file = find(identifier))
            assets->push_back(assetOf(*file));
    return assets;
}

std::vector<AssetCollection> FolderLibrary::fetchAssetCollections(CollectionType type,
                                                                  std::optional<int> subtype) {
    std::vector<AssetCollection> albums;
    if (type != CollectionType::album ||
        subtype.value_or(collectionSubtype::albumRegular) != collectionSubtype::albumRegular)
        return albums;
    const Index index = current(); // outlives the loop over it
    for (const Folder& folder : index->folders())
        if (folder.isAlbum())
            albums.push_back(albumOf(folder));
    return albums;
}

std::optional<AssetCollection> FolderLibrary::fetchAssetCollection(const QString& localIdentifier) {
    const Index index = current();
    const Folder* folder = index->album(identifierFrom(localIdentifier, albumTail));
    return folder ? std::optional(albumOf(*folder)) : std::nullopt;
}

std::vector<Collection> FolderLibrary::fetchTopLevelUserCollections() {
    const Index index = current();
    return collectionsIn(*index, index->folders().front());
}

std::vector<CollectionList> FolderLibrary::fetchCollectionLists(CollectionListType type) {
    std::vector<CollectionList> lists;
    if (type != CollectionListType::folder)
        return lists;
    const Index index = lastScan();
    for (const Folder& folder : index->folders())
        if (!folder.path.empty() && index->isList(folder))
            lists.push_back(listOf(folder));
    return lists;
}

std::vector<Collection> FolderLibrary::fetchCollections(const CollectionList& list) {
    const Index index = lastScan();
    const Folder* folder = index->list(identifierFrom(list.localIdentifier, folderTail));
    return folder ? collectionsIn(*index, *folder) : std::vector<Collection>();
}

std::vector<PhotoAssetResource> FolderLibrary::assetResources(const PhotoAsset& asset) {
    const auto file = find(asset.localIdentifier);
    if (!file)
        return {};
    const std::filesystem::path path = file->path;
    const bool isMovie = mediaTypeOfName(file->path) == AssetMediaType::video;
    const QString name = pathText(path.filename());
    return {{isMovie ? AssetResourceType::video : AssetResourceType::photo,
             resourceFilename(name, name), file->version.size, path}};
}

SourceContent FolderLibrary::writeData(const PhotoAssetResource& resource,
                                       const std::filesystem::path& destination,
                                       std::stop_token stop) {
    return exportFile(openOriginalBeneath(root_, resource.location), root_ / resource.location,
                      destination, stop);
}

SourceContent FolderLibrary::readContent(const PhotoAssetResource& resource, std::stop_token stop) {
    return quorvane::readContent(openOriginalBeneath(root_, resource.location),
                                 root_ / resource.location, stop);
}

std::optional<std::int64_t> FolderLibrary::sampleOf(const PhotoAssetResource& resource) {
    try {
        return contentSample(openOriginalBeneath(root_, resource.location),
                             root_ / resource.location);
    } catch (const Error&) { // whoever reads it whole tells
        return std::nullopt;
    }
}

std::optional<FileVersion> FolderLibrary::versionOf(const PhotoAssetResource& resource) {
    return fileVersion(root_ / resource.location);
}

void FolderLibrary::deleteAssets(const std::vector<DeletionCandidate>& candidates,
                                 DeletionQuestion question, DeletionGuard& guard,
                                 std::stop_token stop) {
    if (candidates.empty())
        return;
    if (authorizationStatus() != AuthorizationStatus::authorized)
        throw PhotoLibraryError(
            QStringLiteral("Resim klasörü yazılabilir değil: %1").arg(pathText(root_)));
    const Index index = lastScan();
    FolderDeletion deletion(root_, guard, stop);
    for (const DeletionCandidate& candidate : candidates) {
        const AssetIdentifier& identifier = candidate.asset.localIdentifier;
        // One that changed since is told by its bytes; one that was moved has to be looked for.
        const KnownFile* seen = index->file(identifier.uuid());
        const auto found = seen && fileVersion(root_ / seen->path) ? *seen : find(identifier);
        deletion.add(candidate, found ? std::optional(found->path) : std::nullopt);
    }
    deletion.run(confirmation_, std::move(question));
}

LeftOut FolderLibrary::leftOut() const {
    return state_.lock()->leftOut;
}

void FolderLibrary::registerChangeObserver(LibraryChangeObserver& observer) {
    watch_.observe(observer);
}

void FolderLibrary::unregisterChangeObserver(LibraryChangeObserver& observer) {
    watch_.unobserve(observer);
}

ChangeWatch::Found FolderLibrary::look(bool told, const std::stop_token& stop) {
    Index index = told ? scan(stop) : lastScan();
    if (!told && (index->hasUnfinished() || index->isOutdated(root_)))
        index = scan(stop);
    ChangeWatch::Found found;
    found.changed = announced_.lock() != index;
    found.unfinished = index->hasUnfinished();
    found.folders.reserve(index->folders().size());
    for (const Folder& folder : index->folders())
        found.folders.push_back(root_ / folder.path);
    announced_ = index;
    return found;
}

std::optional<AssetFacts> FolderLibrary::factsOf(const QString& localIdentifier) {
    return find(localIdentifier) ? std::optional(AssetFacts()) : std::nullopt;
}

} // namespace quorvane
