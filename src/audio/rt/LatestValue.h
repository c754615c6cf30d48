#pragma once

#include <array>
#include <atomic>
#include <type_traits>

namespace quorel::rt {

/// Carries the newest value from one thread to another; older ones are overwritten unseen. Both
/// sides are wait-free: a triple buffer whose middle slot is exchanged.
template <typename T>
class LatestValue {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    /// Writing side: publishes a value.
    void write(const T& value) noexcept {
        slots_[back_] = value;
        back_ = middle_.exchange(static_cast<unsigned>(back_ | kFresh), std::memory_order_acq_rel) &
                kIndex;
    }

    /// Reading side: the newest value published, or a value-initialised one before the first. The
    /// reference stays good until the next read.
    const T& read() noexcept {
        if (middle_.load(std::memory_order_relaxed) & kFresh) {
            front_ = middle_.exchange(front_, std::memory_order_acq_rel) & kIndex;
        }
        return slots_[front_];
    }

  private:
    static constexpr unsigned kIndex = 3;
    static constexpr unsigned kFresh = 4;

    std::array<T, 3> slots_{};
    unsigned back_ = 0;  // the writer's
    unsigned front_ = 1; // the reader's
    std::atomic<unsigned> middle_ = 2;
};

} // namespace quorel::rt
