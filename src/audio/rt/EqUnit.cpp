#include "audio/rt/EqUnit.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Decibels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorel::rt {

namespace {

constexpr double kGlideSeconds = 0.015;
constexpr float kDbPerGlide = 1.0f; // a longer way in one glide could be heard as a click
constexpr int kMaxGlides = 4;       // more would keep the change waiting
constexpr float kMinGlobalDb = -96.0f;
constexpr float kMaxGlobalDb = 24.0f;

float linear(float db) {
    return static_cast<float>(gainFromDb(static_cast<double>(db)));
}

} // namespace

EqUnit::EqUnit(int bands)
    : bandCount_(std::clamp(bands, 1, kMaxBands)) {}

Biquad EqUnit::design(const Band& band, float db) const noexcept {
    return band.settings.bypass ? Biquad{}
                                : designBiquad(band.settings, static_cast<double>(db), sampleRate_);
}

void EqUnit::setBand(int index, const EqBand& band) {
    Band& own = bands_[static_cast<std::size_t>(index)];
    own.settings = band;
    own.gain.snap(std::clamp(band.gainDb, -kMaxBandGainDb, kMaxBandGainDb));
    settle(index);
}

void EqUnit::prepare(const Format& format) {
    sampleRate_ = format.sampleRate;
    fade_.prepare(sampleRate_);
    reset();
}

void EqUnit::reset() noexcept {
    fade_.finish();
    finishRamps();
}

void EqUnit::finishRamps() noexcept {
    for (int i = 0; i < bandCount_; ++i) {
        Band& band = bands_[static_cast<std::size_t>(i)];
        band.gain.snap(band.gain.target());
        settle(i);
    }
    globalDb_.snap(globalDb_.target());
    global_.snap(linear(globalDb_.value()));
    cascade_.clear();
}

/// Takes the present gain of a band at rest: a flat one is off.
void EqUnit::settle(int index) noexcept {
    Band& band = bands_[static_cast<std::size_t>(index)];
    band.target = design(band, band.gain.value());
    band.ringLeft = 0;
    cascade_.set(index, band.target);
    cascade_.switchOn(index, !band.target.isIdentity());
}

void EqUnit::beginStep(int index) noexcept {
    Band& band = bands_[static_cast<std::size_t>(index)];
    band.target = design(band, band.gain.stepTarget());
    cascade_.glide(index, band.target, band.gain.framesLeft());
}

void EqUnit::rampBand(int index, float db, int steps, int framesPerStep) noexcept {
    Band& band = bands_[static_cast<std::size_t>(index)];
    if (!std::isfinite(db))
        return;
    const float target = std::clamp(db, -kMaxBandGainDb, kMaxBandGainDb);
    if (bypassed() || steps < 1 || framesPerStep < 1) {
        band.gain.snap(target);
        settle(index);
        return;
    }
    if (!band.gain.running() && band.gain.value() == target)
        return;
    band.gain.start(target, steps, framesPerStep);
    band.ringLeft = 0;
    if (!cascade_.isOn(index)) {
        // An identity that stands on the band's own poles, so that the way from here is short.
        cascade_.set(index, design(band, 0.0f));
        cascade_.switchOn(index, true);
    }
    beginStep(index);
}

void EqUnit::setGain(int index, float db) noexcept {
    const StepRamp& gain = bands_[static_cast<std::size_t>(index)].gain;
    if (gain.running() && gain.target() == db)
        return;
    const float way = std::min(kMaxGlides * kDbPerGlide, std::abs(db - gain.value()));
    const int glides = std::max(static_cast<int>(std::ceil(way / kDbPerGlide)), 1);
    rampBand(index, db, glides, framesOf(kGlideSeconds, sampleRate_));
}

void EqUnit::setGains(std::span<const float> targetsDb) noexcept {
    const int count = std::min(bandCount_, static_cast<int>(targetsDb.size()));
    for (int i = 0; i < count; ++i)
        setGain(i, targetsDb[static_cast<std::size_t>(i)]);
}

void EqUnit::rampGains(std::span<const float> targetsDb, int steps, int framesPerStep) noexcept {
    const int count = std::min(bandCount_, static_cast<int>(targetsDb.size()));
    for (int i = 0; i < count; ++i)
        rampBand(i, targetsDb[static_cast<std::size_t>(i)], steps, framesPerStep);
}

void EqUnit::setGlobalGain(float db) noexcept {
    if (!std::isfinite(db))
        return;
    globalDb_.snap(std::clamp(db, kMinGlobalDb, kMaxGlobalDb));
    global_.snap(linear(globalDb_.value()));
}

void EqUnit::rampGlobalGain(float db, int steps, int framesPerStep) noexcept {
    if (bypassed() || steps < 1 || framesPerStep < 1) {
        setGlobalGain(db);
        return;
    }
    if (!std::isfinite(db))
        return;
    globalDb_.start(std::clamp(db, kMinGlobalDb, kMaxGlobalDb), steps, framesPerStep);
    global_.rampTo(linear(globalDb_.stepTarget()), framesPerStep, Shape::Linear);
}

void EqUnit::setBypass(bool bypass) noexcept {
    fade_.setBypass(bypass);
}

float EqUnit::gain(int index) const noexcept {
    return bands_[static_cast<std::size_t>(index)].gain.value();
}

int EqUnit::framesToNextEvent() const noexcept {
    int frames = std::numeric_limits<int>::max();
    const auto consider = [&](int left) {
        if (left > 0)
            frames = std::min(frames, left);
    };
    consider(globalDb_.framesLeft());
    for (int i = 0; i < bandCount_; ++i) {
        const Band& band = bands_[static_cast<std::size_t>(i)];
        consider(band.gain.framesLeft());
        consider(band.ringLeft);
    }
    return frames;
}

void EqUnit::advance(int frames) noexcept {
    for (int i = 0; i < bandCount_; ++i) {
        Band& band = bands_[static_cast<std::size_t>(i)];
        if (band.ringLeft > 0) {
            band.ringLeft -= frames;
            if (band.ringLeft == 0)
                cascade_.switchOn(i, false);
        }
        if (!band.gain.advance(frames))
            continue;
        cascade_.set(i, band.target);
        if (band.gain.running())
            beginStep(i);
        else if (band.target.isIdentity())
            band.ringLeft = ringFrames(band.target, sampleRate_);
    }
    if (globalDb_.advance(frames) && globalDb_.running())
        global_.rampTo(linear(globalDb_.stepTarget()), globalDb_.framesPerStep(), Shape::Linear);
}

void EqUnit::process(Block& block) noexcept {
    if (fade_.bypassed())
        return;
    fade_.keepDry(block);
    for (int done = 0; done < block.frames;) {
        const int frames = std::min(block.frames - done, framesToNextEvent());
        Block part = slice(block, done, frames);
        cascade_.process(part);
        global_.apply(part);
        advance(frames);
        done += frames;
    }
    fade_.mix(block);
    if (fade_.bypassed())
        finishRamps();
}

} // namespace quorel::rt
