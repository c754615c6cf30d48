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
    // Local copies: the compiler cannot know that the histories do not overlap the members.
    const int firstLength = firstLength_;
    const int secondLength = secondLength_;
    const double scale = scale_;
    std::int64_t firstSum = firstSum_;
    std::int64_t secondSum = secondSum_;
    for (int i = 0; i < count; ++i) {
        firstSum += first[firstLength + i] - first[i];
        second[secondLength + i] = firstSum;
        secondSum += firstSum - second[i];
        gains[i] = static_cast<float>(static_cast<double>(secondSum) * scale);
    }
    firstSum_ = firstSum;
    secondSum_ = secondSum;
    keepLast(first_, firstLength_, count);
    keepLast(second_, secondLength_, count);
}

} // namespace quorel::rt
