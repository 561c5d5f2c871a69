#include "platform/folder/FolderIdentity.h"

#include "foundation/File.h"

#include <algorithm>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#else
#include <sys/mount.h>
#endif

namespace quorvane {

namespace {

using std::filesystem::path;

/// The name of a volume's entry is its UUID, or a FAT's serial number.
QString volumeUuid(dev_t device) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/disk/by-uuid", error)) {
        struct stat status {};
        if (::stat(entry.path().c_str(), &status) == 0 && S_ISBLK(status.st_mode) &&
            status.st_rdev == device)
            return QStringLiteral("uuid:") + pathText(entry.path().filename());
    }
    return {};
}

std::uint64_t fileSystemId(const struct statfs& system) {
    static_assert(sizeof system.f_fsid == sizeof(std::uint64_t));
    std::uint64_t id = 0;
    std::copy_n(reinterpret_cast<const char*>(&system.f_fsid), sizeof id,
                reinterpret_cast<char*>(&id));
    return id;
}

/// Some file systems make their id out of the device's number, which the next card in the same
/// reader has as well.
bool isDeviceNumber(std::uint64_t id, dev_t device) {
    const std::uint64_t low = minor(device), high = major(device);
    return id == ((low & 0xFF) | (high << 8) | ((low & ~std::uint64_t(0xFF)) << 12)) ||
           id == device;
}

QString volumeOf(dev_t device, const struct statfs& system) {
    if (QString uuid = volumeUuid(device); !uuid.isEmpty())
        return uuid;
    const std::uint64_t id = fileSystemId(system);
    return id == 0 || isDeviceNumber(id, device)
               ? QString()
               : QStringLiteral("fsid:%1").arg(id, 16, 16, QLatin1Char('0'));
}

/// FAT has no inodes; their numbers are given out anew with every mount. What lies behind FUSE
/// cannot be told.
bool hasLastingInodes(const struct statfs& system) {
#ifdef __linux__
    constexpr std::uint32_t without[] = {0x4D44, 0x2011BAB0, 0x65735546}; // FAT, exFAT, FUSE
    return std::ranges::find(without, static_cast<std::uint32_t>(system.f_type)) ==
           std::end(without);
#else
    return std::string_view(system.f_fstypename) != "msdos" &&
           std::string_view(system.f_fstypename) != "exfat";
#endif
}

QString birthOf(const path& root) {
#ifdef __linux__
    struct statx status {};
    if (::statx(AT_FDCWD, root.c_str(), 0, STATX_BTIME, &status) != 0 ||
        !(status.stx_mask & STATX_BTIME))
        return {};
    const auto seconds = status.stx_btime.tv_sec;
    const auto fraction = status.stx_btime.tv_nsec;
#else
    struct stat status {};
    if (::stat(root.c_str(), &status) != 0)
        return {};
    const auto seconds = status.st_birthtimespec.tv_sec;
    const auto fraction = status.st_birthtimespec.tv_nsec;
#endif
    return QStringLiteral("%1.%2").arg(seconds).arg(fraction, 9, 10, QLatin1Char('0'));
}

/// ".": the volume's own root.
path insideVolume(const path& root, dev_t device) {
    path top = root;
    for (path above = root.parent_path(); above != top; above = above.parent_path()) {
        struct stat status {};
        if (::stat(above.c_str(), &status) != 0 || status.st_dev != device)
            break;
        top = above;
    }
    return root.lexically_relative(top);
}

} // namespace

QString folderLibraryIdentity(const path& root) {
    std::error_code error;
    const path folder = std::filesystem::canonical(root, error);
    struct stat status {};
    struct statfs system {};
    if (error || ::stat(folder.c_str(), &status) != 0 || ::statfs(folder.c_str(), &system) != 0)
        return {};
    const QString volume = volumeOf(status.st_dev, system);
    const QString birth = birthOf(folder);
    QString itself;
    if (hasLastingInodes(system)) {
        itself = QString::number(status.st_ino);
    } else {
        const path inside = insideVolume(folder, status.st_dev);
        if (birth.isEmpty() && inside != ".")
            return {}; // another folder of that name could not be told from this one
        itself = pathText(inside);
    }
    if (volume.isEmpty())
        return {};
    return QStringList{volume, itself, birth}.join(QLatin1Char('|'));
}

bool holdsFiles(const path& root, const std::vector<LibraryFile>& files) {
    constexpr std::size_t most = 64;
    const std::size_t step = std::max<std::size_t>(1, files.size() / most);
    std::size_t looked = 0, held = 0;
    for (std::size_t i = 0; i < files.size(); i += step) {
        const FileVersion& known = files[i].version;
        const auto now = fileVersion(root / files[i].path);
        ++looked;
        held += now && now->size == known.size && now->modified == known.modified ? 1 : 0;
    }
    return 2 * held >= looked;
}

bool isStagingFolderName(std::string_view name) {
    return name == "QuorvaneStaging" || name.starts_with("QuorvaneStaging_");
}

bool isStagingFolder(const path& path) {
    std::error_code error;
    const auto canonical = std::filesystem::weakly_canonical(path, error);
    return std::ranges::any_of(error ? path : canonical, [](const std::filesystem::path& name) {
        return isStagingFolderName(name.native());
    });
}

} // namespace quorvane
