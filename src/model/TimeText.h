#pragma once

#include <QString>
#include <optional>

namespace quorel {

/// A position or a track's length in seconds as "3:07" or "1:02:09", rounded to whole seconds;
/// dashes where it is absent, negative or not finite.
QString formatTime(std::optional<double> seconds);

/// A playlist's length in seconds as "42:05", "2h 5m" or "1d 3h"; empty where it is absent, not
/// above zero or not finite.
QString formatTotalDuration(std::optional<double> seconds);

} // namespace quorel
