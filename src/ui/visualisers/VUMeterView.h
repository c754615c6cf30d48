#pragma once

#include "ui/visualisers/PixelFrame.h"

#include <QImage>
#include <QLineF>

namespace quorel {

/// Both dials without needles. Whoever paints gauges keeps one for each place.
class VUFaces {
  public:
    /// The dials at those places of the canvas, both of the size of the first.
    const QImage& picture(const SpriteKey& key, QRect left, QRect right);

  private:
    SpriteKey key_;
    QImage picture_;
};

/// Two needle gauges side by side, left channel left.
struct VUMeterView {
    double leftDb = -30; ///< dB on the dial; the needle stops at its ends
    double rightDb = -30;
    double displayMin = -20; ///< dB where the needle stands at `angleStart`
    double displayMax = 3;   ///< dB where it stands at `angleEnd`
    double imgW = 206;       ///< the dial's size as drawn
    double imgH = 100;
    double angleStart = 212; ///< degrees clockwise from pointing right
    double angleEnd = 328;

    /// From pivot to tip on a gauge of that size.
    QLineF needle(double db, QSizeF gauge) const;

    /// `size` in the painter's units. `brightness` is 0..1.
    void paint(QPainter& painter, QSizeF size, double brightness, VUFaces& faces) const;

  private:
    void paintNeedle(QPainter& painter, const QRect& gauge, double unit, double db,
                     double brightness) const;
};

} // namespace quorel
