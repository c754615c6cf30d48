#pragma once

#include "audio/rt/GainRamp.h"

#include <array>

namespace quorel::rt {

/// Switches a unit in and out with a cross-fade of 15 ms. A unit's process() is:
///
///     if (fade.bypassed()) return;
///     fade.keepDry(block);
///     ... process the block in place ...
///     fade.mix(block);
///     if (fade.bypassed()) ... forget the signal ...
///
/// Belongs to the rendering thread, except prepare().
class BypassFade {
  public:
    explicit BypassFade(bool bypassed)
        : wet_(bypassed ? 0.0f : 1.0f) {}

    void prepare(int sampleRate);
    void setBypass(bool bypass) noexcept;
    void finish() noexcept { wet_.finish(); }

    /// Whether the unit has nothing to do; false until a cross-fade has ended.
    bool bypassed() const noexcept { return wet_.atTarget() && wet_.value() == 0.0f; }

    /// Keeps the input of a block for mix(), while a cross-fade runs.
    void keepDry(const Block& block) noexcept;
    void mix(Block& block) noexcept;

  private:
    GainRamp wet_;
    int fadeFrames_ = 1;
    std::array<std::array<float, 2 * kMaxBlockFrames>, kMaxPairs> dry_;
};

} // namespace quorel::rt
