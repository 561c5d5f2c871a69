#pragma once

#include "foundation/FileLock.h"

#include <QLocalServer>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <vector>

namespace quorvane {

/// What a start brings along.
struct Start {
    std::vector<QUrl> urls;
    QString activationToken; ///< the desktop's leave to come to the front; empty for none
};

/// One window per user: a later start hands over what it brought to the first and ends. The two
/// speak over a local socket that only the same user may open. Main thread.
class SingleInstance {
  public:
    /// `folder` is the user's own; it is made when missing.
    explicit SingleInstance(const std::filesystem::path& folder);

    /// True for the first start. Else the first was told, and the caller ends.
    bool claim(const Start& start);

    /// A later start came.
    std::function<void(const Start&)> onLaterStart;

  private:
    bool isFirst();
    void listen();
    void hear(QLocalSocket& visitor);
    bool tell(const Start& start) const;

    const std::filesystem::path lockFile_;
    const QString address_;
    std::optional<FileLock> lock_;
    QLocalServer server_;
};

} // namespace quorvane
