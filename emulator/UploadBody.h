#pragma once

#include "emulator/EmulatorTypes.h"
#include "foundation/Crypto.h"
#include "foundation/File.h"

namespace quorvane::emulator {

/// The bytes of an upload as they come in: summed up, and written to a file when a folder is given.
class UploadBody {
  public:
    /// Throws `FileError`. Keeps the first `keptBytes` in memory.
    UploadBody(std::filesystem::path storeFolder, std::int64_t keptBytes);
    ~UploadBody();
    UploadBody(const UploadBody&) = delete;
    UploadBody& operator=(const UploadBody&) = delete;

    void add(QByteArrayView bytes);

    std::int64_t size() const { return size_; }
    const QByteArray& start() const { return start_; }

    /// The SHA-256 in lower-case hexadecimal. Call once.
    QByteArray finish();

    /// Gives the file in the folder its final name. Without it the file goes.
    void keep(const QByteArray& sha256, const QString& filename);

  private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
    FileDescriptor output_;
    Sha256 hash_;
    std::int64_t size_ = 0;
    std::int64_t keptBytes_;
    QByteArray start_;
};

} // namespace quorvane::emulator
