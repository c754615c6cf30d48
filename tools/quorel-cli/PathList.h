#pragma once

#include "tools/quorel-cli/Command.h"

#include <QStringList>

namespace quorel::cli {

/// The option of the commands that list paths.
inline constexpr Option kAsObjects = {"--json", {}, "one JSON object a line: path"};

/// Prints paths, one a line: as the bytes of their names, or readable on a terminal.
void printPaths(const QStringList& paths, bool asObjects);

} // namespace quorel::cli
