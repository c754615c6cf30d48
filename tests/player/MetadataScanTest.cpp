#include "player/MetadataScan.h"

#include "player/MadeList.h"
#include "player/MetadataFold.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

using namespace quorel;

namespace {

TrackMetadata readingOf(const QString& title) {
    TrackMetadata read;
    read.title = title;
    read.duration = 100;
    read.bitrateKbps = 320;
    read.sampleRateHz = 44100;
    return read;
}

/// Playlists with tracks of one letter, whose files bear the same letters; the tags in them do,
/// too, in lower case until they are changed.
struct Library {
    explicit Library(const std::vector<std::string_view>& lists) {
        for (const auto& letters : lists)
            add(tabs.indexOf(tabs.create(QStringLiteral("List"))).value(), letters);
    }

    TrackList& list(qsizetype tab) { return *tabs.find(tabs.at(tab).id()); }

    void add(qsizetype tab, std::string_view letters) {
        QList<Track> tracks = test::tracksOf(letters);
        for (Track& track : tracks)
            track.path = track.title;
        list(tab).insert(list(tab).size(), tracks);
    }

    std::optional<MetadataScan::File> begin() {
        auto file = scan.next(tabs);
        if (file)
            log += file->path.toStdString();
        return file;
    }

    void finish(const std::optional<MetadataScan::File>& file) {
        const auto changed = disk.find(file->path);
        scan.read(*file, changed == disk.end() ? readingOf(file->path.toLower()) : changed->second);
        applyWhenReady();
    }

    void applyWhenReady() {
        if (!scan.isBatchReady())
            return;
        const auto applied = scan.apply(tabs);
        for (const auto& playlist : applied.playlists) {
            EXPECT_TRUE(std::ranges::is_sorted(playlist.changed, {}, &RowRange::first));
            log += '/' + std::to_string(rowsIn(playlist.changed));
        }
        log += applied.scanEnded ? '.' : ',';
    }

    /// Reads everything there is to read.
    std::string run() {
        while (const auto file = begin())
            finish(file);
        applyWhenReady();
        return log;
    }

    PlaylistTabs tabs{{}, std::nullopt};
    MetadataScan scan;
    std::map<QString, TrackMetadata> disk; ///< what differs from that
    std::string log; ///< letters read, '/' rows changed of each list, ',' or at the end '.'
};

} // namespace

TEST(MetadataFold, takesWhatWasReadAndKeepsWhatWasNot) {
    using Text = std::optional<QString>;
    const Text none;
    const Text old = QStringLiteral("old");
    const Text read = QStringLiteral("read");
    using Fields = std::tuple<Text, Text, std::optional<double>>; // title, album, duration
    const std::tuple<const char*, Fields, Fields, Fields> kCases[] = {
        {"all is new", {old, none, {}}, {read, read, 9}, {read, read, 9}},
        {"nothing could be read", {old, old, 9}, {none, none, {}}, {old, old, 9}},
        {"only tags could be read", {old, old, 9}, {read, none, {}}, {read, old, 9}},
        {"the file has the tag no more", {old, old, 9}, {none, none, 8}, {old, none, 8}},
        {"an empty title is none", {old, none, {}}, {QString(), none, 9}, {old, none, 9}},
    };
    for (const auto& [what, known, found, folded] : kCases) {
        Track before;
        std::tie(before.title, before.album, before.duration) =
            std::tuple(*std::get<0>(known), std::get<1>(known), std::get<2>(known));
        TrackMetadata metadata;
        std::tie(metadata.title, metadata.album, metadata.duration) = found;
        const Track after = withMetadata(before, metadata);
        EXPECT_EQ(Fields(after.title, after.album, after.duration), folded) << what;
    }
}

