#include "audio/EngineSound.h"

#include <algorithm>
#include <cmath>

namespace quorel {

using namespace std::chrono_literals;

namespace {
constexpr int kEqSteps = 8;
constexpr auto kEqStep = 15ms;
constexpr int kGainSteps = 10;
constexpr auto kGainStep = 20ms;
constexpr float kNothingDb = 0.01F; // a difference that is not worth a ramp

double secondsOf(Clock::Duration step) {
    return std::chrono::duration<double>(step).count();
}

float normDecibels(double gain) {
    return gain > 0 ? static_cast<float>(std::clamp(20 * std::log10(gain), -96.0, 24.0)) : 0.0F;
}

struct ShelfDbPerPercent {
    double low, high;
};

ShelfDbPerPercent shelves(LoudnessStrength strength) {
    switch (strength) {
    case LoudnessStrength::Gentle:
        return {0.045, 0.02};
    case LoudnessStrength::Medium:
        return {0.08, 0.035};
    case LoudnessStrength::Strong:
        break;
    }
    return {0.12, 0.05};
}

// Master gain is 0.35 |threshold| (1 - 1 / ratio), head room max(40 / ratio, 2).
rt::DynamicsParameters compressorParameters(CompressorPreset preset) {
    switch (preset) {
    case CompressorPreset::Gentle:
        return {-18, 20, 0.03F, 0.3F, 3.15F, 1, -120};
    case CompressorPreset::Warm:
        return {-20, 16, 0.025F, 0.25F, 4.2F, 1, -120};
    case CompressorPreset::Radio:
        return {-22, 10, 0.015F, 0.18F, 5.775F, 1, -120};
    case CompressorPreset::Punch:
        return {-16, 13.333F, 0.045F, 0.12F, 3.7333F, 1, -120};
    case CompressorPreset::Maximum:
        break;
    }
    return {-26, 5, 0.005F, 0.1F, 7.9625F, 1, -120};
}
} // namespace

void EngineSound::sendParameters() {
    ++parameters_.serial;
    renderer_.setParameters(parameters_);
}

// --- Volume and balance --------------------------------------------------------------------------

void EngineSound::setVolume(double volume) {
    parameters_.volume = static_cast<float>(volume);
    sendParameters();
}

void EngineSound::setPan(double pan) {
    parameters_.pan = static_cast<float>(pan);
    sendParameters();
}

// --- Normalisation -------------------------------------------------------------------------------

void EngineSound::setNormGain(double gain, bool instant) {
    normGain_ = static_cast<float>(gain);
    const float db = normDecibels(gain);
    if (!instant) {
        rampNormUnit(db);
        return;
    }
    normRamp_.end();
    normDb_ = db;
    normBypassed_ = db == 0.0F;
    parameters_.norm = {parameters_.norm.id + 1, {db}, 0, 0, normBypassed_};
    sendParameters();
}

void EngineSound::rampNormUnit(float db) {
    normRamp_.end();
    const float from = normDb_;
    const bool nothingToDo = std::abs(db - from) <= kNothingDb;
    const auto bypass = [this](bool bypassed) {
        normBypassed_ = bypassed;
        parameters_.norm.bypass = bypassed;
        ++parameters_.norm.id;
        parameters_.norm.steps = 0;
        sendParameters();
    };
    if (nothingToDo && db == 0.0F) {
        bypass(true);
        return;
    }
    if (db != 0.0F) {
        normBypassed_ = false;
        if (nothingToDo) {
            bypass(false);
            return;
        }
    }
    parameters_.norm = {parameters_.norm.id + 1, {db}, kGainSteps, secondsOf(kGainStep), false};
    sendParameters();
    normRamp_.start(
        {from}, {db}, kGainSteps, kGainStep,
        [this](const SteppedRamp::Values& now) { normDb_ = now[0]; },
        [bypass, db] {
            if (db == 0.0F) {
                bypass(true);
            }
        });
}

// --- Equaliser -----------------------------------------------------------------------------------

void EngineSound::setEqEnabled(bool enabled) {
    if (enabled == eqEnabledFlag_) {
        return;
    }
    eqEnabledFlag_ = enabled;
    if (enabled) {
        parameters_.eq.bypass = false;
        rampEQ(true, {});
    } else {
        rampEQ(false, [this] {
            parameters_.eq.bypass = true;
            sendParameters();
        });
    }
}

void EngineSound::rampEQ(bool on, SteppedRamp::Done done) {
    const std::array<float, rt::kEqBands> target =
        on ? storedEQGains_ : std::array<float, rt::kEqBands>{};
    parameters_.eq = {parameters_.eq.id + 1, target, kEqSteps, secondsOf(kEqStep),
                      parameters_.eq.bypass};
    sendParameters();
    eqRamp_.start(
        {eqBandGains_.begin(), eqBandGains_.end()}, {target.begin(), target.end()}, kEqSteps,
        kEqStep,
        [this](const SteppedRamp::Values& now) { std::ranges::copy(now, eqBandGains_.begin()); },
        std::move(done));
}

void EngineSound::setEQGain(int index, float db) {
    if (index < 0 || index >= rt::kEqBands) {
        return;
    }
    const auto band = static_cast<std::size_t>(index);
    storedEQGains_[band] = db;
    if (!eqEnabledFlag_) {
        return;
    }
    // A band that is dragged while the equaliser fades in takes the others to their ends with it.
    eqRamp_.end();
    eqBandGains_ = storedEQGains_;
    parameters_.eq = {parameters_.eq.id + 1, storedEQGains_, 0, 0, false};
    sendParameters();
}

// --- Tone compensation ---------------------------------------------------------------------------

void EngineSound::setLoudness(bool on, double volume, LoudnessStrength strength) {
    if (!on) {
        if (!loudBypassed_) {
            rampLoudEQ({0, 0});
        }
        return;
    }
    const double percentBelowFull = 100 - volume * 100;
    const auto [low, high] = shelves(strength);
    rampLoudEQ(
        {static_cast<float>(low * percentBelowFull), static_cast<float>(high * percentBelowFull)});
}

void EngineSound::rampLoudEQ(const std::array<float, rt::kLoudnessBands>& db) {
    const bool active =
        std::ranges::any_of(db, [](float gain) { return std::abs(gain) > kNothingDb; });
    if (active) {
        loudBypassed_ = false;
    }
    parameters_.loud = {parameters_.loud.id + 1, db, kGainSteps, secondsOf(kGainStep),
                        loudBypassed_};
    sendParameters();
    loudRamp_.start(
        {loudBandGains_.begin(), loudBandGains_.end()}, {db.begin(), db.end()}, kGainSteps,
        kGainStep,
        [this](const SteppedRamp::Values& now) { std::ranges::copy(now, loudBandGains_.begin()); },
        [this, active] {
            if (!active) {
                loudBypassed_ = true;
                parameters_.loud.bypass = true;
                sendParameters();
            }
        });
}

// --- Compressor ----------------------------------------------------------------------------------

void EngineSound::setCompressor(bool on, CompressorPreset preset) {
    if (on) {
        parameters_.comp = compressorParameters(preset);
    }
    parameters_.compBypass = !on;
    sendParameters();
}

} // namespace quorel
