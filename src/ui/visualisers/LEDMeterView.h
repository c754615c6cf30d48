#pragma once

#include "ui/visualisers/Sprite.h"

namespace quorel {

/// A row of LEDs for each channel, left above right, each with its highest recent level.
struct LEDMeterView {
    double leftDb = -30; ///< dBFS
    double rightDb = -30;
    double holdL = -30; ///< dBFS
    double holdR = -30;
    double brightness = 1; ///< 0..1
    double ledMin = -30;   ///< dBFS; no LED is lit there
    double ledMax = 0;     ///< dBFS; all are lit there
    int segments = 24;

    /// How many LEDs that level lights.
    int litCount(double db) const;
    /// The LED lit by that hold level, or -1.
    int heldSegment(double db) const;
    QColor colourOf(int segment) const;

    /// `size` in the painter's units.
    void paint(QPainter& painter, QSizeF size, SpriteCache& sprites) const;
};

} // namespace quorel
