#pragma once

#include <QPainter>
#include <QSize>
#include <utility>

namespace quorel {

/// A canvas seen in device pixels: while it lives its painter works in them, from the canvas's
/// upper left corner and clipped to the canvas, so that sprites meet pixels one to one at every
/// scale. The painter's transformation may move and scale evenly, no more.
class PixelFrame {
  public:
    /// `size` in the painter's units.
    PixelFrame(QPainter& painter, QSizeF size);
    ~PixelFrame() { painter_.restore(); }
    PixelFrame(const PixelFrame&) = delete;
    PixelFrame& operator=(const PixelFrame&) = delete;

    QSize size() const { return size_; }
    /// Device pixels in one of the painter's units: the interface's scale times the screen's.
    double unit() const { return unit_; }
    int pixels(double units) const { return qRound(units * unit_); }
    /// The first pixel, and the one past the last, of an element that begins there in a row where
    /// the next one begins `step` units further on, after a gap. Where whole pixels do not come out
    /// even the elements differ in width, not the gaps between, which would catch the eye.
    std::pair<int, int> pixelSlot(double begin, double step, double gap) const;

  private:
    QPainter& painter_;
    double unit_;
    QSize size_;
};

/// What sprites are made for. The unit stands for both the scale and the device pixel ratio.
struct SpriteKey {
    QSize size;
    double unit = 0;
    double brightness = 1;

    bool operator==(const SpriteKey&) const = default;
};

} // namespace quorel
