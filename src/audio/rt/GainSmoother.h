#pragma once

#include "audio/rt/Format.h"

#include <cstdint>
#include <vector>

namespace quorel::rt {

/// Two moving averages in a row over gains of 0..1, together `span` values long. They sum integers,
/// so that errors never gather, and round down: the result never exceeds the greatest gain in the
/// span, and is exactly 1 where all of them are 1.
class GainSmoother {
  public:
    /// Allocates; `span` is at least 2.
    void prepare(int span);
    void reset() noexcept;

    /// At most kMaxBlockFrames gains at a time.
    void process(float* gains, int count) noexcept;

  private:
    std::vector<std::int64_t> first_;  ///< the last gains, then those of the block
    std::vector<std::int64_t> second_; ///< the last sums of the first average, likewise
    std::int64_t firstSum_ = 0;
    std::int64_t secondSum_ = 0;
    int firstLength_ = 1;
    int secondLength_ = 1;
    double scale_ = 1;
};

} // namespace quorel::rt
