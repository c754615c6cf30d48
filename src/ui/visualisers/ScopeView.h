#pragma once

#include "ui/visualisers/PixelFrame.h"

#include <QImage>
#include <array>
#include <span>
#include <vector>

namespace quorel {

/// A trace and its soft light, drawn without pens: a polyline of hundreds of points at every height
/// costs the same. Whoever paints scopes keeps one for each place; it holds the buffers.
class ScopeTrace {
  public:
    /// Forgets what was made for anything else.
    void use(const SpriteKey& key);
    /// The picture of the polyline through heights (pixels from the top) that lie evenly over the
    /// whole width; at least two.
    const QImage& draw(std::span<const float> heights);

  private:
    /// For each column the heights that the trace covers in it.
    struct Spans {
        std::vector<float> top, bottom;
        void clear(std::size_t columns);
    };

    void follow(std::span<const float> heights);
    void widen(const Spans& spans, double radius, double columnsPerPixel);
    void light(float weight, int columnsPerPixel);
    void colour();

    SpriteKey key_;
    std::array<QRgb, 256> colours_{}; // by the light's strength
    Spans fine_, coarse_, wide_;
    std::vector<float> changes_; // of the light from each pixel to the one below
    std::vector<float> sum_;
    QImage image_;
};

/// The waveform from left to right over the whole canvas, positive samples up.
struct ScopeView {
    std::span<const float> samples; ///< full scale is +-1

    /// By how much small signals are enlarged.
    double gain() const;
    /// How far below the canvas's upper edge that sample lies, as a part of the canvas's height.
    static double depth(double sample, double gain);

    /// `size` in the painter's units. `brightness` is 0..1.
    void paint(QPainter& painter, QSizeF size, double brightness, ScopeTrace& trace) const;
};

} // namespace quorel
