#pragma once

#include "audio/rt/Node.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace quorel::rt {

/// Guards what the rendering thread and the main thread share for a few microseconds. The rendering
/// thread only tries.
class MeterLock {
  public:
    /// Main thread.
    void lock() noexcept {
        while (!try_lock()) {
            std::this_thread::yield();
        }
    }
    bool try_lock() noexcept { return !taken_.test_and_set(std::memory_order_acquire); }
    void unlock() noexcept { taken_.clear(std::memory_order_release); }

  private:
    std::atomic_flag taken_;
};

/// The frames that the meters are to show. Everything but the lock belongs to who holds the lock.
struct MeterFrames {
    static constexpr int kCapacity = 4096;

    MeterLock meterLock;
    std::array<float, kCapacity> meterL{};
    std::array<float, kCapacity> meterR{}; ///< where there are two channels or more
    int meterCount = 0;                    ///< frames present, 0..kCapacity
    int meterChannels = 1;                 ///< of the stream
};

/// Passes everything through and hands on what is being heard: sound leaves the renderer some time
/// before the ear gets it, and a picture that led the sound would look wrong.
///
/// Each time that another kHop frames have been heard, the kCapacity frames heard last are
/// delivered; before the first frame there is silence.
class MeterTap final : public Node {
  public:
    static constexpr int kHop = 2048;

    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override {} // what went through has gone through

    /// Any thread: the frames between the last one rendered and the one being heard. Limited to
    /// what the tap keeps, a second or more.
    void setOutputDelay(int64_t frames) noexcept {
        outputDelay_.store(frames, std::memory_order_relaxed);
    }

    MeterFrames& frames() noexcept { return frames_; }

  private:
    void keep(const Block& block) noexcept;
    bool deliver(int64_t end) noexcept;
    void copyKept(const std::vector<float>& kept, int64_t begin, float* out) const noexcept;

    MeterFrames frames_;
    std::atomic<int64_t> outputDelay_ = 0;
    int channels_ = 1;
    std::vector<float> left_, right_; // rings; their size is a power of two
    int64_t passed_ = 0;              // frames since prepare
    int64_t nextHop_ = kHop;          // the heard frame that the next delivery ends at
};

} // namespace quorel::rt
