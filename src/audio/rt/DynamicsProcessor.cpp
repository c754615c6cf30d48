#include "audio/rt/DynamicsProcessor.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Decibels.h"
#include "audio/rt/FastMath.h"
#include "audio/rt/VectorClones.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorel::rt {

namespace {

constexpr float kDbPerOctave = 6.02059991f; // of amplitude: a factor of two
constexpr double kMasterGlideSeconds = 0.015;
constexpr float kFloorLevel = 1e-6f; // -120 dB
constexpr float kCeilingLevel = 1e6f;
constexpr float kMaxReduction = 40.0f; // a factor of 2^40: 240 dB

double onePole(float seconds, int sampleRate) {
    const double time = std::clamp(static_cast<double>(seconds), 1e-5, 10.0);
    return std::exp(-1.0 / (time * sampleRate));
}

} // namespace

void DynamicsProcessor::prepare(const Format& format) {
    sampleRate_ = format.sampleRate;
    fade_.prepare(sampleRate_);
    update();
    reset();
}

void DynamicsProcessor::reset() noexcept {
    detector_ = {};
    masterGain_.finish();
    fade_.finish();
}

void DynamicsProcessor::setParameters(const DynamicsParameters& parameters) noexcept {
    parameters_ = parameters;
    update();
}

void DynamicsProcessor::setBypass(bool bypass) noexcept {
    fade_.setBypass(bypass);
}

void DynamicsProcessor::update() noexcept {
    const DynamicsParameters& p = parameters_;
    curve_.threshold = std::clamp(p.thresholdDb, -100.0f, 40.0f) / kDbPerOctave;
    curve_.headRoom = std::clamp(p.headRoomDb, 0.1f, 100.0f) / kDbPerOctave;
    curve_.slope = std::clamp(p.expansionRatio, 1.0f, 50.0f) - 1.0f;
    curve_.expansionThreshold = std::clamp(p.expansionThresholdDb, -120.0f, 0.0f) / kDbPerOctave;
    curve_.attack = onePole(p.attackSeconds, sampleRate_);
    curve_.release = onePole(p.releaseSeconds, sampleRate_);
    const float master = std::clamp(p.masterGainDb, -40.0f, 40.0f) / kDbPerOctave;
    if (bypassed())
        masterGain_.snap(master);
    else if (master != masterGain_.target())
        masterGain_.rampTo(master, framesOf(kMasterGlideSeconds, sampleRate_), Shape::RaisedCosine);
}

float DynamicsProcessor::reductionDb() const noexcept {
    return static_cast<float>(detector_.smooth) * kDbPerOctave;
}

QUOREL_VECTOR_CLONES
void DynamicsProcessor::wantedReduction(const Curve& curve, float* levels, int frames) noexcept {
    const float threshold = curve.threshold;
    const float headRoom = curve.headRoom;
    const float exponent = -std::numbers::log2e_v<float> / headRoom;
    const float slope = curve.slope;
    const float expansionThreshold = curve.expansionThreshold;
    for (int i = 0; i < frames; ++i) {
        // Comparisons in this order turn a NaN into silence.
        float level = levels[i];
        level = level > kFloorLevel ? level : kFloorLevel;
        level = level < kCeilingLevel ? level : kCeilingLevel;
        const float octaves = fastLog2(level);
        float over = octaves - threshold;
        over = over > 0.0f ? over : 0.0f;
        float under = expansionThreshold - octaves;
        under = under > 0.0f ? under : 0.0f;
        float power = over * exponent;
        power = power > -126.0f ? power : -126.0f;
        const float wanted = over - headRoom * (1.0f - fastExp2(power)) + slope * under;
        levels[i] = wanted < kMaxReduction ? wanted : kMaxReduction;
    }
}

void DynamicsProcessor::detect(const Curve& curve, Detector& detector, float* reductions,
                               int frames) noexcept {
    // In double: at high rates the steps of the slow averages vanish beside a float's last digit.
    double peak = detector.peak;
    double smooth = detector.smooth;
    const double release = curve.release;
    const double attack = curve.attack;
    for (int i = 0; i < frames; ++i) {
        const auto wanted = static_cast<double>(reductions[i]);
        const double released = release * peak + (1.0 - release) * wanted;
        peak = wanted > released ? wanted : released;
        smooth = attack * smooth + (1.0 - attack) * peak;
        reductions[i] = static_cast<float>(smooth);
    }
    detector = {peak, smooth};
}

QUOREL_VECTOR_CLONES
void DynamicsProcessor::gainsOf(const float* masterGains, float* reductions, int frames) noexcept {
    for (int i = 0; i < frames; ++i)
        reductions[i] = fastExp2(masterGains[i] - reductions[i]);
}

void DynamicsProcessor::process(Block& block) noexcept {
    if (fade_.bypassed())
        return;
    fade_.keepDry(block);
    float gains[kMaxBlockFrames];
    float master[kMaxBlockFrames];
    linkedPeaks(block, gains);
    wantedReduction(curve_, gains, block.frames);
    detect(curve_, detector_, gains, block.frames);
    masterGain_.render(master, block.frames);
    gainsOf(master, gains, block.frames);
    multiply(block, gains);
    fade_.mix(block);
    if (fade_.bypassed()) {
        detector_ = {};
        masterGain_.finish();
    }
}

} // namespace quorel::rt
