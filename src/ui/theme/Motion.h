#pragma once

#include <optional>

namespace quorel {

/// Whether things should jump instead of move. The environment's QUOREL_REDUCED_MOTION (1 or 0)
/// decides before what setReducedAnimation() was told (by whoever knows the desktop's own answer),
/// and that before the settings files of KDE (AnimationDurationFactor of 0) and GTK
/// (gtk-enable-animations off), which are read once. Qt itself has no such hint. Main thread.
bool reducedAnimation();
void setReducedAnimation(std::optional<bool> reduced);

} // namespace quorel
