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
    struct Case {
        Rows rows;
        qsizetype gap;
        std::string after;
        Ranges ranges; ///< none where nothing is to happen
    };
    const Case kCases[] = {
        {{0}, 2, "BACDEF", {{0, 1}}},
        {{0}, 6, "BCDEFA", {{0, 1}}},
        {{0}, 99, "BCDEFA", {{0, 1}}},
        {{3}, 0, "DABCEF", {{3, 1}}},
        {{3}, -7, "DABCEF", {{3, 1}}},
        {{1}, 1, "ABCDEF", {}},
        {{1}, 2, "ABCDEF", {}},
        {{}, 2, "ABCDEF", {}},
        {{1, 2}, 5, "ADEBCF", {{1, 2}}},
        {{3, 4}, 1, "ADEBCF", {{3, 2}}},
        {{1, 2}, 1, "ABCDEF", {}},
        {{1, 2}, 2, "ABCDEF", {}},
        {{1, 2}, 3, "ABCDEF", {}},
        {{0, 2, 5}, 3, "BACFDE", {{0, 1}, {2, 1}, {5, 1}}},
        {{0, 5}, 6, "BCDEAF", {{0, 1}, {5, 1}}},
        {{0, 5}, 0, "AFBCDE", {{0, 1}, {5, 1}}},
    };
    for (const Case& c : kCases) {
        TrackList list = listOf("ABCDEF");
        const TracksEdit edit = list.move(c.rows, c.gap);
        EXPECT_EQ(lettersOf(list), c.after);
        EXPECT_EQ(edit.ranges, c.ranges) << c.after;
        EXPECT_EQ(bool(edit), !c.ranges.empty()) << c.after;
        for (qsizetype row = 0; row < list.size(); ++row)
            EXPECT_EQ(list.rowOf(list.tracks().at(row).id), row) << c.after;
    }
}

TEST(TrackList, insertsABlockAtALimitedRow) {
    struct Case {
        qsizetype row;
        std::string after;
        Ranges ranges;
    };
    const Case kCases[] = {
        {0, "XYABC", {{0, 2}}},  {2, "ABXYC", {{2, 2}}},  {3, "ABCXY", {{3, 2}}},
        {-4, "XYABC", {{0, 2}}}, {99, "ABCXY", {{3, 2}}},
    };
    for (const Case& c : kCases) {
        TrackList list = listOf("ABC");
        EXPECT_EQ(list.insert(c.row, tracksOf("XY")),
                  (TracksEdit{TracksEdit::Kind::Inserted, c.ranges}));
        EXPECT_EQ(lettersOf(list), c.after);
        EXPECT_EQ(list.rowOf(idOf('Y')), c.ranges.front().first + 1);
    }
    TrackList list = listOf("ABC");
    EXPECT_FALSE(list.insert(1, {}));
    list.insert(1, tracksOf("B"));
    EXPECT_EQ(lettersOf(list), "ABBC");
    EXPECT_EQ(list.rowOf(idOf('B')), 2) << "the newcomer gets another id";
}

TEST(TrackList, undoingARemovalPutsTracksBackWhereTheyWere) {
    struct Case {
        Rows removed;
        std::string left;
        std::string meanwhileGone; ///< taken out between, without a history
        std::string after;
        Ranges back;
    };
    const Case kCases[] = {
        {{1, 3}, "ACE", "", "ABCDE", {{1, 1}, {3, 1}}},
        {{0, 1, 2, 3, 4}, "", "", "ABCDE", {{0, 5}}},
        {{0, 1, 4}, "CD", "", "ABCDE", {{0, 2}, {4, 1}}},
        {{1, 3}, "ACE", "ACE", "BD", {{0, 2}}},
        {{3, 4}, "ABC", "BC", "ADE", {{1, 2}}},
        {{1, 4}, "ACD", "CD", "ABE", {{1, 2}}},
    };
    for (const Case& c : kCases) {
        TrackList list = listOf("ABCDE");
        const Playlist shared = list.playlist();
        RemovalHistory history;
        EXPECT_EQ(history.remove(list, c.removed).ranges, rangesOf(c.removed));
        EXPECT_EQ(lettersOf(list), c.left);
        EXPECT_EQ(lettersOf(shared.tracks), "ABCDE") << "a snapshot changes with the list";
        for (const char letter : c.meanwhileGone) {
            RemovedTracks gone;
            list.remove({*list.rowOf(idOf(letter))}, gone);
        }
        auto removal = history.takeNewest();
        ASSERT_TRUE(removal);
        EXPECT_EQ(removal->playlist, list.id());
        EXPECT_EQ(list.restore(std::move(removal->removed)).ranges, c.back);
        EXPECT_EQ(lettersOf(list), c.after);
        EXPECT_EQ(list.contains(idOf('B')), c.after.find('B') != std::string::npos);
        EXPECT_FALSE(history.takeNewest());
    }
}

TEST(TracksEdit, tellsWherePlaybackGoesOnWithoutThePlayingTrack) {
    using Kind = TracksEdit::Kind;
    struct Case {
        TracksEdit edit;
        std::optional<qsizetype> playingRow;
        std::optional<qsizetype> orphanNext;
        std::optional<qsizetype> expected;
    };
    const Case kCases[] = {
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
    for (const Case& c : kCases)
        EXPECT_EQ(orphanNextAfter(c.edit, c.playingRow, c.orphanNext), c.expected)
            << "case " << &c - kCases;
    Rows scattered;
    for (qsizetype row = 0; row < 64; row += 2)
        scattered.push_back(row);
    EXPECT_FALSE((TracksEdit{Kind::Removed, rangesOf(scattered)}.isReset()));
    scattered.push_back(64);
    EXPECT_TRUE((TracksEdit{Kind::Removed, rangesOf(scattered)}.isReset()));
}
