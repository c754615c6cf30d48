#pragma once

#include "audio/AudioEngine.h"
#include "audio/output/MemoryOutput.h"
#include "core/ManualClock.h"

#include <cstdint>
#include <vector>

namespace quorel {

/// The real engine on a manual clock: renders as fast as the machine goes, and to the frame. A
/// timer that is due at a frame fires before that frame is rendered.
class OfflineRenderer {
  public:
    /// `outputLatency`: frames that a sound server would hold back, >= 0.
    explicit OfflineRenderer(const rt::Format& format, int outputLatency = 0);

    AudioEngine& engine() { return engine_; }
    ManualClock& clock() { return clock_; }
    MemoryOutput& output() { return output_; }

    /// Frames rendered so far.
    int64_t position() const { return position_; }

    /// Renders `frames` more, appending them interleaved to `sink`.
    void render(int64_t frames, std::vector<float>& sink);

  private:
    int64_t frameAt(Clock::Duration time) const;
    Clock::Duration timeAt(int64_t frame) const;

    ManualClock clock_;
    MemoryOutput& output_;
    AudioEngine engine_;
    int64_t position_ = 0;
};

} // namespace quorel
