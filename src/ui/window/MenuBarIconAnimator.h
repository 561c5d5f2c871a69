#pragma once

#include <QIcon>
#include <QImage>
#include <QTimer>

#include <functional>
#include <vector>

namespace quorvane {

/// The spinning badge of the status item: sixteen drawn frames, one every 84 milliseconds. Main
/// thread. Never two animations at once.
class MenuBarIconAnimator final : public QObject {
    Q_OBJECT

  public:
    static constexpr int frameCount = 16;
    static constexpr int frameTime = 84; ///< milliseconds
    static constexpr double side = 18;   ///< of the badge, in points

    /// `show` is told every frame while the animation runs.
    explicit MenuBarIconAnimator(std::function<void(const QIcon&)> show);

    /// Starts with the first frame; `pixels` is the side of the item on the screen.
    void start(int pixels);
    void stop();
    bool isRunning() const { return timer_.isActive(); }

    void prepareFrames(int pixels);
    const std::vector<QIcon>& frames() const { return frames_; }

    /// A frame of `size` points, turned clockwise by `rotationAngle` degrees, in `scale` pixels a
    /// point.
    static QImage renderFrame(QSizeF size, double rotationAngle, double scale);

  private:
    void showNext();

    std::function<void(const QIcon&)> show_;
    std::vector<QIcon> frames_;
    int framePixels_ = 0;
    std::size_t next_ = 0;
    QTimer timer_;
};

} // namespace quorvane
