#pragma once

#include "audio/rt/Node.h"

namespace quorel::rt {

/// How a gain travels to its target.
enum class Shape : unsigned char {
    Linear,       ///< long fades, and fades that are one step of a longer ramp
    RaisedCosine, ///< edges and single changes: its bends are smooth, so it splatters least
};

/// A gain that reaches its targets smoothly, rendered frame by frame. The first frame after
/// rampTo(target, n) is already 1/n on the way, the n-th frame has the target exactly.
/// Belongs to the rendering thread.
class GainRamp {
  public:
    explicit GainRamp(float value = 1.0f)
        : value_(value)
        , target_(value) {}

    /// Takes the value at once and ends a running ramp.
    void snap(float value) noexcept;

    /// Travels from the present value, also out of a running ramp. Fewer than one frame snaps.
    void rampTo(float target, int frames, Shape shape) noexcept;

    /// Ends a running ramp at its target.
    void finish() noexcept { snap(target_); }

    /// The gain of the frame rendered last.
    float value() const noexcept { return value_; }
    float target() const noexcept { return target_; }
    bool atTarget() const noexcept { return framesLeft_ == 0; }
    int framesLeft() const noexcept { return framesLeft_; }

    /// Writes the gains of the next frames.
    void render(float* gains, int frames) noexcept;

    /// Multiplies all channels. Unity leaves the samples untouched, zero writes zeros.
    void apply(Block& block) noexcept;

  private:
    void renderRamp(float* gains, int frames) noexcept;

    float value_;
    float target_;
    double start_ = 0;
    int length_ = 0;
    int framesLeft_ = 0;
    Shape shape_ = Shape::Linear;
};

} // namespace quorel::rt
