#include "audio/rt/GainRamp.h"

#include "audio/rt/BlockOps.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorel::rt {

void GainRamp::snap(float value) noexcept {
    value_ = target_ = value;
    framesLeft_ = 0;
}

void GainRamp::rampTo(float target, int frames, Shape shape) noexcept {
    if (frames < 1 || (atTarget() && target == value_)) {
        snap(target);
        return;
    }
    start_ = static_cast<double>(value_);
    target_ = target;
    length_ = framesLeft_ = frames;
    shape_ = shape;
}

void GainRamp::renderRamp(float* gains, int frames) noexcept {
    const double distance = static_cast<double>(target_) - start_;
    const int done = length_ - framesLeft_;
    if (shape_ == Shape::Linear) {
        const double slope = distance / length_;
        for (int i = 0; i < frames; ++i)
            gains[i] = static_cast<float>(start_ + slope * (done + i + 1));
    } else {
        const double angle = std::numbers::pi / length_;
        for (int i = 0; i < frames; ++i)
            gains[i] = static_cast<float>(
                start_ + distance * (0.5 - 0.5 * std::cos(angle * (done + i + 1))));
    }
    framesLeft_ -= frames;
    if (framesLeft_ == 0)
        gains[frames - 1] = target_;
    value_ = gains[frames - 1];
}

void GainRamp::render(float* gains, int frames) noexcept {
    const int ramping = std::min(frames, framesLeft_);
    if (ramping > 0)
        renderRamp(gains, ramping);
    std::fill(gains + ramping, gains + frames, value_);
}

void GainRamp::apply(Block& block) noexcept {
    const int ramping = std::min(block.frames, framesLeft_);
    if (ramping > 0) {
        float gains[kMaxBlockFrames];
        renderRamp(gains, ramping);
        multiply(slice(block, 0, ramping), gains);
    }
    if (value_ == 1.0f || ramping == block.frames)
        return;
    const Block rest = slice(block, ramping, block.frames - ramping);
    if (value_ == 0.0f) {
        silence(rest);
        return;
    }
    for (int p = 0; p < rest.pairs; ++p) {
        float* x = samples(rest, p);
        for (int i = 0; i < 2 * rest.frames; ++i)
            x[i] *= value_;
    }
}

} // namespace quorel::rt
