#include "emulator/UploadBody.h"

#include "emulator/Tokens.h"

#include <algorithm>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

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
    size_ += bytes.size();
    if (const auto missing = std::min<std::int64_t>(keptBytes_ - start_.size(), bytes.size());
        missing > 0)
        start_.append(bytes.first(static_cast<qsizetype>(missing)));
    if (output_.isOpen())
        writeAll(output_.get(),
                 {reinterpret_cast<const std::uint8_t*>(bytes.data()),
                  static_cast<std::size_t>(bytes.size())},
                 file_);
}

QByteArray UploadBody::finish() {
    return hash_.finish().toHex();
}

void UploadBody::keep(const QByteArray& sha256, const QString& filename) {
    if (file_.empty())
        return;
    const QString safeName =
        QString(filename).replace(u'/', u'_').last(std::min<qsizetype>(filename.size(), 60));
    std::filesystem::rename(
        file_, folder_ / pathFrom(QString::fromLatin1(sha256.first(16)) + u'-' + safeName));
    file_.clear();
}

} // namespace quorvane::emulator
