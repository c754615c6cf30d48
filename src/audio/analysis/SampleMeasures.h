#pragma once

#include <span>

namespace quorel {

/// The largest magnitude of the samples, 0 without any. NaN and infinity count as silence, which is
/// what playing makes of them.
float peakOf(std::span<const float> samples) noexcept;

/// The sum of the samples' squares; NaN and infinity count as silence.
double sumOfSquares(std::span<const float> samples) noexcept;

} // namespace quorel
