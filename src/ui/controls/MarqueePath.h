#pragma once

#include "core/Clock.h"

#include <optional>

namespace quorel {

/// How a text that is too long moves: it rests at its start, glides until its end shows, rests
/// there, glides back, and so on.
struct MarqueePath {
    static constexpr Clock::Duration kRest = std::chrono::seconds(2);
    static constexpr double kSpeed = 20; ///< base units a second

    double excess = 0; ///< how much longer the text is than its room, base units

    /// How far the text is shifted to the left, 0..excess.
    double offsetAt(Clock::Duration elapsed) const;
    /// How long it still rests; absent while it glides.
    std::optional<Clock::Duration> restLeft(Clock::Duration elapsed) const;

  private:
    Clock::Duration glide() const;
};

} // namespace quorel
