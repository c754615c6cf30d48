// Opening, starting, seeking in and decoding ten minutes of every kind of audio file, and two hours
// of some, warm; beside them `ffmpeg` decoding the same files in the same run. The program's
// starting is taken off by a run on a file of a tenth of a second; it writes what it decodes to
// /dev/null. Ends with a table of what was measured and what the player promises itself.
#include "AudioFiles.h"
#include "audio/OfflineRenderer.h"
#include "audio/decode/AudioFile.h"
#include "audio/decode/RateConverter.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

using namespace quorel;

namespace {

constexpr int64_t kBlock = 4096;

const bench::AudioFiles& files() {
    static const bench::AudioFiles made;
    return made;
}

std::unique_ptr<AudioFile> openFile(benchmark::State& run, const std::string& name) {
    auto opened = AudioFile::open(files().path(name));
    if (!opened.file) {
        run.SkipWithError(opened.error.c_str());
    }
    return std::move(opened.file);
}

void open(benchmark::State& run, const std::string& name) {
    if (!openFile(run, name)) {
        return;
    }
    for (auto _ : run) {
        benchmark::DoNotOptimize(AudioFile::open(files().path(name)));
    }
}

void refuse(benchmark::State& run, const std::string& name) {
    if (AudioFile::open(files().path(name)).file) {
        run.SkipWithError("not refused");
        return;
    }
    for (auto _ : run) {
        benchmark::DoNotOptimize(AudioFile::open(files().path(name)));
    }
}

void seek(benchmark::State& run, const std::string& name) {
    const auto file = openFile(run, name);
    if (!file) {
        return;
    }
    std::vector<float> frames(static_cast<std::size_t>(file->channels()) * 2048);
    std::minstd_rand random;
    const int64_t range = std::max<int64_t>(1, file->length() - 2048);
    for (auto _ : run) {
        file->seek(static_cast<int64_t>(random()) % range);
        benchmark::DoNotOptimize(file->read(frames.data(), 2048));
    }
}

void decode(benchmark::State& run, const std::string& name) {
    const auto file = openFile(run, name);
    if (!file) {
        return;
    }
    std::vector<float> frames(static_cast<std::size_t>(file->channels() * kBlock));
    int64_t played = 0;
    for (auto _ : run) {
        file->seek(0);
        for (int64_t got = 1; got > 0; played += got) {
            got = file->read(frames.data(), kBlock);
        }
    }
    if (played < file->length() * static_cast<int64_t>(run.iterations())) {
        run.SkipWithError("ended too early");
    }
}

// From a path to the first frame that leaves the engine. What the source worker decodes ahead
// before it, which the program does on a thread of its own meanwhile, counts here as well.
void start(benchmark::State& run, const std::string& name) {
    std::vector<float> frames;
    for (auto _ : run) {
        OfflineRenderer offline({bench::AudioFiles::kRate, rt::ChannelLayout::usual(2)});
        std::shared_ptr<AudioFile> file = openFile(run, name);
        if (!file || offline.engine().load({std::move(file), QUuid::createUuid(), 0, {}, 1}, 0)) {
            return;
        }
        frames.clear();
        offline.render(offline.engine().latencyFrames() + 64, frames);
        if (std::all_of(frames.begin(), frames.end(), [](float x) { return x == 0; })) {
            run.SkipWithError("nothing to be heard");
        }
    }
}

// The heap that an open file takes once it has played and sought.
void memory(benchmark::State& run, const std::string& name) {
    double most = 0;
    for (auto _ : run) {
        const std::size_t before = ::mallinfo2().uordblks + ::mallinfo2().hblkhd;
        const auto file = openFile(run, name);
        if (!file) {
            return;
        }
        std::vector<float> frames(static_cast<std::size_t>(file->channels() * kBlock));
        for (const int64_t target : {int64_t{0}, file->length() / 2, file->length() - kBlock}) {
            file->seek(target);
            file->read(frames.data(), kBlock);
        }
        frames = {};
        const std::size_t after = ::mallinfo2().uordblks + ::mallinfo2().hblkhd;
        most = std::max(most, static_cast<double>(after - before) / (1 << 20));
    }
    run.counters["MiB"] = most;
}

void convert(benchmark::State& run, int outRate) {
    RateConverter converter(2, bench::AudioFiles::kRate, outRate);
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

void ffmpeg(benchmark::State& run, const std::string& name) {
    const auto timed = [&](const std::string& file) {
        return secondsOf({"ffmpeg", "-v", "quiet", "-nostdin", "-threads", "1", "-i",
                          files().path(file), "-f", "f32le", "-y", "/dev/null"});
    };
    for (auto _ : run) {
        const double starting = timed("short-" + name);
        const double whole = timed("long-" + name);
        if (starting < 0 || whole < starting) {
            run.SkipWithError("the program is missing or failed");
            return;
        }
        run.SetIterationTime(whole - starting);
    }
}

// Prints as usual and keeps each median for the table.
class Reporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name == "median" && !run.error_occurred) {
                const auto counter = run.counters.find("MiB");
                medians_[run.run_name.function_name] =
                    counter != run.counters.end()
                        ? double{counter->second}
                        : run.GetAdjustedRealTime() /
                              benchmark::GetTimeUnitMultiplier(run.time_unit);
            }
        }
    }

    void printTable() const {
        std::printf("\n%-38s %16s %16s\n", "item", "measured", "target");
        for (const bench::Kind& kind : bench::kinds()) {
            const std::string file = " long-" + kind.name;
            line("open" + file, 1e3, "ms", 5);
            line("seek and read 2048" + file, 1e3, "ms", 3);
            line("load to first frame" + file, 1e3, "ms", 50);
            const double* ours = median("decode" + file);
            const double* theirs = median("ffmpeg decodes " + kind.name);
            if (ours == nullptr) {
                std::printf("%-38s %16s %10s %.0f x\n", ("decode" + file).c_str(), "not measured",
                            ">=", kind.minSpeed);
                continue;
            }
            std::printf("%-38s %14.0f x %10s %.0f x%s", ("decode" + file).c_str(), 600 / *ours,
                        ">=", kind.minSpeed, 600 / *ours < kind.minSpeed ? "  MISSED" : "");
            if (theirs != nullptr) {
                std::printf("  (%.2f of the time of ffmpeg)", *ours / *theirs);
            }
            std::printf("\n");
        }
        for (const auto& [name, target] : kTwoHours) {
            line("open twohours-" + name, 1e3, "ms", target);
            line("seek and read 2048 twohours-" + name, 1e3, "ms", 3);
            line("memory twohours-" + name, 1, "MiB", 10);
        }
        line("refuse noise.mp3", 1e3, "ms", 50);
    }

    static inline const std::map<std::string, double> kTwoHours{
        {"untagged.mp3", 60}, {"plain.aac", 60}, {"aac.m4a", 20}}; // ms to open

  private:
    const double* median(const std::string& name) const {
        const auto found = medians_.find(name);
        return found == medians_.end() ? nullptr : &found->second;
    }

    void line(const std::string& item, double scale, const char* unit, double target) const {
        const double* measured = median(item);
        if (measured == nullptr) {
            std::printf("%-38s %16s %10s %.0f %s\n", item.c_str(), "not measured", "<=", target,
                        unit);
            return;
        }
        const double value = *measured * scale;
        std::printf("%-38s %13.3f %s %10s %.0f %s%s\n", item.c_str(), value, unit, "<=", target,
                    unit, value > target ? "  MISSED" : "");
    }

    std::map<std::string, double> medians_; // seconds, or MiB
};

