#include "metadata/MappedFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>

namespace quorvane {

MappedFile::MappedFile(const std::filesystem::path& path)
    : file_(openFile(path, O_RDONLY | O_NONBLOCK)) {
    if (::fstat(file_.get(), &information_) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    if (!S_ISREG(information_.st_mode))
        throw FileError(QStringLiteral("Dosya okunamadı"), path,
                        S_ISDIR(information_.st_mode) ? EISDIR : EINVAL);
    if (information_.st_size == 0)
        return;
    const auto size = static_cast<size_t>(information_.st_size);
    void* start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file_.get(), 0);
    if (start == MAP_FAILED)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    bytes_ = {static_cast<const std::uint8_t*>(start), size};
}

MappedFile::~MappedFile() {
    if (!bytes_.empty())
        ::munmap(const_cast<std::uint8_t*>(bytes_.data()), bytes_.size());
}

} // namespace quorvane
