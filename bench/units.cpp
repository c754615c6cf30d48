// Nanoseconds per stereo frame of each processing unit, and of the whole chain; those called
// "portable" run the equalisers without wide vectors.
#include "audio/rt/DenormalGuard.h"
#include "audio/rt/DynamicsProcessor.h"
#include "audio/rt/EqUnit.h"
#include "audio/rt/Mixer.h"
#include "audio/rt/PeakLimiter.h"
#include "audio/rt/Sanitise.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <vector>

using namespace quorel::rt;

namespace {

constexpr int kRate = 48000;
constexpr int kFrames = 512;
constexpr float kGains[EqUnit::kMaxBands] = {6, 4, -3, 2, -2, 3, -4, 2, 5, 6};

const Format kStereo{kRate, ChannelLayout::usual(2)};

/// Two seconds of noise at -15 dB RMS.
const std::vector<float>& noise() {
    static const std::vector<float> samples = [] {
        std::mt19937 random(1);
        std::normal_distribution<float> normal(0.0f, 0.18f);
        std::vector<float> out(2 * 2 * kRate / kFrames * kFrames);
        for (float& x : out)
            x = normal(random);
        return out;
    }();
    return samples;
}

/// Feeds noise to `process`, block by block; the copy of the block is part of the time (see
/// "copy").
void run(benchmark::State& state, const std::function<void(Block&)>& process) {
    const DenormalGuard guard;
    std::vector<float> samples(2 * kFrames);
    Block block{{samples.data()}, 1, kFrames};
    const std::size_t size = samples.size();
    std::size_t position = 0;
    for (auto _ : state) {
        std::memcpy(samples.data(), noise().data() + position, size * sizeof(float));
        position = position + 2 * size <= noise().size() ? position + size : 0;
        process(block);
        benchmark::DoNotOptimize(samples.data());
    }
    state.counters["s_per_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrames,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

std::unique_ptr<EqUnit> equaliser(int bands) {
    auto eq = std::make_unique<EqUnit>(bands);
    constexpr double kLowest = 31.25;
    for (int i = 0; i < bands; ++i) {
        const auto type = i == 0           ? FilterType::LowShelf
                          : i == bands - 1 ? FilterType::HighShelf
                                           : FilterType::Parametric;
        eq->setBand(i, {.type = type,
                        .frequencyHz = kLowest * (bands == 2 && i == 1 ? 256 : 1 << i),
                        .gainDb = kGains[i]});
    }
    eq->setBypass(false);
    eq->prepare(kStereo);
    return eq;
}

void prepareRadio(DynamicsProcessor& compressor) {
    compressor.setParameters({-22, 10, 0.015f, 0.18f, 5.775f});
    compressor.setBypass(false);
    compressor.prepare(kStereo);
}

void copy(benchmark::State& state) {
    run(state, [](Block&) {});
}

void sanitiser(benchmark::State& state) {
    run(state, [](Block& block) { sanitise(block); });
}

void mixer(benchmark::State& state, bool ramping, float pan) {
    Mixer unit;
    unit.setVolume(0.5f);
    unit.setPan(pan);
    unit.prepare(kStereo);
    run(state, [&](Block& block) {
        if (ramping)
            unit.glideVolume(unit.volume() > 0.4f ? 0.3f : 0.5f);
        unit.process(block);
    });
}

void eq(benchmark::State& state, int bands, bool gliding, bool wide) {
    const auto unit = equaliser(bands);
    unit->useWideVectors(wide);
    float gain = 3;
    run(state, [&](Block& block) {
        if (gliding)
            unit->setGain(bands / 2, gain = 5 - gain);
        unit->process(block);
    });
}

void compressor(benchmark::State& state) {
    DynamicsProcessor unit;
    prepareRadio(unit);
    run(state, [&](Block& block) { unit.process(block); });
}

void limiter(benchmark::State& state, float preGainDb) {
    PeakLimiter unit;
    unit.setPreGain(preGainDb);
    unit.prepare(kStereo);
    run(state, [&](Block& block) { unit.process(block); });
}

/// The player's order: normalisation, equaliser, compressor, tone, limiter, fade, volume.
void chain(benchmark::State& state, bool on, bool wide) {
    EqUnit normalisation(1);
    normalisation.setGlobalGain(on ? -3 : 0);
    normalisation.setBypass(!on);
    normalisation.prepare(kStereo);
    const auto tone = equaliser(2);
    const auto bands = equaliser(10);
    DynamicsProcessor dynamics;
    prepareRadio(dynamics);
    PeakLimiter last;
    // On, it is always busy; off, it stays in the chain, as quiet as music usually leaves it.
    last.setPreGain(on ? 12.0f : -20.0f);
    last.prepare(kStereo);
    Mixer fade;
    Mixer output;
    if (on) {
        fade.setVolume(0.9f);
        output.setVolume(0.7f);
        output.setPan(0.2f);
    }
    fade.prepare(kStereo);
    output.prepare(kStereo);
    tone->useWideVectors(wide);
    bands->useWideVectors(wide);
    for (EqUnit* unit : {tone.get(), bands.get()}) {
        unit->setBypass(!on);
        unit->reset();
    }
    dynamics.setBypass(!on);
    dynamics.reset();
    const std::vector<Node*> nodes{&normalisation, bands.get(), &dynamics, tone.get(),
                                   &last,          &fade,       &output};
    run(state, [&](Block& block) {
        sanitise(block);
        for (Node* node : nodes)
            node->process(block);
    });
}

BENCHMARK(copy);
BENCHMARK(sanitiser);
BENCHMARK_CAPTURE(mixer, volume, false, 0.0f);
BENCHMARK_CAPTURE(mixer, balance, false, 0.3f);
BENCHMARK_CAPTURE(mixer, gliding, true, 0.0f);
BENCHMARK_CAPTURE(eq, 10_bands, 10, false, true);
BENCHMARK_CAPTURE(eq, 10_bands_portable, 10, false, false);
BENCHMARK_CAPTURE(eq, 10_bands_gliding, 10, true, true);
BENCHMARK_CAPTURE(eq, 10_bands_gliding_portable, 10, true, false);
BENCHMARK_CAPTURE(eq, 2_bands, 2, false, true);
BENCHMARK_CAPTURE(eq, 2_bands_portable, 2, false, false);
BENCHMARK(compressor);
BENCHMARK_CAPTURE(limiter, idle, -20.0f);
BENCHMARK_CAPTURE(limiter, busy, 12.0f);
BENCHMARK_CAPTURE(chain, on, true, true);
BENCHMARK_CAPTURE(chain, on_portable_eq, true, false);
BENCHMARK_CAPTURE(chain, bypassed, false, true);

} // namespace

BENCHMARK_MAIN();
