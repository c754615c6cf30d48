// Seconds to write and to read the state of 100,000 tracks, beside Qt's JSON classes in the same
// run, and of 1,000,000 tracks by ours alone. Ends with the ratios. The text to read is given away
// and the records read are destroyed outside the measured time.
#include "model/Json.h"

#include "QJsonForm.h"
#include "SampleState.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>

using namespace quorel;

namespace {

constexpr int kTracks = 100'000;
constexpr int kManyTracks = 1'000'000;

struct Ours {
    static QByteArray encode(const PersistedState& state) { return toJson(state); }
    static PersistedState decode(QByteArray text) {
        return fromJson<PersistedState>(std::move(text)).value();
    }
};

struct QJson {
    static QByteArray encode(const PersistedState& state) {
        const QJsonDocument document(bench::toValue(state).toObject());
        return document.toJson(QJsonDocument::Compact);
    }
    static PersistedState decode(const QByteArray& text) {
        PersistedState state;
        bench::fromValue(QJsonDocument::fromJson(text).object(), state);
        return state;
    }
};

template <class Work>
void timed(benchmark::State& run, Work work) {
    const auto start = std::chrono::steady_clock::now();
    auto result = work();
    benchmark::DoNotOptimize(result);
    run.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

template <class Form>
void encode(benchmark::State& run) {
    const PersistedState state = bench::sampleState(static_cast<int>(run.range(0)));
    for (auto _ : run)
        timed(run, [&] { return Form::encode(state); });
}

template <class Form>
void decode(benchmark::State& run) {
    const PersistedState state = bench::sampleState(static_cast<int>(run.range(0)));
    const QByteArray text = toJson(state);
    if (Form::decode(text) != state)
        run.SkipWithError("what was read differs from what was written");
    for (auto _ : run) {
        QByteArray copy(text.constData(), text.size());
        timed(run, [&] { return Form::decode(std::move(copy)); });
    }
    run.counters["MB"] = static_cast<double>(text.size()) / 1e6;
}

void oursAtBothSizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(kTracks)->Arg(kManyTracks)->Iterations(5)->UseManualTime();
    bench->Unit(benchmark::kMillisecond);
}

void qJsonAtOneSize(benchmark::internal::Benchmark* bench) {
    bench->Arg(kTracks)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(encode, Ours)->Name("encode/ours")->Apply(oursAtBothSizes);
BENCHMARK_TEMPLATE(encode, QJson)->Name("encode/QJson")->Apply(qJsonAtOneSize);
BENCHMARK_TEMPLATE(decode, Ours)->Name("decode/ours")->Apply(oursAtBothSizes);
BENCHMARK_TEMPLATE(decode, QJson)->Name("decode/QJson")->Apply(qJsonAtOneSize);

/// Remembers each time by its name, such as "decode/ours/100000".
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            times_[run.run_name.function_name + '/' + run.run_name.args] =
                run.GetAdjustedRealTime();
    }

    void printRatio(const char* text, const std::string& slow, const std::string& fast) {
        if (times_.contains(slow) && times_.contains(fast))
            std::printf("%s: %.2f\n", text, times_[slow] / times_[fast]);
    }

  private:
    std::map<std::string, double> times_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("encode, QJson over ours", "encode/QJson/100000", "encode/ours/100000");
    reporter.printRatio("decode, QJson over ours", "decode/QJson/100000", "decode/ours/100000");
    reporter.printRatio("encode, ten times the tracks", "encode/ours/1000000",
                        "encode/ours/100000");
    reporter.printRatio("decode, ten times the tracks", "decode/ours/1000000",
                        "decode/ours/100000");
}
