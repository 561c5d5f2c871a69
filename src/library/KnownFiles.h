#pragma once

#include "foundation/FileVersion.h"

#include <QString>
#include <QUuid>

#include <optional>
#include <string>
#include <vector>

namespace quorvane {

/// A file of a folder library, and the identifier that its version goes by. The path is the bytes
/// of the path inside the library.
struct KnownFile {
    std::string path;
    QUuid identifier;
    FileVersion version;

    bool operator==(const KnownFile&) const = default;
};

/// What is remembered of a folder library between two scans. Any thread; throws what the memory
/// behind it throws.
class KnownFiles {
  public:
    virtual ~KnownFiles() = default;

    /// All of them, in no order.
    virtual std::vector<KnownFile> files() = 0;

    /// The digest (64 lower-case hexadecimal digits) of the bytes that were staged for the
    /// identifier; none when nothing ever was.
    virtual std::optional<QString> contentOf(const QUuid& identifier) = 0;

    /// What a scan found to be different, all or nothing: `changed` takes the place of what was
    /// known of those paths, `gone` is forgotten, and what was known as `superseded` is there in
    /// another version now.
    virtual void update(const std::vector<KnownFile>& changed, const std::vector<std::string>& gone,
                        const std::vector<QUuid>& superseded) = 0;
};

/// Remembers nothing: every scan is the first.
class NoKnownFiles final : public KnownFiles {
  public:
    std::vector<KnownFile> files() override { return {}; }
    std::optional<QString> contentOf(const QUuid&) override { return std::nullopt; }
    void update(const std::vector<KnownFile>&, const std::vector<std::string>&,
                const std::vector<QUuid>&) override {}
};

} // namespace quorvane
