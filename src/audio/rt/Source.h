#pragma once

#include "audio/rt/Ring.h"

#include <atomic>
#include <cstdint>
#include <limits>

namespace quorel::rt {

/// One unbroken stream of device-rate frames: everything that is played between one seek, load or
/// change of device and the next. Made on the main thread, filled by the source worker, played by
/// the renderer, and freed on the main thread when the renderer has handed it back.
struct Source {
    static constexpr int64_t kEndUnknown = std::numeric_limits<int64_t>::max();

    Source(uint64_t epochNumber, int channels, int64_t capacity, bool startsInsideMusic)
        : epoch(epochNumber)
        , softStart(startsInsideMusic)
        , ring(channels, capacity) {}

    const uint64_t epoch;
    /// Fade the first frames in, because the stream does not begin where its music begins.
    const bool softStart;
    Ring ring;
    /// Set by the worker when enough is in the ring to start with.
    std::atomic<bool> primed = false;
    /// Set by the worker when it has written the last frame: the stream's length in frames.
    std::atomic<int64_t> end = kEndUnknown;

  private:
    friend class SourceExchange;
    Source* next_ = nullptr;
};

/// Hands the newest source to the renderer and the ones it is done with back.
class SourceExchange {
  public:
    /// Main thread: offers a source; one that was offered before and never taken comes back.
    Source* offer(Source* source) noexcept {
        return offered_.exchange(source, std::memory_order_acq_rel);
    }
    /// Main thread: one of the sources that the renderer is done with, or null.
    Source* collect() noexcept {
        if (!collected_) {
            collected_ = returned_.exchange(nullptr, std::memory_order_acquire);
        }
        Source* source = collected_;
        if (source) {
            collected_ = source->next_;
        }
        return source;
    }

    /// Renderer: takes the source on offer, or null when there is none.
    Source* take() noexcept { return offered_.exchange(nullptr, std::memory_order_acq_rel); }
    /// Renderer: gives a source back.
    void giveBack(Source* source) noexcept {
        source->next_ = returned_.load(std::memory_order_relaxed);
        while (!returned_.compare_exchange_weak(source->next_, source, std::memory_order_release,
                                                std::memory_order_relaxed)) {
        }
    }

  private:
    std::atomic<Source*> offered_ = nullptr;
    std::atomic<Source*> returned_ = nullptr;
    Source* collected_ = nullptr; // main thread
};

} // namespace quorel::rt
