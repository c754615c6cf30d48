// Milliseconds to collect and sort 100,000 audio files in 2,000 folders that the system has in
// memory already, and ten times as many; and to sort their paths alone. The files (empty ones) are
// made where TMPDIR says.
#include "media/AudioFiles.h"
#include "media/NaturalOrder.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>
#include <cstdio>
#include <filesystem>

using namespace quorel;

namespace {

constexpr int kFilesAFolder = 50;

/// Albums of fifty tracks, ten of an artist, with a cover each.
void makeAlbums(const std::filesystem::path& root, int count) {
    for (int album = 0; album < count; ++album) {
        const auto folder = root / ("The Example Ensemble " + std::to_string(album / 10)) /
                            ("Collected Works, Volume " + std::to_string(album));
        std::filesystem::create_directories(folder);
        const auto touch = [&folder](const std::string& name) {
            if (std::FILE* file = std::fopen((folder / name).c_str(), "w"))
                std::fclose(file);
        };
        touch("cover.jpg");
        for (int track = 1; track <= kFilesAFolder; ++track)
            touch(std::to_string(track) + " - Movement in a Minor Key.flac");
    }
}

void collect(benchmark::State& run) {
    const QTemporaryDir root;
    const auto folders = static_cast<int>(run.range(0));
    makeAlbums(root.path().toStdString(), folders);
    for (auto _ : run) {
        if (collectAudioFiles({root.path()}).size() != kFilesAFolder * folders)
            run.SkipWithError("files are missing");
    }
}

void sort(benchmark::State& run) {
    const QTemporaryDir root;
    makeAlbums(root.path().toStdString(), static_cast<int>(run.range(0)));
    const QStringList sorted = collectAudioFiles({root.path()});
    const NaturalOrder order;
    for (auto _ : run) {
        QStringList paths(sorted.rbegin(), sorted.rend());
        order.sort(paths);
        if (paths != sorted)
            run.SkipWithError("the order is another one");
    }
}

BENCHMARK(collect)->Arg(2000)->Arg(20000)->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(sort)->Arg(2000)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
