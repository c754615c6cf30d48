#include "audio/rt/BypassFade.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Decibels.h"

#include <algorithm>

namespace quorel::rt {

namespace {
constexpr double kFadeSeconds = 0.015;
}

void BypassFade::prepare(int sampleRate) {
    fadeFrames_ = framesOf(kFadeSeconds, sampleRate);
    finish();
}

void BypassFade::setBypass(bool bypass) noexcept {
    const float target = bypass ? 0.0f : 1.0f;
    if (target != wet_.target())
        wet_.rampTo(target, fadeFrames_, Shape::RaisedCosine);
}

void BypassFade::keepDry(const Block& block) noexcept {
    if (wet_.atTarget())
        return;
    for (int p = 0; p < block.pairs; ++p)
        std::copy_n(samples(block, p), 2 * block.frames, dry_[static_cast<std::size_t>(p)].data());
}

void BypassFade::mix(Block& block) noexcept {
    if (wet_.atTarget())
        return;
    float wet[kMaxBlockFrames];
    wet_.render(wet, block.frames);
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        const float* dry = dry_[static_cast<std::size_t>(p)].data();
        // This form gives either signal exactly where the weight has reached 1 or 0.
        for (int i = 0; i < block.frames; ++i) {
            const float rest = 1.0f - wet[i];
            x[2 * i] = x[2 * i] * wet[i] + dry[2 * i] * rest;
            x[2 * i + 1] = x[2 * i + 1] * wet[i] + dry[2 * i + 1] * rest;
        }
    }
}

} // namespace quorel::rt
