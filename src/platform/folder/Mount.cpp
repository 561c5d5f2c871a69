#include "platform/folder/Mount.h"

#include "foundation/File.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane {

Mount Mount::of(const std::filesystem::path& folder) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0)
        throw FileError(QStringLiteral("Çöp Kutusu kullanılamıyor"), folder, errno);
    Mount mount{status.st_dev, 0};
#ifdef STATX_MNT_ID
    struct statx more {};
    if (::statx(AT_FDCWD, folder.c_str(), 0, STATX_MNT_ID, &more) == 0 &&
        (more.stx_mask & STATX_MNT_ID))
        mount.number = more.stx_mnt_id;
#endif
    return mount;
}

} // namespace quorvane
