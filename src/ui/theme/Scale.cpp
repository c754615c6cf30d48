#include "ui/theme/Scale.h"

namespace quorel {

namespace {
double scaleFactor = 1;
}

double uiScale() {
    return scaleFactor;
}

void setUiScaleFactor(double scale) {
    scaleFactor = std::clamp(scale, 0.5, 1.5);
}

} // namespace quorel
