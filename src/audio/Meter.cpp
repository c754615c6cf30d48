#include "audio/Meter.h"

#include "audio/analysis/SampleMeasures.h"

#include <algorithm>
#include <cmath>
#include <mutex>

namespace quorel {

namespace {

constexpr double kFloorDb = MeterValues::kFloorDb;
constexpr double kVuCalibrationDb = 12; // a VU of 0 lies that far below full scale
constexpr double kVuFallDb = 1.5;       // per meter tick
constexpr double kPeakFallDb = 2.5;
constexpr double kHoldDecayDb = 0.9; // per position tick
constexpr double kIdleDecayDb = 3;
constexpr int kSpectrumSize = 1024;

double fallen(double db, double fall) {
    return std::max(db - fall, kFloorDb);
}

/// Up at once, down steadily, whatever lower level came in.
void follow(double& shown, double level, double fall) {
    shown = level > shown ? level : fallen(shown, fall);
}

} // namespace

bool Meter::tick(rt::MeterFrames& delivered) {
    int count = 0;
    bool mono = true;
    {
        const std::lock_guard lock(delivered.meterLock);
        count = delivered.meterCount;
        mono = delivered.meterChannels < 2;
        std::copy_n(delivered.meterL.begin(), count, scratchL_.begin());
        if (!mono) {
            std::copy_n(delivered.meterR.begin(), count, scratchR_.begin());
        }
    }
    if (count < 1) {
        return false;
    }
    const std::span left = std::span(scratchL_).first(static_cast<std::size_t>(count));
    const Side leftSide = measure(left);
    const Side rightSide = mono ? leftSide : measure(std::span(scratchR_).first(left.size()));

    follow(values_.vuLeftDb, leftSide.vuDb, kVuFallDb);
    follow(values_.vuRightDb, rightSide.vuDb, kVuFallDb);
    follow(values_.peakLeftDb, leftSide.peakDb, kPeakFallDb);
    follow(values_.peakRightDb, rightSide.peakDb, kPeakFallDb);
    values_.peakHoldLeftDb = std::max(values_.peakHoldLeftDb, leftSide.peakDb);
    values_.peakHoldRightDb = std::max(values_.peakHoldRightDb, rightSide.peakDb);
    drawWaveform(left);
    if (count >= kSpectrumSize) {
        analyse();
    }
    return true;
}

Meter::Side Meter::measure(std::span<const float> samples) {
    const double meanSquare = sumOfSquares(samples) / static_cast<double>(samples.size());
    const auto peak = static_cast<double>(peakOf(samples));
    // The logarithm of silence is minus infinity, which the floor catches.
    const double vu = 10 * std::log10(meanSquare) + kVuCalibrationDb;
    return {std::clamp(vu, kFloorDb, 0.0), std::max(20 * std::log10(peak), kFloorDb)};
}

void Meter::drawWaveform(std::span<const float> samples) {
    const std::size_t points = values_.waveform.size();
    const std::size_t stride = std::max(samples.size(), points) / points;
    for (std::size_t i = 0; i < points; ++i) {
        values_.waveform[i] = samples[std::min(i * stride, samples.size() - 1)];
    }
}

// The end of the whole array holds the newest samples, for the tap delivers it full.
void Meter::analyse() {
    if (!spectrumAnalyzer_) {
        spectrumAnalyzer_.emplace(kSpectrumSize);
    }
    spectrumAnalyzer_->magnitudes(std::span(scratchL_).last<kSpectrumSize>(), values_.spectrumBars);
}

bool Meter::decay(bool playing) {
    const MeterValues before = values_;
    for (double* hold : {&values_.peakHoldLeftDb, &values_.peakHoldRightDb}) {
        *hold = fallen(*hold, kHoldDecayDb);
    }
    if (!playing) {
        for (double* level :
             {&values_.vuLeftDb, &values_.vuRightDb, &values_.peakLeftDb, &values_.peakRightDb}) {
            *level = fallen(*level, kIdleDecayDb);
        }
    }
    return values_ != before;
}

} // namespace quorel
