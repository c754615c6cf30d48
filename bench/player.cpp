// What the user's actions on one playlist of 100,000 and of 1,000,000 tracks cost, without the
// views: milliseconds, nanoseconds for a look-up, and the bytes a track takes besides its texts.
#include "SampleState.h"
#include "player/MetadataScan.h"
#include "player/PlaylistTabs.h"
#include "player/RemovalHistory.h"
#include "player/Selection.h"
#include "player/ShuffleOrder.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <QRandomGenerator>
#include <algorithm>
#include <chrono>
#include <numeric>

using namespace quorel;

namespace {

constexpr qsizetype kBlock = 10'000;

double heapBytes() {
    const auto heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

/// All tracks of the sample in one playlist. Kept between benchmarks, as making them takes long.
const Playlist& sample(qsizetype tracks) {
    static Playlist playlist;
    if (playlist.tracks.size() != tracks) {
        playlist = Playlist::named(QStringLiteral("All"));
        playlist.tracks.reserve(tracks);
        for (Playlist& part : bench::sampleState(static_cast<int>(tracks)).playlists)
            playlist.tracks += std::move(part.tracks);
    }
    return playlist;
}

/// A list that shares its tracks with no one.
TrackList sampleList(benchmark::State& run) {
    Playlist playlist = sample(run.range(0));
    playlist.tracks.detach();
    return TrackList(std::move(playlist));
}

template <class Work>
void timed(benchmark::State& run, Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    run.SetIterationTime(taken.count());
}

void search(benchmark::State& run, const QString& text) {
    const TrackList list = sampleList(run);
    TrackSearch search;
    while (!search.prepareSome(list)) {
    }
    for (auto _ : run)
        timed(run, [&] {
            const VisibleRows visible = search.find(list, text);
            run.counters["rows"] = static_cast<double>(visible.size());
        });
}

void searchFirstTime(benchmark::State& run) {
    const TrackList list = sampleList(run);
    for (auto _ : run) {
        TrackSearch search;
        timed(run, [&] { benchmark::DoNotOptimize(search.find(list, QStringLiteral("e"))); });
    }
}

void selectAll(benchmark::State& run) {
    const TrackList list = sampleList(run);
    for (auto _ : run) {
        Selection selection;
        timed(run, [&] { selection.selectAll(list, VisibleRows(list.size())); });
    }
}

Selection everySecondRow(const TrackList& list) {
    Selection selection;
    for (qsizetype row = 0; row < list.size(); row += 2)
        selection.click(list, list.tracks().at(row).id, false, true);
    return selection;
}

void removeHalf(benchmark::State& run) {
    for (auto _ : run) {
        TrackList list = sampleList(run);
        const Selection selection = everySecondRow(list);
        RemovalHistory history;
        timed(run, [&] { history.remove(list, list.rowsOf(selection.ids().ids())); });
    }
}

void undoRemoveHalf(benchmark::State& run) {
    TrackList list = sampleList(run);
    const Selection selection = everySecondRow(list);
    RemovalHistory history;
    for (auto _ : run) {
        history.remove(list, list.rowsOf(selection.ids().ids()));
        timed(run, [&] { list.restore(std::move(history.takeNewest()->removed)); });
    }
    if (list.playlist() != sample(run.range(0)))
        run.SkipWithError("undoing did not bring back what was there");
}

void moveBlock(benchmark::State& run) {
    TrackList list = sampleList(run);
    std::vector<qsizetype> rows(kBlock);
    std::iota(rows.begin(), rows.end(), list.size() - kBlock);
    for (auto _ : run)
        timed(run, [&] { list.move(rows, 0); });
}

void insertBlock(benchmark::State& run) {
    QList<Track> block = sample(run.range(0)).tracks.first(kBlock);
    for (auto _ : run) {
        TrackList list = sampleList(run);
        for (Track& track : block)
            track.id = QUuid::createUuid();
        QList<Track> own = block;
        own.detach();
        timed(run, [&] { list.insert(0, std::move(own)); });
    }
}

/// One batch of readings that come for tracks all over the list.
void applyMetadata(benchmark::State& run) {
    Playlist playlist = sample(run.range(0));
    const qsizetype step = playlist.tracks.size() / qsizetype(MetadataScan::kBatch);
    for (qsizetype row = 0; row < playlist.tracks.size(); row += step)
        playlist.tracks[row].sampleRateHz.reset();
    for (auto _ : run) {
        PlaylistTabs tabs({playlist}, std::nullopt);
        tabs.active().change(0, [](Track& track) { track.bpm.reset(); }); // no more shared
        MetadataScan scan;
        scan.request(tabs);
        while (const auto file = scan.next(tabs)) {
            TrackMetadata read;
            read.duration = 100;
            read.album = QStringLiteral("Album");
            read.sampleRateHz = 44100;
            scan.read(*file, read);
        }
        timed(run, [&] {
            const auto applied = scan.apply(tabs);
            run.counters["rows"] = static_cast<double>(rowsIn(applied.playlists.front().changed));
        });
    }
}

void beginMetadataScan(benchmark::State& run) {
    const PlaylistTabs tabs({sample(run.range(0))}, std::nullopt);
    for (auto _ : run) {
        MetadataScan scan;
        timed(run, [&] { scan.request(tabs); });
    }
}

void lookUp(benchmark::State& run) {
    const TrackList list = sampleList(run);
    std::vector<QUuid> ids;
    for (const Track& track : list.tracks())
        ids.push_back(track.id);
    std::ranges::shuffle(ids, *QRandomGenerator::global());
    std::size_t i = 0;
    for (auto _ : run) {
        benchmark::DoNotOptimize(list.rowOf(ids[i]));
        i = i + 1 < ids.size() ? i + 1 : 0;
    }
}

void drawShuffleOrder(benchmark::State& run) {
    const TrackList list = sampleList(run);
    ShuffleOrder order([] { return QRandomGenerator::global()->generate64(); });
    for (auto _ : run)
        timed(run, [&] { order.start(list, list.tracks().front().id); });
}

/// Everything a shown playlist takes: records, index, selection of all, search texts, an order.
void memory(benchmark::State& run) {
    for (auto _ : run) {
        sample(0);
        const double before = heapBytes();
        Playlist playlist = sample(run.range(0));
        sample(0);
        double texts = 0;
        for (const Track& track : playlist.tracks)
            for (const QString& text :
                 {track.path, track.artist, track.title, track.album.value_or(QString()),
                  track.albumArtist.value_or(QString()), track.genre.value_or(QString()),
                  track.year.value_or(QString()), track.composer.value_or(QString()),
                  track.comment.value_or(QString())})
                texts += 2.0 * static_cast<double>(text.size());
        TrackList list(std::move(playlist));
        // The slack that adding tracks leaves.
        list.insert(list.size(), {Track::fromPath(QStringLiteral("/one/more"))});
        TrackSearch search;
        while (!search.prepareSome(list)) {
        }
        Selection selection;
        selection.selectAll(list, VisibleRows(list.size()));
        ShuffleOrder order([] { return QRandomGenerator::global()->generate64(); });
        order.start(list, std::nullopt);
        const auto tracks = static_cast<double>(list.size());
        run.counters["bytes/track"] = (heapBytes() - before - texts) / tracks;
        run.counters["text/track"] = texts / tracks;
        run.SetIterationTime(1e-3);
    }
}

void atBothSizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Iterations(7)->UseManualTime();
    bench->Unit(benchmark::kMillisecond);
}

void onceAtBothSizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(100'000)->Arg(1'000'000)->Iterations(1)->UseManualTime();
}

BENCHMARK_CAPTURE(search, letter, QStringLiteral("e"))->Apply(atBothSizes);
BENCHMARK_CAPTURE(search, two, QStringLiteral("zq"))->Apply(atBothSizes);
BENCHMARK_CAPTURE(search, word, QStringLiteral("Minor Key"))->Apply(atBothSizes);
BENCHMARK_CAPTURE(search, accents, QStringLiteral(u"première"))->Apply(atBothSizes);
BENCHMARK(searchFirstTime)->Apply(atBothSizes);
BENCHMARK(selectAll)->Apply(atBothSizes);
BENCHMARK(removeHalf)->Apply(atBothSizes);
BENCHMARK(undoRemoveHalf)->Apply(atBothSizes);
BENCHMARK(moveBlock)->Apply(atBothSizes);
BENCHMARK(insertBlock)->Apply(atBothSizes);
BENCHMARK(drawShuffleOrder)->Apply(atBothSizes);
BENCHMARK(beginMetadataScan)->Apply(atBothSizes);
BENCHMARK(applyMetadata)->Apply(atBothSizes);
BENCHMARK(lookUp)->Arg(1'000)->Arg(100'000)->Arg(1'000'000);
BENCHMARK(memory)->Apply(onceAtBothSizes);

} // namespace

BENCHMARK_MAIN();
