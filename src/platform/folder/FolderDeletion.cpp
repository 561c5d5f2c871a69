#include "platform/folder/FolderDeletion.h"

#include "library/FileExport.h"
#include "platform/folder/OpenForWriting.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>

namespace quorvane {

namespace {

using std::filesystem::path;

/// A rename changes the time of the file's status, and nothing else.
bool isSameContent(const struct stat& moved, const struct stat& proven) {
    FileVersion before = FileVersion::of(proven), after = FileVersion::of(moved);
    before.changed = after.changed;
    return moved.st_dev == proven.st_dev && before == after;
}

/// What lies there would be found in the library again.
bool isShownIn(const path& root, const path& place) {
    const path inside = place.lexically_relative(root);
    return !inside.empty() && std::ranges::none_of(inside, [](const path& name) {
        return name.native().starts_with('.') && name != ".";
    });
}

QString reasonOf(const std::exception& error) {
    if (const auto* fault = dynamic_cast<const FileError*>(&error))
        return errorNumberText(fault->errorNumber());
    return describe(error);
}

} // namespace

FolderDeletion::FolderDeletion(const path& root, DeletionGuard& guard, const std::stop_token& stop)
    : root_(std::filesystem::canonical(root)), guard_(guard), stop_(stop) {}

void FolderDeletion::add(const DeletionCandidate& candidate, const std::optional<path>& file) {
    if (positions_.contains(candidate.asset.localIdentifier))
        return;
    if (!file)
        return leaveOut(candidate, pathFrom(candidate.asset.localIdentifier),
                        QStringLiteral("kitaplıkta bulunamadı"));
    File entry{candidate, *file, nullptr, {}};
    try {
        entry.trash = &trashFor((root_ / *file).parent_path());
    } catch (const Error& error) {
        entry.noTrash = error.localizedDescription();
    }
    positions_.emplace(candidate.asset.localIdentifier, files_.size());
    files_.push_back(std::move(entry));
}

Trash& FolderDeletion::trashFor(const path& folder) {
    const Mount mount = Mount::of(folder);
    auto trash = trashes_.find(mount);
    if (trash == trashes_.end())
        trash = trashes_.emplace(mount, Trash::forFilesIn(folder)).first;
    if (isShownIn(root_, std::filesystem::weakly_canonical(trash->second->place())))
        throw PhotoLibraryError(QStringLiteral("Çöp Kutusu kitaplığın içinde: %1")
                                    .arg(pathText(trash->second->place())));
    return *trash->second;
}

void FolderDeletion::complete(DeletionQuestion& question) const {
    std::set<QString> places;
    for (const File& file : files_) {
        if (!file.trash) {
            ++question.kept[KeptReason::noTrash];
            continue;
        }
        ++question.count;
        question.bytes += file.candidate.source.version.size;
        places.insert(pathText(file.trash->place()));
    }
    question.place = QStringList(places.begin(), places.end()).join(QStringLiteral(", "));
}

void FolderDeletion::run(DeletionConfirmation& confirmation, DeletionQuestion question) {
    if (files_.empty())
        return;
    complete(question);
    if (question.count == 0)
        throw PhotoLibraryError(files_.front().noTrash);
    if (!confirmation.confirmDeletion(question))
        throw PhotoLibraryError(QStringLiteral("Silme onayı verilmedi"));
    for (const File& file : files_)
        if (!file.trash)
            leaveOut(file.candidate, file.path, file.noTrash);
    try {
        for (std::size_t first = 0; first < files_.size(); first += DeletionGuard::atOnce) {
            if (stop_.stop_requested())
                return;
            const std::size_t end = std::min(first + DeletionGuard::atOnce, files_.size());
            std::vector<DeletionCandidate> group;
            for (std::size_t i = first; i < end; ++i)
                if (files_[i].trash)
                    group.push_back(files_[i].candidate);
            if (group.empty())
                continue;
            for (const DeletionCandidate& safe : guard_.stillSafe(group))
                remove(files_.at(positions_.at(safe.asset.localIdentifier)));
        }
    } catch (const Cancelled&) {
        // The rest stays.
    }
}

void FolderDeletion::remove(const File& file) {
    const path full = root_ / file.path;
    try {
        const FileDescriptor folder = openFolderOf(root_, file.path);
        const struct stat proven = prove(file, folder);
        guard_.willDelete(file.candidate);
        const std::string name = file.trash->take(folder, full);
        if (!isSameContent(file.trash->statusOf(name), proven)) {
            const bool isBack = file.trash->giveBack(name, folder, full);
            throw PhotoLibraryError(
                isBack ? QStringLiteral("silinmek üzereyken değişti")
                       : QStringLiteral("silinmek üzereyken değişti; Çöp Kutusu'nda duruyor: %1")
                             .arg(pathText(file.trash->place() / "files" / name)));
        }
    } catch (const std::exception& error) {
        return leaveOut(file.candidate, file.path, reasonOf(error));
    }
    guard_.didDelete(file.candidate);
}

struct stat FolderDeletion::prove(const File& file, const FileDescriptor& folder) const {
    const path full = root_ / file.path, name = file.path.filename();
    const FileDescriptor original = openOriginalBeneath(root_, file.path);
    const SourceContent content = readContent(original, full, stop_);
    if (content.sha256 != file.candidate.source.sha256)
        throw PhotoLibraryError(QStringLiteral("yedeklenen sürümle aynı değil"));
    struct stat opened {};
    struct stat named {};
    if (::fstat(original.get(), &opened) != 0 ||
        ::fstatat(folder.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), full, errno);
    if (opened.st_dev != named.st_dev || FileVersion::of(named) != content.version)
        throw PhotoLibraryError(QStringLiteral("okunurken değişti"));
    if (isOpenForWriting(folder.get(), name.c_str(), named))
        throw PhotoLibraryError(QStringLiteral("henüz yazılıyor"));
    return named;
}

void FolderDeletion::leaveOut(const DeletionCandidate& candidate, const path& file,
                              const QString& reason) {
    const QString line = QStringLiteral("%1: %2").arg(pathText(file), reason);
    guard_.leftOut(candidate, QString(line).replace(u'\n', u' '));
}

} // namespace quorvane
