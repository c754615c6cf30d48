#pragma once

#include "audio/rt/GainRamp.h"
#include "audio/rt/GainSmoother.h"
#include "audio/rt/SlidingMinimum.h"

#include <array>
#include <vector>

namespace quorel::rt {

/// A look-ahead limiter, linked over all channels: no sample leaves it above kCeiling, whatever
/// comes in, NaN and infinity included. Where nothing exceeds the ceiling the gain is exactly 1 and
/// the unit a mere delay of 1.5 ms.
///
/// The gain that each frame needs is held by a sliding minimum over look-ahead and hold time,
/// released exponentially, and then averaged over the look-ahead: it has come all the way down when
/// the peak leaves the delay.
class PeakLimiter final : public Node {
  public:
    /// The greatest sample that 16 bits can hold.
    static constexpr float kCeiling = 32767.0f / 32768.0f;

    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override;
    int latencyFrames() const noexcept override { return lookAhead_; }

    /// Gain before the limiter in dB, -40..40, reached over 20 ms. Rendering thread.
    void setPreGain(float db) noexcept;

    /// The limiting of the frame computed last: 1 is none.
    float limitingGain() const noexcept { return gain_; }

  private:
    float gatherPeaks(const Block& block, float* peaks) noexcept;
    void limitingGains(float* peaksToGains, int frames) noexcept;
    void delay(const Block& block) noexcept;

    GainRamp preGain_;
    int glideFrames_ = 1;
    int lookAhead_ = 1;
    int idleFrames_ = 0; ///< after so many frames of released gain, nothing of a peak remains
    int releasedFrames_ = 0;
    double release_ = 0;
    double released_ = 1; ///< the gain after the release stage
    float gain_ = 1;
    SlidingMinimum minimum_;
    GainSmoother smoother_;
    std::array<std::vector<float>, kMaxPairs> delayed_;
    int delayPosition_ = 0;
};

} // namespace quorel::rt
