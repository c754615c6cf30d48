#include "audio/rt/SlidingMinimum.h"

#include <algorithm>

namespace quorel::rt {

void SlidingMinimum::prepare(int window) {
    const auto size = static_cast<std::size_t>(window);
    segment_.resize(size);
    suffix_.resize(size + 1); // the last entry is the empty minimum
    reset();
}

void SlidingMinimum::reset() noexcept {
    std::fill(segment_.begin(), segment_.end(), 1.0f);
    std::fill(suffix_.begin(), suffix_.end(), 1.0f);
    position_ = 0;
    running_ = 1;
}

void SlidingMinimum::process(float* values, int count) noexcept {
    const int window = static_cast<int>(segment_.size());
    while (count > 0) {
        const int n = std::min(count, window - position_);
        float* segment = segment_.data() + position_;
        const float* suffix = suffix_.data() + position_ + 1;
        float running = running_;
        for (int i = 0; i < n; ++i) {
            const float value = values[i];
            segment[i] = value;
            running = value < running ? value : running;
            values[i] = suffix[i] < running ? suffix[i] : running;
        }
        running_ = running;
        position_ += n;
        values += n;
        count -= n;
        if (position_ == window) {
            float least = 1;
            for (std::size_t i = segment_.size(); i-- > 0;) {
                least = std::min(least, segment_[i]);
                suffix_[i] = least;
            }
            position_ = 0;
            running_ = 1;
        }
    }
}

} // namespace quorel::rt
