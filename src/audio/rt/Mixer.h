#pragma once

#include "audio/rt/GainRamp.h"

namespace quorel::rt {

/// Output volume and balance. Methods other than prepare belong to the rendering thread.
class Mixer final : public Node {
  public:
    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override;

    /// Takes a linear gain at once; below 0 counts as 0.
    void setVolume(float volume) noexcept;

    /// Reaches a linear gain over 20 ms without an audible edge.
    void glideVolume(float volume) noexcept;

    /// Reaches a linear gain over exactly that many frames, from where it stands.
    void rampVolume(float volume, int frames, Shape shape) noexcept;

    /// Balance, -1 (left only) to 1 (right only), reached over 20 ms. The side turned away from
    /// falls linearly, the other one stays; the lanes of every pair count as left and right.
    void setPan(float pan) noexcept;

    /// The volume of the frame processed last.
    float volume() const noexcept { return volume_.value(); }
    float pan() const noexcept { return pan_; }

  private:
    void processPanned(const Block& block) noexcept;

    GainRamp volume_;
    GainRamp left_;
    GainRamp right_;
    float pan_ = 0;
    int glideFrames_ = 1;
};

} // namespace quorel::rt