TEST(MetadataFold, estimatesOnlyAMissingRate) {
    const std::optional<qint64> none;
    const std::tuple<double, std::optional<qint64>, qint64, std::optional<qint64>> kCases[] = {
        {10, none, 400'000, 320}, {10, none, 625, 1},       {10, none, 0, none},
        {10, 128, 400'000, 128},  {1, none, 400'000, none},
    };
    TrackMetadata read;
    for (const auto& [duration, rate, bytes, expected] : kCases) {
        read.duration = duration;
        read.bitrateKbps = rate;
        EXPECT_EQ(withEstimatedBitrate(read, [size = bytes] { return size; }).bitrateKbps, expected)
            << bytes;
    }
    read.duration.reset();
    EXPECT_FALSE(withEstimatedBitrate(read, [] { return 400'000; }).bitrateKbps);
}

TEST(MetadataScan, readsEveryTrackOnceInOrder) {
    const std::tuple<const char*, std::vector<std::string_view>, const char*, const char*>
        kCases[] = {
            {"nothing to read", {"", ""}, "", ""},
            {"in the order of tabs and rows", {"CA", "B"}, "", "CAB/2/1."},
            {"an unreadable file changes nothing", {"AB"}, "B", "AB/1."},
            {"no file can be read", {"A"}, "A", "A."},
        };
    for (const auto& [what, lists, unreadable, log] : kCases) {
        Library library(lists);
        for (const char letter : std::string_view(unreadable))
            library.disk[QChar::fromLatin1(letter)] = {};
        library.scan.request(library.tabs);
        EXPECT_EQ(library.run(), log) << what;
        EXPECT_FALSE(library.scan.isRunning()) << what;
        library.log.clear();
        library.scan.request(library.tabs);
        library.run();
        EXPECT_EQ(library.log.substr(0, library.log.find('.')), unreadable) << what;
    }
}

TEST(MetadataScan, appliesInBatches) {
    Library library({"", ""});
    QList<Track> tracks;
    for (int i = 0; i < 250; ++i)
        tracks += Track::fromPath(QStringLiteral("x"));
    library.list(1).insert(0, tracks.first(150));
    library.list(2).insert(0, tracks.mid(150));
    library.scan.request(library.tabs);
    library.run();
    std::erase(library.log, 'x');
    EXPECT_EQ(library.log, "/100,/50/50,/50.");
}

TEST(MetadataScan, requestsDuringAScanMakeOneMore) {
    Library library({"AB", ""});
    library.scan.request(library.tabs);
    const auto first = library.begin();
    const auto last = library.begin();
    library.add(2, "CD");
    library.scan.request(library.tabs);
    library.scan.request(library.tabs);
    library.finish(last);
    library.finish(first);
    EXPECT_EQ(library.run(), "AB/2.CD/2.");
    EXPECT_FALSE(library.scan.isRunning());
}

TEST(MetadataScan, followsTracksThatMoveAndPassesOverThoseThatGo) {
    Library library({"ABCDE", ""});
    library.scan.request(library.tabs);
    const auto a = library.begin();
    const auto b = library.begin();
    RemovedTracks removed;
    library.list(1).remove({0, 1, 2, 3}, removed); // B while it is read, C and D before
    library.list(2).insert(0, removed.tracks.first(1));
    library.finish(b);
    library.finish(a);
    EXPECT_EQ(library.run(), "ABE/1/1.");
    EXPECT_EQ(test::lettersOf(library.tabs.at(1)), "e");
    EXPECT_EQ(test::lettersOf(library.tabs.at(2)), "a");

    library.log.clear();
    library.add(2, "XY");
    library.scan.request(library.tabs);
    library.list(2).clear();
    EXPECT_EQ(library.run(), ".") << "a scan whose tracks are all gone comes to its end";
}

TEST(MetadataScan, showsNoTagsFromBeforeASave) {
    const std::tuple<const char*, int, int, const char*> kCases[] = {
        {"the file waits", 1, 0, "ABC/3."},
        {"the file is read", 2, 0, "ABCB/3."},
        {"the reading waits", 3, 2, "ABCB/3."},
    };
    for (const auto& [savedWhile, begun, finished, log] : kCases) {
        Library library({"ABC"});
        library.scan.request(library.tabs);
        std::vector<MetadataScan::File> files;
        while (int(files.size()) < begun)
            files.push_back(*library.begin());
        const auto finish = [&](int first, int end) {
            for (int i = first; i < end; ++i)
                library.scan.read(files[std::size_t(i)], readingOf(files[std::size_t(i)].path));
        };
        finish(0, finished);
        library.scan.tagsSaved(QStringLiteral("B"));
        library.disk[QStringLiteral("B")] = readingOf(QStringLiteral("N"));
        finish(finished, begun); // with the tags of before
        EXPECT_EQ(library.run(), log) << savedWhile;
        EXPECT_EQ(library.tabs.at(1).tracks().at(1).title, QStringLiteral("N")) << savedWhile;
    }
}
