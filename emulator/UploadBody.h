#pragma once

#include "emulator/Call.h"
#include "foundation/Crypto.h"
#include "foundation/File.h"

namespace quorvane::emulator {

/// Where the bytes of a body go.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    virtual void add(QByteArrayView bytes) = 0;
};

/// The bytes of an upload as they come in: summed up, and written to a file when a folder is given.
class UploadBody final : public ByteSink {
  public:
    /// Throws `FileError`. The first `keptBytes` go into the request's record.
    UploadBody(std::filesystem::path storeFolder, std::int64_t keptBytes);
    ~UploadBody() override;
    UploadBody(const UploadBody&) = delete;
    UploadBody& operator=(const UploadBody&) = delete;

    void add(QByteArrayView bytes) override;

    /// Enters the sum of what came into `call`. Call once.
    void sumUp(Call& call);

    /// Gives the file in the folder its final name, and returns its path; empty without a folder.
    /// A file that is not kept goes.
    std::filesystem::path keep(const Call& call);

  private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
    FileDescriptor output_;
    Sha256 hash_;
    std::int64_t keptBytes_;
    QByteArray start_;
};

} // namespace quorvane::emulator
