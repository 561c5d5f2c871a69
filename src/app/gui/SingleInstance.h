#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <vector>

namespace quorvane {

/// One window per user: a later start hands its URLs to the first and ends. The two speak over a
/// local socket that only the same user may open. Main thread.
class SingleInstance {
  public:
    /// `folder` is the user's own; it is made when missing.
    explicit SingleInstance(const std::filesystem::path& folder);

    /// True for the first start. Else the first was told, and the caller ends.
    bool claim(const std::vector<QUrl>& urls);

    /// A later start came, with or without URLs.
    std::function<void(const std::vector<QUrl>&)> onLaterStart;

  private:
    void listen();
    bool tell(const std::vector<QUrl>& urls) const;

    const QString address_;
    QLockFile lock_;
    QLocalServer server_;
};

} // namespace quorvane
