#include "ui/window/MenuBarIconAnimator.h"

#include "ui/window/StatusBadge.h"

#include <QPainter>

#include <cmath>
#include <numbers>

namespace quorvane {

namespace {

constexpr double arcRadius = 4.8;
constexpr double arcWidth = 1.4;
constexpr double arcAlpha = 0.95;
constexpr double dotSide = 3;

/// Begin and end of each arc in radians, counter-clockwise from three o'clock.
struct Arc {
    double begin;
    double end;
};
constexpr std::array arcs{Arc{-0.47123889803846897, 2.199114857512855},
                          Arc{2.670353755551324, 5.340707511102648}};

int sixteenths(double radians) {
    return static_cast<int>(std::lround(radians * 180 / std::numbers::pi * 16));
}

} // namespace

MenuBarIconAnimator::MenuBarIconAnimator(std::function<void(const QIcon&)> show)
    : show_(std::move(show)) {
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(frameTime);
    connect(&timer_, &QTimer::timeout, this, &MenuBarIconAnimator::showNext);
}

void MenuBarIconAnimator::prepareFrames(int pixels) {
    if (pixels == framePixels_)
        return;
    framePixels_ = pixels;
    frames_.clear();
    for (int frame = 0; frame < frameCount; ++frame)
        frames_.emplace_back(
            QPixmap::fromImage(renderFrame({side, side}, frame * 0.0625 * 360, pixels / side)));
}

void MenuBarIconAnimator::start(int pixels) {
    stop();
    prepareFrames(pixels);
    next_ = 0;
    showNext();
    timer_.start();
}

void MenuBarIconAnimator::stop() {
    timer_.stop();
}

void MenuBarIconAnimator::showNext() {
    show_(frames_[next_]);
    next_ = (next_ + 1) % frames_.size();
}

QImage MenuBarIconAnimator::renderFrame(QSizeF size, double rotationAngle, double scale) {
    return drawBadge(size, scale, badgeBlue, [&](QPainter& painter) {
        painter.translate(size.width() / 2, size.height() / 2);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QRectF(-dotSide / 2, -dotSide / 2, dotSide, dotSide));
        painter.rotate(rotationAngle);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(QColor::fromRgbF(1, 1, 1, arcAlpha), arcWidth, Qt::SolidLine, Qt::FlatCap));
        const QRectF circle(-arcRadius, -arcRadius, 2 * arcRadius, 2 * arcRadius);
        for (const Arc& arc : arcs)
            painter.drawArc(circle, sixteenths(arc.begin), sixteenths(arc.end - arc.begin));
    });
}

} // namespace quorvane