void add(const std::string& name, void (*measure)(benchmark::State&, const std::string&),
         const std::string& file, benchmark::TimeUnit unit) {
    benchmark::RegisterBenchmark(name.c_str(), measure, file)->Unit(unit)->UseRealTime();
}

void registerAll() {
    for (const bench::Kind& kind : bench::kinds()) {
        const std::string file = "long-" + kind.name;
        add("open " + file, open, file, benchmark::kMicrosecond);
        add("seek and read 2048 " + file, seek, file, benchmark::kMicrosecond);
        add("load to first frame " + file, start, file, benchmark::kMillisecond);
        add("decode " + file, decode, file, benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("ffmpeg decodes " + kind.name).c_str(), ffmpeg, kind.name)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime();
    }
    for (const auto& [name, target] : Reporter::kTwoHours) {
        const std::string file = "twohours-" + name;
        add("open " + file, open, file, benchmark::kMicrosecond);
        add("seek and read 2048 " + file, seek, file, benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("memory " + file).c_str(), memory, file)->Iterations(1);
    }
    add("refuse noise.mp3", refuse, "noise.mp3", benchmark::kMicrosecond);
    for (const int rate : {48000, 96000}) {
        benchmark::RegisterBenchmark(("convert 44100 to " + std::to_string(rate)).c_str(), convert,
                                     rate);
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
    reporter.printTable();
    return 0;
}
