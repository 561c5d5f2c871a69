#pragma once

#include <QImage>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <memory>

namespace quorvane {

/// Small pictures of files, for image addresses "image://thumbnails/HEX", HEX being the bytes of
/// the path. They are made on a thread of their own, from files that the toolkit can read and that
/// are not absurdly large; of any other a picture of one clear pixel comes. The latest are kept.
class Thumbnails final : public QQuickAsyncImageProvider {
  public:
    Thumbnails();

    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& wanted) override;

  private:
    class Cache;

    const std::shared_ptr<Cache> cache_;
    QThreadPool pool_; ///< waits for its work at its end
};

} // namespace quorvane
