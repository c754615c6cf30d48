#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

namespace quorel::rt {

/// Notes which thread plays a role and asserts, in debug builds, that it stays the same one.
class ThreadRole {
  public:
    void check() noexcept;

  private:
#ifndef NDEBUG
    std::atomic<std::thread::id> holder_{};
#endif
};

/// A lock-free ring of interleaved frames between one writing and one reading thread. Positions
/// count frames since the ring was made and never wrap.
class Ring {
  public:
    /// `capacity` in frames (> 0), `channels` 1..kMaxChannels.
    Ring(int channels, int64_t capacity);

    int channels() const noexcept { return channels_; }
    int64_t capacity() const noexcept { return capacity_; }

    /// Any thread: frames written and not yet read, as of a moment ago.
    int64_t level() const noexcept;
    /// Any thread: frames read so far.
    int64_t readPosition() const noexcept { return read_.load(std::memory_order_acquire); }

    /// Writer: frames written so far, and how many more fit now.
    int64_t writePosition() const noexcept { return written_.load(std::memory_order_relaxed); }
    int64_t writable() const noexcept { return capacity_ - level(); }
    /// Writer: appends up to `frames` and returns how many fitted.
    int64_t write(const float* frames, int64_t count) noexcept;
    /// Writer: takes back what was written from `position` on. False when some of it has been read
    /// already; nothing sensible can follow then. Waits out a read that is going on.
    bool rewind(int64_t position) noexcept;

    /// Reader: takes up to `count` frames into `frames` and returns how many there were.
    int64_t read(float* frames, int64_t count) noexcept;

  private:
    float* at(int64_t position) noexcept { return &samples_[(position % capacity_) * channels_]; }

    const int channels_;
    const int64_t capacity_;
    const std::unique_ptr<float[]> samples_;
    alignas(64) std::atomic<int64_t> written_ = 0;
    alignas(64) std::atomic<int64_t> read_ = 0;
    std::atomic<bool> reading_ = false;
    ThreadRole writer_, reader_;
};

} // namespace quorel::rt
