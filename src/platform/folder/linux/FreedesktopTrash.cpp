#include "foundation/UserFolders.h"
#include "library/FileExport.h"
#include "platform/folder/Mount.h"
#include "platform/folder/Trash.h"

#include <QDateTime>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

using std::filesystem::path;

constexpr const char* infoExtension = ".trashinfo";
constexpr std::size_t longestName = 255;

[[noreturn]] void throwUnusable(const path& place, int error) {
    throw FileError(QStringLiteral("Çöp Kutusu kullanılamıyor"), place, error);
}

/// A folder of this user's own, made if it is not there.
void requireOwnFolder(const path& place, bool mayBeLink) {
    struct stat status {};
    if (::mkdir(place.c_str(), 0700) != 0 && errno != EEXIST)
        throwUnusable(place, errno);
    const int flags = mayBeLink ? 0 : AT_SYMLINK_NOFOLLOW;
    if (::fstatat(AT_FDCWD, place.c_str(), &status, flags) != 0)
        throwUnusable(place, errno);
    if (!S_ISDIR(status.st_mode))
        throwUnusable(place, ENOTDIR);
    if (status.st_uid != ::getuid())
        throwUnusable(place, EACCES);
}

FileDescriptor openFolder(const path& place, const Mount& mount) {
    requireOwnFolder(place, false);
    if (Mount::of(place) != mount)
        throwUnusable(place, EXDEV);
    return openFile(place, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

path dataHome() {
    const path said = qgetenv("XDG_DATA_HOME").toStdString();
    return said.is_absolute() ? said : UserFolders::ofCurrentUser().home / ".local/share";
}

/// `folder`, or the lowest folder above it that is there.
path existing(path folder) {
    std::error_code error;
    while (!std::filesystem::exists(folder, error) && folder != folder.parent_path())
        folder = folder.parent_path();
    return folder;
}

void makeFolders(const path& folder) {
    if (::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST)
        return;
    if (errno != ENOENT || folder == folder.parent_path())
        throwUnusable(folder, errno);
    makeFolders(folder.parent_path());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throwUnusable(folder, errno);
}

path topOf(const path& folder, const Mount& mount) {
    path top = folder;
    while (top != top.parent_path() && Mount::of(top.parent_path()) == mount)
        top = top.parent_path();
    return top;
}

/// The bytes of a path as in a URI (RFC 2396).
QByteArray encoded(const path& file) {
    return QByteArray::fromStdString(file.native()).toPercentEncoding("/");
}

/// The name for the n-th attempt, short enough to carry the extension of its information.
std::string numbered(const path& file, int n) {
    std::string suffix;
    if (n > 1)
        suffix.append(1, '.').append(std::to_string(n));
    std::string base = file.stem().native(), extension = file.extension().native();
    if (extension.size() > 16) {
        base = file.filename().native();
        extension.clear();
    }
    const std::size_t room =
        longestName - std::string_view(infoExtension).size() - suffix.size() - extension.size();
    if (base.size() > room) {
        base.resize(room);
        while (!base.empty() && (static_cast<unsigned char>(base.back()) & 0xC0) == 0x80)
            base.pop_back(); // of a character that was cut
        if (!base.empty() && static_cast<unsigned char>(base.back()) >= 0xC0)
            base.pop_back();
    }
    return base.append(suffix).append(extension);
}

/// After the freedesktop.org rules for Trash folders 1.0: the home Trash for what is on the home's
/// file system, one at the top of every other file system. Nothing is ever copied into it.
class FreedesktopTrash final : public Trash {
  public:
    FreedesktopTrash(path place, path top, const Mount& mount);
    static std::unique_ptr<Trash> atTopOf(const path& folder, const Mount& mount);

    const path& place() const override { return place_; }
    std::string take(const FileDescriptor& folder, const path& file) override;
    struct stat statusOf(const std::string& name) const override;
    bool giveBack(const std::string& name, const FileDescriptor& folder,
                  const path& file) noexcept override;

  private:
    /// Reserves a name: none when it is in use.
    bool writeInfo(const std::string& name, const QByteArray& text) const;

    path place_;
    path top_; ///< paths are written relative to it; empty in the home Trash
    FileDescriptor files_, info_;
};

FreedesktopTrash::FreedesktopTrash(path place, path top, const Mount& mount)
    : place_(std::move(place)), top_(std::move(top)) {
    requireOwnFolder(place_, top_.empty()); // nobody else puts links into the home
    files_ = openFolder(place_ / "files", mount);
    info_ = openFolder(place_ / "info", mount);
}

std::unique_ptr<Trash> FreedesktopTrash::atTopOf(const path& folder, const Mount& mount) {
    const path top = topOf(folder, mount);
    const std::string user = std::to_string(::getuid());
    const path shared = top / ".Trash";
    struct stat status {};
    if (::lstat(shared.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
        (status.st_mode & S_ISVTX)) {
        try {
            return std::make_unique<FreedesktopTrash>(shared / user, top, mount);
        } catch (const FileError&) {
            // The user's own one at the top does as well.
        }
    }
    return std::make_unique<FreedesktopTrash>(top / (".Trash-" + user), top, mount);
}

bool FreedesktopTrash::writeInfo(const std::string& name, const QByteArray& text) const {
    const std::string file = name + infoExtension;
    const FileDescriptor info(::openat(info_.get(), file.c_str(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!info.isOpen() && errno == EEXIST)
        return false;
    if (!info.isOpen())
        throwUnusable(place_ / "info", errno);
    try {
        writeAll(info.get(), viewOf(text), place_ / "info" / file);
    } catch (...) {
        ::unlinkat(info_.get(), file.c_str(), 0);
        throw;
    }
    return true;
}

std::string FreedesktopTrash::take(const FileDescriptor& folder, const path& file) {
    const QByteArray text =
        "[Trash Info]\nPath=" + encoded(top_.empty() ? file : file.lexically_relative(top_)) +
        "\nDeletionDate=" +
        QDateTime::currentDateTime().toString(u"yyyy-MM-dd'T'HH:mm:ss").toLatin1() + '\n';
    for (int n = 1;; ++n) {
        std::string name = numbered(file.filename(), n);
        if (!writeInfo(name, text))
            continue;
        const int error = renameToNew(folder.get(), file.filename(), files_.get(), name);
        if (error == 0)
            return name;
        ::unlinkat(info_.get(), (name + infoExtension).c_str(), 0);
        if (error != EEXIST)
            throw FileError(QStringLiteral("Çöp Kutusu'na taşınamadı"), file, error);
    }
}

struct stat FreedesktopTrash::statusOf(const std::string& name) const {
    struct stat status {};
    if (::fstatat(files_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        throwUnusable(place_ / "files" / name, errno);
    return status;
}

bool FreedesktopTrash::giveBack(const std::string& name, const FileDescriptor& folder,
                                const path& file) noexcept {
    if (renameToNew(files_.get(), name, folder.get(), file.filename()) != 0)
        return false;
    ::unlinkat(info_.get(), (name + infoExtension).c_str(), 0);
    return true;
}

} // namespace

std::unique_ptr<Trash> Trash::forFilesIn(const path& folder) {
    const Mount mount = Mount::of(folder);
    const path data = dataHome();
    if (Mount::of(existing(data)) != mount)
        return FreedesktopTrash::atTopOf(folder, mount);
    makeFolders(data);
    return std::make_unique<FreedesktopTrash>(data / "Trash", path(), mount);
}

} // namespace quorvane
