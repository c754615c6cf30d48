#pragma once

#include "ui/visualisers/Sprite.h"

#include <span>

namespace quorel {

/// Bars side by side over the whole canvas, low frequencies left.
struct SpectrumView {
    std::span<const float> bars; ///< 0..1 of the canvas's height; others are clamped

    /// `size` in the painter's units. `brightness` is 0..1.
    void paint(QPainter& painter, QSizeF size, double brightness, SpriteCache& sprites) const;
};

} // namespace quorel
