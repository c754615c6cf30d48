#pragma once

#include <QIcon>

namespace quorel {

/// The program's icon, with or without its name on it.
QIcon appIcon(bool withWordmark);

} // namespace quorel
