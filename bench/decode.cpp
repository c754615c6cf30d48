// Opening, seeking in and decoding a ten-minute stereo WAV and FLAC, warm, beside the `flac` and
// `ffmpeg` programs on the same files in the same run. The programs' starting is taken off by a run
// on a file of a tenth of a second; they write what they decode to /dev/null. Ends with the ratios.
#include "audio/decode/AudioFile.h"
#include "audio/decode/RateConverter.h"
#include "support/AudioFixtures.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

using namespace quorel;

namespace {

constexpr int kRate = 44100;
constexpr int64_t kFrames = int64_t{600} * kRate;
constexpr int64_t kBlock = 4096;

struct Files {
    test::TemporaryFolder folder;
    std::map<std::string, std::string> paths;

    Files() {
        for (const auto& [name, frames] : {std::pair{"long", kFrames}, {"short", kRate / 10}}) {
            const std::string wav = std::string(name) + ".wav";
            const std::string flac = std::string(name) + ".flac";
            paths[wav] = folder.write(wav, test::wavBytes(test::TestSound(frames, 2, 16)));
            paths[flac] = folder.path(flac);
            if (!test::runTool({"flac", "-s", "-5", "-o", paths[flac], paths[wav]})) {
                paths.erase(flac);
            }
        }
    }
};

const Files& files() {
    static const Files made;
    return made;
}

std::unique_ptr<AudioFile> openLong(benchmark::State& run, const std::string& kind) {
    const auto found = files().paths.find("long." + kind);
    auto opened = found == files().paths.end() ? OpenedAudioFile{} : AudioFile::open(found->second);
    if (!opened.file) {
        run.SkipWithError("no such file: is the encoder installed?");
    }
    return std::move(opened.file);
}

void open(benchmark::State& run, const std::string& kind) {
    openLong(run, kind);
    for (auto _ : run) {
        benchmark::DoNotOptimize(openLong(run, kind));
    }
}

void seek(benchmark::State& run, const std::string& kind) {
    const auto file = openLong(run, kind);
    std::vector<float> frames(2 * 2048);
    std::minstd_rand random;
    for (auto _ : run) {
        file->seek(static_cast<int64_t>(random()) % (kFrames - 2048));
        benchmark::DoNotOptimize(file->read(frames.data(), 2048));
    }
}

void decode(benchmark::State& run, const std::string& kind) {
    const auto file = openLong(run, kind);
    std::vector<float> frames(2 * kBlock);
    for (auto _ : run) {
        file->seek(0);
        while (file->read(frames.data(), kBlock) > 0) {
            benchmark::ClobberMemory();
        }
    }
    run.counters["x_realtime"] =
        benchmark::Counter(600, benchmark::Counter::kIsIterationInvariantRate);
}

void convert(benchmark::State& run, int outRate) {
    RateConverter converter(2, kRate, outRate);
    const std::vector<float> in = test::TestSound(kBlock, 2, 16).asFloat();
    std::vector<float> out(2 * 8 * kBlock);
    for (auto _ : run) {
        converter.process(in.data(), kBlock, out.data(), 8 * kBlock);
    }
    run.SetItemsProcessed(run.iterations() * kBlock);
}

double secondsOf(const std::vector<std::string>& command) {
    const auto start = std::chrono::steady_clock::now();
    const bool done = test::runTool(command);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    return done ? taken.count() : -1;
}

// The program that decodes a file, told what the last word of its command is.
void program(benchmark::State& run, const std::vector<std::string>& command,
             const std::string& kind, const std::vector<std::string>& rest) {
    const auto timed = [&](const std::string& path) {
        std::vector<std::string> words = command;
        words.push_back(path);
        words.insert(words.end(), rest.begin(), rest.end());
        return secondsOf(words);
    };
    for (auto _ : run) {
        const double starting = timed(files().folder.path("short." + kind));
        const double whole = timed(files().folder.path("long." + kind));
        if (starting < 0 || whole < starting) {
            run.SkipWithError("the program is missing or failed");
            return;
        }
        run.SetIterationTime(whole - starting);
    }
    run.counters["x_realtime"] =
        benchmark::Counter(600, benchmark::Counter::kIsIterationInvariantRate);
}

// Prints as usual and keeps each median time for the ratios.
class Reporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name == "median" && !run.error_occurred) {
                medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
    }

    void printRatios() const {
        for (const char* kind : {"flac", "wav"}) {
            const auto ours = medians_.find(std::string("decode ") + kind);
            for (const char* other : {"flac", "ffmpeg"}) {
                const auto theirs = medians_.find(std::string(other) + " decodes " + kind);
                if (ours != medians_.end() && theirs != medians_.end()) {
                    std::printf("%s: ours takes %.2f of the time of %s\n", kind,
                                ours->second / theirs->second, other);
                }
            }
        }
    }

  private:
    std::map<std::string, double> medians_;
};

void registerAll() {
    using benchmark::RegisterBenchmark;
    for (const std::string kind : {"wav", "flac"}) {
        RegisterBenchmark(("open " + kind).c_str(), open, kind)->Unit(benchmark::kMicrosecond);
        RegisterBenchmark(("seek and read 2048 " + kind).c_str(), seek, kind)
            ->Unit(benchmark::kMicrosecond);
        RegisterBenchmark(("decode " + kind).c_str(), decode, kind)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        RegisterBenchmark(
            ("ffmpeg decodes " + kind).c_str(), program,
            std::vector<std::string>{"ffmpeg", "-v", "quiet", "-nostdin", "-threads", "1", "-i"},
            kind, std::vector<std::string>{"-f", "f32le", "-y", "/dev/null"})
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime();
    }
    RegisterBenchmark("flac decodes flac", program,
                      std::vector<std::string>{"flac", "-s", "-d", "-f", "-o", "/dev/null"}, "flac",
                      std::vector<std::string>{})
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
    for (const int rate : {48000, 96000}) {
        RegisterBenchmark(("convert 44100 to " + std::to_string(rate)).c_str(), convert, rate);
    }
}

} // namespace

int main(int argc, char** argv) {
    // Three runs each, of which the median counts; a later option of the caller's overrides.
    std::vector<char*> arguments(argv, argv + argc);
    std::string repetitions = "--benchmark_repetitions=3";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {repetitions.data(), aggregates.data()});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    registerAll();
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    return 0;
}
