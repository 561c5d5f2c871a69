#pragma once

#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace quorvane {

/// A file that is to be sent.
struct UploadSource {
    std::filesystem::path file;
    QString fileName; ///< that its item is to have
    bool isMovie = false;
    std::function<std::int64_t()> rate = {}; ///< see `HttpRequest::bodyRate`
};

/// Keeps the address at which the upload of one file goes on, beyond the end of the program; this
/// one keeps nothing. Who has the address may write to the upload: it is in no log. Used on the
/// uploading thread; may throw `Error`.
class UploadMemory {
  public:
    virtual ~UploadMemory() = default;

    /// None when no upload of exactly these bytes is under way.
    virtual std::optional<QString> address() { return std::nullopt; }
    virtual void remember(const QString& /*address*/) {}
    virtual void forget() {}
};

} // namespace quorvane
