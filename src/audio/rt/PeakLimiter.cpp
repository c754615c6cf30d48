#include "audio/rt/PeakLimiter.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Decibels.h"
#include "audio/rt/VectorClones.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace quorel::rt {

namespace {

constexpr double kLookAheadSeconds = 0.0015;
constexpr double kHoldSeconds = 0.0085;
constexpr double kReleaseSeconds = 0.080;
constexpr double kPreGainGlideSeconds = 0.020;
constexpr int kMinLookAhead = 4;

/// What the release aims at: a little more than 1, so that 1 is reached, and soon.
constexpr double kReleaseTarget = 1.0001;

QUOREL_VECTOR_CLONES
void silenceNonFinite(const Block& block) noexcept {
    constexpr std::uint32_t kExponent = 0x7f800000u;
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        for (int i = 0; i < 2 * block.frames; ++i) {
            const auto bits = std::bit_cast<std::uint32_t>(x[i]);
            x[i] = std::bit_cast<float>(bits & ((bits & kExponent) == kExponent ? 0u : ~0u));
        }
    }
}

// Values of which none is negative or NaN are ordered like their bits, and comparing those as
// integers lets a loop become vector code.
std::int32_t orderOf(float value) noexcept {
    return std::bit_cast<std::int32_t>(value);
}

/// The last rounding of a gain can lift a sample over the ceiling by one unit.
QUOREL_VECTOR_CLONES
void clampToCeiling(const Block& block) noexcept {
    constexpr float kCeiling = PeakLimiter::kCeiling;
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        for (int i = 0; i < 2 * block.frames; ++i) {
            const float below = x[i] < kCeiling ? x[i] : kCeiling;
            x[i] = below > -kCeiling ? below : -kCeiling;
        }
    }
}

} // namespace

void PeakLimiter::prepare(const Format& format) {
    const int rate = format.sampleRate;
    lookAhead_ = std::max(kMinLookAhead, framesOf(kLookAheadSeconds, rate));
    glideFrames_ = framesOf(kPreGainGlideSeconds, rate);
    release_ = 1.0 - std::exp(-1.0 / (kReleaseSeconds * rate));
    minimum_.prepare(lookAhead_ + 1 + framesOf(kHoldSeconds, rate));
    smoother_.prepare(lookAhead_ + 1);
    idleFrames_ = lookAhead_ + 1;
    const int pairs = (format.channels() + 1) / 2;
    for (int p = 0; p < kMaxPairs; ++p)
        delayed_[static_cast<std::size_t>(p)].resize(
            p < pairs ? 2 * static_cast<std::size_t>(lookAhead_) : 0);
    reset();
}

void PeakLimiter::reset() noexcept {
    preGain_.finish();
    minimum_.reset();
    smoother_.reset();
    for (auto& line : delayed_)
        std::fill(line.begin(), line.end(), 0.0f);
    delayPosition_ = 0;
    released_ = 1;
    gain_ = 1;
    releasedFrames_ = idleFrames_;
}

void PeakLimiter::setPreGain(float db) noexcept {
    if (!std::isfinite(db))
        return;
    const double gain = gainFromDb(static_cast<double>(std::clamp(db, -40.0f, 40.0f)));
    preGain_.rampTo(static_cast<float>(gain), glideFrames_, Shape::RaisedCosine);
}

void PeakLimiter::process(Block& block) noexcept {
    preGain_.apply(block);
    silenceNonFinite(block);
    float gains[kMaxBlockFrames];
    const float peak = gatherPeaks(block, gains);
    delay(block);
    if (peak <= kCeiling && releasedFrames_ >= idleFrames_)
        return;
    limitingGains(gains, block.frames);
    multiply(block, gains);
    clampToCeiling(block);
    gain_ = block.frames > 0 ? gains[block.frames - 1] : gain_;
}

float PeakLimiter::gatherPeaks(const Block& block, float* peaks) noexcept {
    linkedPeaks(block, peaks);
    std::int32_t peak = 0;
    for (int i = 0; i < block.frames; ++i)
        peak = std::max(peak, orderOf(peaks[i]));
    return std::bit_cast<float>(peak);
}

void PeakLimiter::limitingGains(float* peaksToGains, int frames) noexcept {
    float* gains = peaksToGains;
    for (int i = 0; i < frames; ++i)
        gains[i] = kCeiling / std::bit_cast<float>(std::max(orderOf(gains[i]), orderOf(kCeiling)));
    minimum_.process(gains, frames);
    const double keep = 1.0 - release_;
    const double rise = release_ * kReleaseTarget;
    double released = released_;
    int releasedFrames = releasedFrames_;
    for (int i = 0; i < frames; ++i) {
        const double risen = keep * released + rise;
        const auto needed = static_cast<double>(gains[i]);
        released = risen < needed ? risen : needed;
        releasedFrames = released < 1.0 ? 0 : releasedFrames + 1;
        gains[i] = static_cast<float>(released);
    }
    released_ = released;
    releasedFrames_ = std::min(releasedFrames, idleFrames_);
    smoother_.process(gains, frames);
}

/// Exchanges the block for the samples that came in lookAhead_ frames earlier.
void PeakLimiter::delay(const Block& block) noexcept {
    int position = delayPosition_;
    for (int done = 0; done < block.frames;) {
        const int n = std::min(block.frames - done, lookAhead_ - position);
        for (int p = 0; p < block.pairs; ++p) {
            float* x = samples(block, p) + 2 * done;
            float* line = delayed_[static_cast<std::size_t>(p)].data() + 2 * position;
            std::swap_ranges(x, x + 2 * n, line);
        }
        done += n;
        position += n;
        if (position == lookAhead_)
            position = 0;
    }
    delayPosition_ = position;
}

} // namespace quorel::rt
