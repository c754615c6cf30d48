#include "player/MadeList.h"
#include "player/RemovalHistory.h"

#include <gtest/gtest.h>

using namespace quorel;
using namespace quorel::test;

namespace {

using Rows = std::vector<qsizetype>;
using Ranges = std::vector<RowRange>;

} // namespace

TEST(TrackList, movesRowsTogetherBeforeAGap) {
    const std::tuple<std::string_view, qsizetype, std::string> kCases[] = {
        {"A", 2, "BACDEF"},  {"A", 6, "BCDEFA"},  {"A", 99, "BCDEFA"}, {"D", 0, "DABCEF"},
        {"D", -7, "DABCEF"}, {"B", 1, "ABCDEF"},  {"B", 2, "ABCDEF"},  {"", 2, "ABCDEF"},
        {"BC", 5, "ADEBCF"}, {"DE", 1, "ADEBCF"}, {"BC", 1, "ABCDEF"}, {"BC", 2, "ABCDEF"},
        {"BC", 3, "ABCDEF"}, {"AF", 6, "BCDEAF"}, {"AF", 0, "AFBCDE"}, {"ACF", 3, "BACFDE"},
    };
    for (const auto& [letters, gap, after] : kCases) {
        TrackList list = listOf("ABCDEF");
        Rows rows;
        for (const char letter : letters)
            rows.push_back(letter - 'A');
        const TracksEdit edit = list.move(rows, gap);
        EXPECT_EQ(lettersOf(list), after);
        EXPECT_EQ(edit.ranges, after == "ABCDEF" ? Ranges() : rangesOf(rows)) << after;
        for (qsizetype row = 0; row < list.size(); ++row)
            EXPECT_EQ(list.rowOf(list.tracks().at(row).id), row) << after;
    }
}

TEST(TrackList, insertsABlockAtALimitedRow) {
    const std::tuple<qsizetype, qsizetype, std::string> kCases[] = {
        {0, 0, "XYABC"}, {2, 2, "ABXYC"}, {3, 3, "ABCXY"}, {-4, 0, "XYABC"}, {99, 3, "ABCXY"},
    };
    for (const auto& [wanted, row, after] : kCases) {
        TrackList list = listOf("ABC");
        EXPECT_EQ(list.insert(wanted, tracksOf("XY")),
                  (TracksEdit{TracksEdit::Kind::Inserted, {{row, 2}}}));
        EXPECT_EQ(lettersOf(list), after);
        EXPECT_EQ(list.rowOf(idOf('Y')), row + 1);
    }
    TrackList list = listOf("ABC");
    EXPECT_FALSE(list.insert(1, {}));
    list.insert(1, tracksOf("B"));
    EXPECT_EQ(lettersOf(list), "ABBC");
    EXPECT_EQ(list.rowOf(idOf('B')), 2) << "the newcomer gets another id";
}

TEST(TrackList, undoingARemovalPutsTracksBackWhereTheyWere) {
    // meanwhileGone: taken out between, without a history
    const std::tuple<Rows, std::string, std::string, std::string, Ranges> kCases[] = {
        {{1, 3}, "ACE", "", "ABCDE", {{1, 1}, {3, 1}}},
        {{0, 1, 2, 3, 4}, "", "", "ABCDE", {{0, 5}}},
        {{0, 1, 4}, "CD", "", "ABCDE", {{0, 2}, {4, 1}}},
        {{1, 3}, "ACE", "ACE", "BD", {{0, 2}}},
        {{3, 4}, "ABC", "BC", "ADE", {{1, 2}}},
        {{1, 4}, "ACD", "CD", "ABE", {{1, 2}}},
    };
    for (const auto& [removed, left, meanwhileGone, after, back] : kCases) {
        TrackList list = listOf("ABCDE");
        const Playlist shared = list.playlist();
        RemovalHistory history;
        EXPECT_EQ(history.remove(list, removed).ranges, rangesOf(removed));
        EXPECT_EQ(lettersOf(list), left);
        EXPECT_EQ(lettersOf(shared.tracks), "ABCDE") << "a snapshot changes with the list";
        for (const char letter : meanwhileGone) {
            RemovedTracks gone;
            list.remove({*list.rowOf(idOf(letter))}, gone);
        }
        auto removal = history.takeNewest();
        ASSERT_TRUE(removal);
        EXPECT_EQ(removal->playlist, list.id());
        EXPECT_EQ(list.restore(std::move(removal->removed)).ranges, back);
        EXPECT_EQ(lettersOf(list), after);
        EXPECT_EQ(list.contains(idOf('B')), after.find('B') != std::string::npos);
        EXPECT_FALSE(history.takeNewest());
    }
}

TEST(TracksEdit, tellsWherePlaybackGoesOnWithoutThePlayingTrack) {
    using Kind = TracksEdit::Kind;
    // The edit, the playing row, where it would have gone on; where it goes on now.
    using Row = std::optional<qsizetype>;
    const std::tuple<TracksEdit, Row, Row, Row> kCases[] = {
        {{Kind::Removed, {{1, 1}, {3, 2}}}, 3, {}, 2},
        {{Kind::Removed, {{1, 1}, {3, 2}}}, 4, {}, 2},
        {{Kind::Removed, {{1, 1}, {3, 2}}}, 2, {}, {}},
        {{Kind::Removed, {{0, 2}, {5, 1}}}, {}, 4, 2},
        {{Kind::Removed, {{2, 4}}}, {}, 3, 2},
        {{Kind::Inserted, {{0, 2}, {3, 1}}}, {}, 2, 5},
        {{Kind::Inserted, {{2, 5}}}, {}, 2, 2},
        {{Kind::Moved, {{0, 2}}, 6}, {}, 4, 2},
        {{Kind::Moved, {{5, 2}}, 1}, {}, 4, 6},
        {{Kind::Moved, {{5, 2}}, 4}, {}, 4, 4},
        {{Kind::Nothing}, {}, 4, 4},
        {{Kind::Nothing}, {}, {}, {}},
    };
    for (const auto& [edit, playing, orphanNext, expected] : kCases)
        EXPECT_EQ(orphanNextAfter(edit, playing, orphanNext), expected)
            << int(edit.kind) << ' ' << playing.value_or(-1) << ' ' << orphanNext.value_or(-1);
}
