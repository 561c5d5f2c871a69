#include "google/RequestBody.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

RequestBody::RequestBody(const HttpRequest& request) : request_(request) {
    if (!request.bodyFile) {
        size_ = request.body.size();
        return;
    }
    // Not blocking: to open a pipe would wait for its writer.
    file_ = openFile(*request.bodyFile, O_RDONLY | O_NONBLOCK);
    struct stat info {};
    if (::fstat(file_.get(), &info) != 0 || !S_ISREG(info.st_mode))
        throw FileError(QStringLiteral("Dosya okunamadı"), *request.bodyFile,
                        S_ISDIR(info.st_mode) ? EISDIR : EINVAL);
    size_ = info.st_size;
    if (const auto& range = request.bodyRange) {
        start_ = range->offset;
        size_ = range->size;
    }
}

std::optional<size_t> RequestBody::read(char* buffer, size_t room) {
    const size_t wanted = std::min(room, static_cast<size_t>(size_ - offset_));
    if (!file_.isOpen()) {
        std::memcpy(buffer, request_.body.constData() + offset_, wanted);
        offset_ += static_cast<std::int64_t>(wanted);
        return wanted;
    }
    ssize_t n = 0;
    do {
        n = ::pread(file_.get(), buffer, wanted, start_ + offset_);
    } while (n < 0 && errno == EINTR);
    if (n < 0 || (n == 0 && wanted > 0)) { // a file that shrank counts as damaged
        errorNumber_ = n < 0 ? errno : EIO;
        return std::nullopt;
    }
    offset_ += n;
    return static_cast<size_t>(n);
}

} // namespace quorvane
