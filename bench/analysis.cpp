// What measuring costs: the meters while a second is played, and trim, levels and tempo of a
// five-minute FLAC. Ends with the meters' share of a core while something plays, and the ratio of
// measuring the levels to decoding alone.
#include "audio/Meter.h"
#include "audio/analysis/TrackAnalysis.h"
#include "support/AudioFixtures.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>

using namespace quorel;

namespace {

constexpr int kRate = 48000;
constexpr int64_t kFrames = int64_t{300} * 44100;

const std::string& fiveMinutes() {
    static const test::TemporaryFolder folder;
    static const std::string path = [] {
        const std::string wav =
            folder.write("long.wav", test::wavBytes(test::TestSound(kFrames, 2, 16)));
        const std::string flac = folder.path("long.flac");
        return test::runTool({"flac", "-s", "-5", "-o", flac, wav}) ? flac : std::string();
    }();
    return path;
}

void decodeAll() {
    const auto opened = AudioFile::open(fiveMinutes());
    std::vector<float> frames(2 * 8192);
    while (opened.file && opened.file->read(frames.data(), 8192) > 0) {
        benchmark::ClobberMemory();
    }
}

void decode(benchmark::State& run) {
    for (auto _ : run) {
        decodeAll();
    }
}

template <typename Measure>
void measure(benchmark::State& run, Measure measureFile) {
    if (!measureFile(fiveMinutes())) {
        run.SkipWithError("no such file: is the encoder installed?");
    }
    for (auto _ : run) {
        benchmark::DoNotOptimize(measureFile(fiveMinutes()));
    }
}

struct Playing {
    rt::MeterTap tap;
    Meter meter;
    std::vector<float> sound = test::TestSound(rt::kMaxBlockFrames, 2, 16).asFloat();
    rt::Block block{{sound.data()}, 1, rt::kMaxBlockFrames};

    Playing() { tap.prepare({kRate, rt::ChannelLayout::usual(2)}); }
    void second() {
        for (int frames = 0; frames < kRate; frames += block.frames) {
            tap.process(block);
        }
    }
    void ticksOfASecond() {
        for (int tick = 0; tick < 15; ++tick) {
            benchmark::DoNotOptimize(meter.tick(tap.frames()));
        }
    }
};

void tapOfASecond(benchmark::State& run) {
    Playing playing;
    for (auto _ : run) {
        playing.second();
    }
}

void metersOfASecond(benchmark::State& run) {
    Playing playing;
    playing.second();
    for (auto _ : run) {
        playing.ticksOfASecond();
    }
}

void spectrum(benchmark::State& run) {
    SpectrumAnalyzer analyzer(1024);
    const std::vector<float> samples = test::TestSound(1024, 1, 16).asFloat();
    std::array<float, 24> bars{};
    for (auto _ : run) {
        analyzer.magnitudes(samples, bars);
        benchmark::DoNotOptimize(bars);
    }
}

BENCHMARK(tapOfASecond)->Unit(benchmark::kMicrosecond);
BENCHMARK(metersOfASecond)->Unit(benchmark::kMicrosecond);
BENCHMARK(spectrum)->Unit(benchmark::kMicrosecond);
BENCHMARK(decode)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, levels, [](const std::string& path) {
    return computeLevels(path);
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, tempo, [](const std::string& path) {
    return detectBPM(path).has_value() || !path.empty();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, trim, [](const std::string& path) {
    return computeTrim(path, -60, 10);
})->Unit(benchmark::kMillisecond);

template <typename Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    fiveMinutes(); // made before anything is timed
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    // Taken in turns, the shortest of each, so that other work on the machine falls out.
    double decoding = 1e9;
    double measuring = 1e9;
    double metering = 1e9;
    Playing playing;
    for (int round = 0; round < 9; ++round) {
        decoding = std::min(decoding, secondsOf(decodeAll));
        measuring = std::min(measuring, secondsOf([] { computeLevels(fiveMinutes()); }));
        metering = std::min(metering, secondsOf([&playing] {
                                playing.second();
                                playing.ticksOfASecond();
                            }));
    }
    std::printf("tap and meters take %.4f %% of a core while something plays\n", 100 * metering);
    std::printf("levels take %.3f of the time of decoding\n", measuring / decoding);
    return 0;
}
