#include "audio/rt/Mixer.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Decibels.h"

#include <algorithm>

namespace quorel::rt {

namespace {
constexpr double kGlideSeconds = 0.020;
}

void Mixer::prepare(const Format& format) {
    glideFrames_ = framesOf(kGlideSeconds, format.sampleRate);
    reset();
}

void Mixer::reset() noexcept {
    volume_.finish();
    left_.finish();
    right_.finish();
}

void Mixer::setVolume(float volume) noexcept {
    volume_.snap(std::max(0.0f, volume));
}

void Mixer::glideVolume(float volume) noexcept {
    rampVolume(volume, glideFrames_, Shape::RaisedCosine);
}

void Mixer::rampVolume(float volume, int frames, Shape shape) noexcept {
    volume_.rampTo(std::max(0.0f, volume), frames, shape);
}

void Mixer::setPan(float pan) noexcept {
    pan_ = std::clamp(pan, -1.0f, 1.0f);
    left_.rampTo(std::min(1.0f, 1.0f - pan_), glideFrames_, Shape::RaisedCosine);
    right_.rampTo(std::min(1.0f, 1.0f + pan_), glideFrames_, Shape::RaisedCosine);
}

void Mixer::process(Block& block) noexcept {
    const auto centred = [](const GainRamp& side) {
        return side.atTarget() && side.value() == 1.0f;
    };
    for (int done = 0; done < block.frames;) {
        // Parts end where a side's ramp ends: what a frame undergoes must not depend on its block.
        int frames = block.frames - done;
        for (const GainRamp* side : {&left_, &right_})
            if (!side->atTarget())
                frames = std::min(frames, side->framesLeft());
        Block part = slice(block, done, frames);
        if (centred(left_) && centred(right_))
            volume_.apply(part);
        else
            processPanned(part);
        done += frames;
    }
}

void Mixer::processPanned(const Block& block) noexcept {
    float volume[kMaxBlockFrames];
    float left[kMaxBlockFrames];
    float right[kMaxBlockFrames];
    volume_.render(volume, block.frames);
    left_.render(left, block.frames);
    right_.render(right, block.frames);
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        for (int i = 0; i < block.frames; ++i) {
            x[2 * i] *= volume[i] * left[i];
            x[2 * i + 1] *= volume[i] * right[i];
        }
    }
}

} // namespace quorel::rt
