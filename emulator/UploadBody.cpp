#include "emulator/UploadBody.h"

#include "emulator/Tokens.h"

#include <algorithm>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr std::int64_t formatBytes = 64; ///< enough to tell a picture or movie by
constexpr qsizetype longestKeptName = 60;

} // namespace

UploadBody::UploadBody(std::filesystem::path storeFolder, std::int64_t keptBytes)
    : folder_(std::move(storeFolder)), keptBytes_(keptBytes) {
    if (folder_.empty())
        return;
    std::filesystem::create_directories(folder_);
    file_ = folder_ / pathFrom(u".upload-"_s + opaqueText(12));
    output_ = openFile(file_, O_WRONLY | O_CREAT | O_EXCL, 0644);
}

UploadBody::~UploadBody() {
    std::error_code ignored;
    if (!file_.empty())
        std::filesystem::remove(file_, ignored);
}

void UploadBody::add(QByteArrayView bytes) {
    hash_.add(bytes);
    const auto missing = std::max(formatBytes, keptBytes_) - start_.size();
    if (missing > 0)
        start_.append(bytes.first(std::min<qsizetype>(missing, bytes.size())));
    if (output_.isOpen())
        writeAll(output_.get(), viewOf(bytes), file_);
}

void UploadBody::sumUp(Call& call) {
    call.request.bodySha256 = hash_.finish().toHex();
    call.request.body = start_.first(std::min<qsizetype>(start_.size(), keptBytes_));
    call.uploadStart = start_;
}

std::filesystem::path UploadBody::keep(const Call& call) {
    if (file_.empty())
        return {};
    const QString name = call.uploadFilename().replace(u'/', u'_').right(longestKeptName);
    const QString prefix = QString::fromLatin1(call.request.bodySha256.first(16));
    std::filesystem::path kept = folder_ / pathFrom(prefix + u'-' + name);
    std::filesystem::rename(file_, kept);
    file_.clear();
    return kept;
}

} // namespace quorvane::emulator
