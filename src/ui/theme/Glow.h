#pragma once

#include <QColor>
#include <QImage>

namespace quorel {

/// The light that the shape sheds around itself: its opacity, blurred over about `radius` pixels,
/// in the colour. As large as the shape, so leave that much room around it. Too slow for every
/// frame.
QImage glowOf(const QImage& shape, const QColor& colour, int radius);

} // namespace quorel
