// Milliseconds to encode and to decode the state of 100,000 tracks in memory, and to save it to its
// file (until the disk has it) and load it again, beside Qt's classes in the same run; and of
// 1,000,000 tracks by ours alone. Ends with the ratios. The text to read is given away and the
// records read are destroyed outside the measured time. The file is made where TMPDIR says.
#include "model/Json.h"

#include "QJsonForm.h"
#include "SampleState.h"
#include "storage/Persistence.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
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
    static bool save(const PersistedState& state, const QString& file) {
        return Persistence(file).save(state);
    }
    static PersistedState load(const QString& file) { return Persistence(file).load().value(); }
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
    static bool save(const PersistedState& state, const QString& name) {
        QSaveFile file(name);
        return file.open(QIODevice::WriteOnly) && file.write(encode(state)) > 0 && file.commit();
    }
    static PersistedState load(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? decode(file.readAll()) : PersistedState();
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

template <class Form>
void save(benchmark::State& run) {
    const PersistedState state = bench::sampleState(static_cast<int>(run.range(0)));
    const QTemporaryDir folder;
    for (auto _ : run)
        timed(run, [&] { return Form::save(state, folder.filePath(QStringLiteral("state"))); });
    if (Form::load(folder.filePath(QStringLiteral("state"))) != state)
        run.SkipWithError("what was loaded differs from what was saved");
}

template <class Form>
void load(benchmark::State& run) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("state"));
    if (!Ours::save(bench::sampleState(static_cast<int>(run.range(0))), file))
        run.SkipWithError("the file could not be written");
    for (auto _ : run)
        timed(run, [&] { return Form::load(file); });
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
BENCHMARK_TEMPLATE(save, Ours)->Name("save/ours")->Apply(oursAtBothSizes);
BENCHMARK_TEMPLATE(save, QJson)->Name("save/QJson")->Apply(qJsonAtOneSize);
BENCHMARK_TEMPLATE(load, Ours)->Name("load/ours")->Apply(oursAtBothSizes);
BENCHMARK_TEMPLATE(load, QJson)->Name("load/QJson")->Apply(qJsonAtOneSize);

/// Remembers each time by its name, such as "decode/ours/100000".
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            times_[run.run_name.function_name + '/' + run.run_name.args] =
                run.GetAdjustedRealTime();
    }

    void printRatio(const std::string& text, const std::string& slow, const std::string& fast) {
        if (times_.contains(slow) && times_.contains(fast))
            std::printf("%s: %.2f\n", text.c_str(), times_[slow] / times_[fast]);
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
    for (const std::string work : {"encode", "decode", "save", "load"}) {
        reporter.printRatio(work + ", QJson over ours", work + "/QJson/100000",
                            work + "/ours/100000");
        reporter.printRatio(work + ", ten times the tracks", work + "/ours/1000000",
                            work + "/ours/100000");
    }
}
