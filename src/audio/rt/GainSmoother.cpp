#include "audio/rt/GainSmoother.h"

#include <algorithm>
#include <cstring>

namespace quorel::rt {

namespace {

constexpr std::int32_t kOne = 1 << 24; // what a float holds exactly

/// Moves the last `length` entries behind a block of `count` to the front.
void keepLast(std::vector<std::int64_t>& history, int length, int count) noexcept {
    std::memmove(history.data(), history.data() + count,
                 sizeof(std::int64_t) * static_cast<std::size_t>(length));
}

} // namespace

void GainSmoother::prepare(int span) {
    firstLength_ = (span + 1) / 2;
    secondLength_ = span + 1 - firstLength_;
    scale_ = 1.0 / (static_cast<double>(firstLength_) * secondLength_ * kOne);
    first_.resize(static_cast<std::size_t>(firstLength_ + kMaxBlockFrames));
    second_.resize(static_cast<std::size_t>(secondLength_ + kMaxBlockFrames));
    reset();
}

void GainSmoother::reset() noexcept {
    firstSum_ = std::int64_t{firstLength_} * kOne;
    secondSum_ = firstSum_ * secondLength_;
    std::fill(first_.begin(), first_.end(), kOne);
    std::fill(second_.begin(), second_.end(), firstSum_);
}

void GainSmoother::process(float* gains, int count) noexcept {
    std::int64_t* first = first_.data();
    std::int64_t* second = second_.data();
    for (int i = 0; i < count; ++i)
        first[firstLength_ + i] = static_cast<std::int32_t>(gains[i] * static_cast<float>(kOne));
    for (int i = 0; i < count; ++i) {
        firstSum_ += first[firstLength_ + i] - first[i];
        second[secondLength_ + i] = firstSum_;
    }
    for (int i = 0; i < count; ++i) {
        secondSum_ += second[secondLength_ + i] - second[i];
        gains[i] = static_cast<float>(static_cast<double>(secondSum_) * scale_);
    }
    keepLast(first_, firstLength_, count);
    keepLast(second_, secondLength_, count);
}

} // namespace quorel::rt
