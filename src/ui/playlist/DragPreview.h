#pragma once

#include <QPixmap>

namespace quorel {

/// What follows the pointer while something is dragged: its name on a chip.
QPixmap dragPreview(const QString& label, double devicePixelRatio);

} // namespace quorel
