#pragma once

#include <vector>

namespace quorel::rt {

/// The least of the last `window` values, of values up to 1 (van Herk's method: three comparisons
/// a value, whatever the window). Values before the first one count as 1.
class SlidingMinimum {
  public:
    /// Allocates; `window` is at least 1.
    void prepare(int window);
    void reset() noexcept;

    /// Replaces each value by the minimum of the window that ends with it.
    void process(float* values, int count) noexcept;

  private:
    std::vector<float> segment_; ///< the values of the present segment
    std::vector<float> suffix_;  ///< minima of the previous segment, from each place to its end
    int position_ = 0;
    float running_ = 1; ///< minimum of the present segment so far
};

} // namespace quorel::rt
