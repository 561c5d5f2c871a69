#include "emulator/RequestLog.h"

namespace quorvane::emulator {

namespace {

std::int64_t bytesOf(const RecordedRequest& request) {
    std::int64_t bytes = static_cast<std::int64_t>(sizeof request) + request.path.size() +
                         request.query.size() + request.body.size() + request.answer.size();
    for (const auto& [name, value] : request.headers)
        bytes += name.size() + value.size() + static_cast<std::int64_t>(2 * sizeof(QByteArray));
    return bytes;
}

} // namespace

int RequestLog::countOf(RequestKind kind) const {
    const auto found = counts_.find(kind);
    return found == counts_.end() ? 0 : found->second;
}

void RequestLog::add(const RecordedRequest& request) {
    if (request.kind == RequestKind::upload)
        uploadedBytes_ += request.bodySize;
    requests_.push_back(request);
    bytes_ += bytesOf(request);
    while (bytes_ > byteLimit_) {
        bytes_ -= bytesOf(requests_.front());
        requests_.pop_front();
    }
}

void RequestLog::clear() {
    requests_.clear();
    counts_.clear();
    bytes_ = 0;
}

} // namespace quorvane::emulator
