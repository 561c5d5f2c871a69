#include "platform/folder/FolderIndex.h"

#include "platform/folder/FolderIdentity.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include <sys/stat.h>

namespace quorvane {

namespace {

QUuid named(const char* space, const std::string& path) {
    return QUuid::createUuidV5(QUuid(QLatin1String(space)), QByteArray::fromStdString(path));
}

} // namespace

QUuid folderLibraryIdentifier(const std::filesystem::path& root) {
    const QString identity = folderLibraryIdentity(root);
    std::error_code failure;
    const auto canonical = std::filesystem::canonical(root, failure);
    return named("c1f0b6a4-7d15-4f0e-9a52-3f6c0d1e8b27",
                 !identity.isEmpty() ? identity.toStdString()
                                     : (failure ? root : canonical).native());
}

QUuid folderFileIdentifier(const QUuid& library, const KnownFile& file, const QUuid& other) {
    QByteArray name = QByteArray::fromStdString(file.path);
    // No path contains a zero.
    name += '\0' + QByteArray::number(qint64(file.version.size)) + '\0' +
            QByteArray::number(qint64(file.version.modified));
    if (!other.isNull())
        name += '\0' + other.toByteArray(QUuid::Id128);
    return QUuid::createUuidV5(library, name);
}

QUuid folderAlbumIdentifier(const std::string& path) {
    return named("5b0e7a63-2f44-4c9b-8d36-91c2a4f7e058", path);
}

QUuid folderListIdentifier(const std::string& path) {
    return named("e83d2c91-604a-47b5-b1f8-0a9d5e7c3612", path);
}

FolderIndex::FolderIndex(FolderScan scan)
    : folders_(std::move(scan.folders)), hasUnfinished_(scan.leftOut.inUse > 0) {
    std::vector<KnownFile>& files = scan.files;
    std::vector<std::size_t> order;
    order.reserve(files.size());
    for (std::size_t position = 0; position < files.size(); ++position)
        if (!files[position].identifier.isNull())
            order.push_back(position);
    std::sort(order.begin(), order.end(), [&files](std::size_t a, std::size_t b) {
        return std::tie(files[a].version.modified, files[a].path) <
               std::tie(files[b].version.modified, files[b].path);
    });
    files_.reserve(order.size());
    for (const std::size_t position : order) {
        folders_[scan.folderOfFile[position]].files.push_back(files_.size());
        files_.push_back(std::move(files[position]));
    }
    byIdentifier_ = std::move(order);
    std::iota(byIdentifier_.begin(), byIdentifier_.end(), std::size_t(0));
    std::ranges::sort(byIdentifier_, {}, identifierAt());
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
        folder->hasPicturesBelow = !folder->files.empty() || isList(*folder);
}

const KnownFile* FolderIndex::file(const QUuid& identifier) const {
    const auto found = std::ranges::lower_bound(byIdentifier_, identifier, {}, identifierAt());
    return found != byIdentifier_.end() && files_[*found].identifier == identifier ? &files_[*found]
                                                                                   : nullptr;
}

const Folder* FolderIndex::album(const QUuid& identifier) const {
    const auto found = std::ranges::find(folders_, identifier, &Folder::albumIdentifier);
    return found != folders_.end() && found->isAlbum() ? &*found : nullptr;
}

const Folder* FolderIndex::list(const QUuid& identifier) const {
    const auto found = std::ranges::find(folders_, identifier, &Folder::listIdentifier);
    return found != folders_.end() && isList(*found) ? &*found : nullptr;
}

bool FolderIndex::isList(const Folder& folder) const {
    return std::ranges::any_of(folder.folders, [this](std::size_t position) {
        return folders_[position].hasPicturesBelow;
    });
}

bool FolderIndex::isOutdated(const std::filesystem::path& root) const {
    return std::ranges::any_of(folders_, [&root](const Folder& folder) {
        struct stat status {};
        return ::stat((root / folder.path).c_str(), &status) != 0 ||
               FileVersion::of(status).modified != folder.modified;
    });
}

} // namespace quorvane
