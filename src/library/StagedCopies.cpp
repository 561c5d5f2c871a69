#include "library/StagedCopies.h"

#include "foundation/Crypto.h"
#include "foundation/File.h"
#include "library/StagedName.h"
#include "metadata/FilenameDates.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr qsizetype readAtOnce = 1 << 20;
/// Left free beside what is staged, for the other programs of the computer.
constexpr std::int64_t reserve = std::int64_t{256} << 20;
/// Copies whose bytes are only known to be those of an original that is gone.
constexpr const char* asideFolder = "Kenara Alinanlar";

std::optional<std::int64_t> freeBytes(const std::filesystem::path& folder) {
    std::error_code unknown;
    const auto space = std::filesystem::space(folder, unknown);
    return unknown ? std::nullopt : std::optional(static_cast<std::int64_t>(space.available));
}

} // namespace

StagedCopies::StagedCopies(const StatePlace& place, DatabaseManager& database)
    : permanent_(place.permanentStaging, StagingFolder::Access::any),
      temporary_(place.temporaryStaging, StagingFolder::Access::privateOnly),
      database_(database) {}

bool StagedCopies::create() {
    permanent_.create();
    temporary_.create();
    return temporary_.isUsable();
}

StagingFolder& StagedCopies::folderForStaging() {
    if (permanent_.isUsable())
        return permanent_;
    if (temporary_.isUsable())
        return temporary_;
    throw Error(QStringLiteral("Hazırlık klasörü yok: ") + pathText(permanent_.path()));
}

StagingFolder& StagedCopies::folderOf(const std::filesystem::path& file) {
    return file.parent_path() == temporary_.path() ? temporary_ : permanent_;
}

std::optional<std::filesystem::path> StagedCopies::find(const QString& identifier) {
    const QString prefix = safeId(identifier);
    auto file = permanent_.find(prefix);
    return file ? file : temporary_.find(prefix);
}

void StagedCopies::removeAll(const QString& identifier) {
    const QString prefix = safeId(identifier);
    permanent_.removeAll(prefix);
    temporary_.removeAll(prefix);
}

void StagedCopies::removeLeftovers(const std::stop_token& stop) {
    permanent_.removeLeftovers(stop);
    temporary_.removeLeftovers(stop);
}

std::filesystem::path StagedCopies::setAside(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path() / asideFolder;
    const StagingFolder::OwnChange change(folderOf(file), file.filename());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throw FileError(QStringLiteral("Klasör oluşturulamadı"), folder, errno);
    std::filesystem::path aside = folder / file.filename();
    struct stat taken {};
    for (int number = 2; ::lstat(aside.c_str(), &taken) == 0; ++number)
        aside = folder / (std::to_string(number) + "-" + file.filename().native());
    if (::rename(file.c_str(), aside.c_str()) != 0)
        throw FileError(QStringLiteral("Dosya kenara alınamadı"), file, errno);
    return aside;
}

void StagedCopies::putBack(const std::filesystem::path& aside, const std::filesystem::path& file) {
    ::rename(aside.c_str(), file.c_str());
    ::rmdir(aside.parent_path().c_str()); // unless there are others
}

void StagedCopies::removeAside(const std::filesystem::path& aside) {
    ::unlink(aside.c_str());
    ::rmdir(aside.parent_path().c_str()); // unless there are others
}

HashAndSize StagedCopies::hashOf(const std::filesystem::path& file, const std::stop_token& stop) {
    const auto before = fileVersion(file);
    if (!before)
        throw FileError(QStringLiteral("Dosya okunamadı"), file, ENOENT);
    const auto known = hashes_.find(file.native());
    if (known != hashes_.end() && known->second.version == *before)
        return known->second.content;
    HashAndSize content = computeHashAndSize(file, stop);
    if (fileVersion(file) == before) // else somebody writes it
        hashes_.insert_or_assign(file.native(), Hashed{*before, content});
    return content;
}

void StagedCopies::wasSent(const QString& identifier) {
    const auto file = find(identifier);
    if (!file)
        return;
    hashes_.erase(file->native());
    const auto version = fileVersion(*file);
    if (!version)
        return;
    if (isSentLoaded_) {
        sent_.push_back({identifier, version->size});
        sentBytes_ += version->size;
    }
    loadSent(); // tells of this one, too
    while (sentBytes_ > sentLimit)
        dropOldestSent();
}

bool StagedCopies::makeRoom(std::int64_t bytes) {
    const std::filesystem::path& folder = folderForStaging().path();
    auto available = freeBytes(folder);
    if (!available)
        return true; // the copy itself will tell
    if (*available < bytes + reserve)
        loadSent();
    while (*available < bytes + reserve && !sent_.empty()) {
        dropOldestSent();
        available = freeBytes(folder).value_or(0);
    }
    return *available > bytes;
}

void StagedCopies::dropOldestSent() {
    const Sent oldest = sent_.front();
    sent_.pop_front();
    sentBytes_ -= oldest.bytes;
    removeAll(oldest.identifier);
}

/// What the store knows to be sent: mostly what earlier runs have left.
void StagedCopies::loadSent() {
    if (isSentLoaded_)
        return;
    struct Copy {
        Sent sent;
        Date at;
    };
    std::vector<Copy> copies;
    for (StagingFolder* folder : {&permanent_, &temporary_}) {
        std::error_code unreadable;
        for (const auto& entry : std::filesystem::directory_iterator(folder->path(), unreadable)) {
            const auto identifier = identifierOfStagedName(pathText(entry.path().filename()));
            const auto version = fileVersion(entry.path());
            const auto record =
                identifier && version ? database_.fetchRecord(*identifier) : std::nullopt;
            if (record && record->syncStatus == SyncStatus::verified)
                copies.push_back({{*identifier, version->size}, record->updatedAt});
        }
    }
    isSentLoaded_ = true;
    std::ranges::stable_sort(copies, {}, &Copy::at);
    for (Copy& copy : copies) {
        sentBytes_ += copy.sent.bytes;
        sent_.push_back(std::move(copy.sent));
    }
}

HashAndSize computeHashAndSize(const std::filesystem::path& file, const std::stop_token& stop) {
    const FileDescriptor descriptor = openFile(file, O_RDONLY | O_NOFOLLOW);
    QByteArray chunk(readAtOnce, Qt::Uninitialized);
    Sha256 hash;
    HashAndSize result;
    while (true) {
        if (stop.stop_requested())
            throw Cancelled();
        const ssize_t n = ::read(descriptor.get(), chunk.data(), static_cast<size_t>(readAtOnce));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), file, errno);
        if (n == 0)
            break;
        hash.add(QByteArrayView(chunk.constData(), n));
        result.sizeBytes += n;
    }
    result.sha256 = QString::fromLatin1(hash.finish().toHex());
    return result;
}

} // namespace quorvane
