#include "library/StagingFolder.h"

#include "foundation/File.h"
#include "foundation/System.h"
#include "library/FileExport.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// A folder this small is listed rather than trusted: a time stamp is too coarse to tell two
/// changes within a few milliseconds apart.
constexpr size_t smallFolder = 64;

bool isFileItself(const std::filesystem::path& file) {
    struct stat info {};
    return ::lstat(file.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isLeftover(const std::string& name) {
    const auto extension = [&name] { return std::filesystem::path(name).extension(); };
    return name.starts_with('.') && (extension() == ".part" || extension() == ".tmp");
}

} // namespace

StagingFolder::StagingFolder(std::filesystem::path path, Access access)
    : path_(std::move(path)), access_(access) {}

void StagingFolder::create() {
    std::error_code ignored;
    std::filesystem::create_directories(path_.parent_path(), ignored);
    ::mkdir(path_.c_str(), 0700);
}

std::optional<StagingFolder::Stamp> StagingFolder::stamp() const {
    struct stat info {};
    const bool isPrivate = access_ == Access::privateOnly;
    const int failed = isPrivate ? ::lstat(path_.c_str(), &info) : ::stat(path_.c_str(), &info);
    if (failed != 0 || !S_ISDIR(info.st_mode))
        return std::nullopt;
    if (isPrivate && (info.st_uid != ::geteuid() || (info.st_mode & 0777) != 0700))
        return std::nullopt;
    const timespec changed = system::modificationTime(info);
    return Stamp{info.st_dev, info.st_ino, changed.tv_sec, changed.tv_nsec};
}

void StagingFolder::refresh() {
    const std::optional<Stamp> now = stamp();
    if (now && now == listedAt_ && names_.size() > smallFolder)
        return;
    names_.clear();
    listedAt_ = now; // taken before the listing: a change during it shows the next time
    if (!now)
        return;
    visitFiles(path_, [this](const std::string& name) {
        if (!isLeftover(name))
            names_.insert(name);
    });
}

std::set<std::string>::iterator StagingFolder::firstWith(const std::string& prefix) {
    auto name = names_.lower_bound(prefix);
    while (name != names_.end() && name->starts_with(prefix) && !isFileItself(path_ / *name))
        name = names_.erase(name);
    return name != names_.end() && name->starts_with(prefix) ? name : names_.end();
}

std::optional<std::filesystem::path> StagingFolder::find(const QString& prefix) {
    if (prefix.isEmpty() || !isUsable())
        return std::nullopt;
    const std::string start = prefix.toStdString();
    auto name = firstWith(start);
    if (name == names_.end()) {
        refresh();
        name = firstWith(start);
    }
    if (name == names_.end())
        return std::nullopt;
    return path_ / *name;
}

void StagingFolder::removeAll(const QString& prefix) {
    if (prefix.isEmpty() || !isUsable())
        return;
    refresh();
    const std::string start = prefix.toStdString();
    const bool wasCurrent = isCurrent();
    auto name = names_.lower_bound(start);
    while (name != names_.end() && name->starts_with(start)) {
        const bool gone = ::unlink((path_ / *name).c_str()) == 0 || errno == ENOENT;
        name = gone ? names_.erase(name) : std::next(name);
    }
    if (wasCurrent)
        listedAt_ = stamp();
}

void StagingFolder::removeLeftovers(const std::stop_token& stop) {
    if (!isUsable())
        return;
    std::set<std::string> leftovers;
    visitFiles(path_, [&](const std::string& name) {
        if (isLeftover(name))
            leftovers.insert(name);
    });
    for (const std::string& name : leftovers)
        removeInSteps(path_ / name, stop);
}

void StagingFolder::settle(const std::string& name, bool wasCurrent) {
    if (isFileItself(path_ / name))
        names_.insert(name);
    else
        names_.erase(name);
    if (wasCurrent)
        listedAt_ = stamp();
}

} // namespace quorvane
