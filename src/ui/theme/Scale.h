#pragma once

#include <QtMath>
#include <algorithm>

namespace quorel {

/// The size of the whole interface, 0.5..1.5. Widgets paint in base units (points at scale 1) under
/// `painter.scale(uiScale(), uiScale())`; only size hints, hit tests and row heights use px().
/// Main thread.
double uiScale();
void setUiScaleFactor(double scale);

/// That many base units in whole pixels, at least 1.
inline int px(double units) {
    return std::max(1, qRound(units * uiScale()));
}

} // namespace quorel
