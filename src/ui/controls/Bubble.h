#pragma once

#include <QPainterPath>

namespace quorel {

/// Which way a bubble's tip points.
enum class TipSide { Up, Down };

/// A rounded rectangle with a tip on one side that fills `area`; the tip is at `x`, `height` long.
QPainterPath bubble(const QRectF& area, double radius, TipSide side, double x, double height);

/// Fills and outlines it like a raised part of the panel.
void paintBubble(QPainter& painter, const QPainterPath& shape);

} // namespace quorel
