#include "emulator/UploadSession.h"

namespace quorvane::emulator {

UploadSession::UploadSession(Call start, std::optional<std::int64_t> size)
    : start_(std::move(start)), size_(size) {}

void UploadSession::begin(std::int64_t offset) {
    isAtItsPlace_ = offset == received_;
    rest_.clear();
}

void UploadSession::add(QByteArrayView bytes) {
    if (!isAtItsPlace_)
        return;
    rest_.append(bytes);
    if (rest_.size() < granularity)
        return;
    const qsizetype whole = rest_.size() / granularity * granularity;
    start_.upload->add(QByteArrayView(rest_).first(whole));
    rest_.remove(0, whole);
    received_ += whole;
}

void UploadSession::end(bool isWhole) {
    if (isWhole && isAtItsPlace_) {
        start_.upload->add(rest_);
        received_ += rest_.size();
    }
    rest_.clear();
}

Call UploadSession::finish() {
    start_.request.bodySize = received_;
    start_.upload->sumUp(start_);
    return std::move(start_);
}

} // namespace quorvane::emulator
