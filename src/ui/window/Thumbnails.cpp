#include "ui/window/Thumbnails.h"

#include "foundation/File.h"
#include "foundation/Guarded.h"

#include <QCache>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

#include <atomic>

namespace quorvane {

namespace {

constexpr int side = 80;   // pixels: 40 in the window, on a screen of twice the density
constexpr int corner = 12; // pixels
constexpr qint64 largestFile = 64 << 20;
constexpr qint64 largestArea = 120'000'000; // pixels; more is read only where it is read small
constexpr int cacheBytes = 8 << 20;

QImage clearPixel() {
    QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage rounded(const QImage& square) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(image.rect(), corner, corner);
    painter.setClipPath(outline);
    painter.drawImage(0, 0, square);
    return image;
}

/// The middle of the picture, or one clear pixel.
QImage readThumbnail(const QString& path) {
    const QFileInfo file(path);
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!file.isFile() || file.size() > largestFile || !size.isValid() ||
        qint64(size.width()) * size.height() > largestArea)
        return clearPixel();
    reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatioByExpanding));
    const QImage image = reader.read();
    if (image.isNull())
        return clearPixel();
    return rounded(image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side));
}

} // namespace

class Thumbnails::Cache {
  public:
    Cache() { images_.lock()->setMaxCost(cacheBytes); }
    QImage find(const QString& id) {
        const auto images = images_.lock();
        const QImage* known = images->object(id);
        return known == nullptr ? QImage() : *known;
    }
    void keep(const QString& id, const QImage& image) {
        const auto bytes = static_cast<int>(image.sizeInBytes());
        images_.lock()->insert(id, new QImage(image), bytes); // it owns it
    }

  private:
    Guarded<QCache<QString, QImage>> images_;
};

namespace {

/// Belongs to the engine, which may be done with it before the work is.
class Response final : public QQuickImageResponse {
  public:
    /// What the work knows of the response.
    struct Wish {
        explicit Wish(Response* of) : response(of) {}
        Guarded<Response*> response; ///< none once it is gone
        std::atomic<bool> isCancelled = false;
    };

    ~Response() override { *wish_->response.lock() = nullptr; }
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }
    void cancel() override { wish_->isCancelled = true; }

    const std::shared_ptr<Wish>& wish() const { return wish_; }

    static void grant(Wish& wish, const QImage& image) {
        const auto response = wish.response.lock();
        if (*response == nullptr)
            return;
        (*response)->image_ = image;
        Q_EMIT(*response)->finished();
    }

  private:
    QImage image_;
    const std::shared_ptr<Wish> wish_ = std::make_shared<Wish>(this);
};

} // namespace

Thumbnails::Thumbnails() : cache_(std::make_shared<Cache>()) {
    pool_.setMaxThreadCount(1);
}

QQuickImageResponse* Thumbnails::requestImageResponse(const QString& id, const QSize&) {
    auto* response = new Response;
    pool_.start([wish = response->wish(), id, cache = cache_] {
        QImage image = cache->find(id);
        if (image.isNull() && !wish->isCancelled) {
            image = readThumbnail(pathText(QByteArray::fromHex(id.toLatin1()).toStdString()));
            cache->keep(id, image);
        }
        Response::grant(*wish, image.isNull() ? clearPixel() : image);
    });
    return response;
}

} // namespace quorvane
