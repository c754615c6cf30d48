#include "audio/rt/Ring.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace quorel::rt {

void ThreadRole::check() noexcept {
#ifndef NDEBUG
    std::thread::id none{};
    const auto self = std::this_thread::get_id();
    assert(holder_.compare_exchange_strong(none, self) || none == self);
#endif
}

// The samples are left uninitialised on purpose: a ring is made at every seek, and pages that are
// never filled need not be touched.
Ring::Ring(int channels, int64_t capacity)
    : channels_(channels)
    , capacity_(capacity)
    , samples_(new float[static_cast<std::size_t>(channels * capacity)]) {}

int64_t Ring::level() const noexcept {
    const int64_t read = read_.load(std::memory_order_acquire);
    return std::max<int64_t>(0, written_.load(std::memory_order_acquire) - read);
}

int64_t Ring::write(const float* frames, int64_t count) noexcept {
    writer_.check();
    const int64_t from = writePosition();
    count = std::min(count, writable());
    const int64_t first = std::min(count, capacity_ - from % capacity_);
    const auto bytes = [this](int64_t n) {
        return static_cast<std::size_t>(n * channels_) * sizeof(float);
    };
    std::memcpy(at(from), frames, bytes(first));
    std::memcpy(at(0), frames + first * channels_, bytes(count - first));
    written_.store(from + count, std::memory_order_release);
    return count;
}

// Sequentially consistent on both sides: either the reader sees the shortened end, or the writer
// sees that a read is going on and waits for it (at most one block long).
bool Ring::rewind(int64_t position) noexcept {
    writer_.check();
    const int64_t end = writePosition();
    if (position >= end) {
        return true;
    }
    written_.store(position, std::memory_order_seq_cst);
    while (reading_.load(std::memory_order_seq_cst)) {
        std::this_thread::yield();
    }
    return read_.load(std::memory_order_acquire) <= position;
}

int64_t Ring::read(float* frames, int64_t count) noexcept {
    reader_.check();
    reading_.store(true, std::memory_order_seq_cst);
    const int64_t from = read_.load(std::memory_order_relaxed);
    count = std::clamp<int64_t>(written_.load(std::memory_order_seq_cst) - from, 0, count);
    const int64_t first = std::min(count, capacity_ - from % capacity_);
    const auto bytes = [this](int64_t n) {
        return static_cast<std::size_t>(n * channels_) * sizeof(float);
    };
    std::memcpy(frames, at(from), bytes(first));
    std::memcpy(frames + first * channels_, at(0), bytes(count - first));
    read_.store(from + count, std::memory_order_release);
    reading_.store(false, std::memory_order_seq_cst);
    return count;
}

} // namespace quorel::rt
