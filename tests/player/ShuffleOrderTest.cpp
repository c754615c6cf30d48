#include "player/ShuffleOrder.h"

#include "player/MadeList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

using namespace quorel;
using namespace quorel::test;

namespace {

ShuffleOrder seededOrder(quint64 seed) {
    return ShuffleOrder([random = std::mt19937_64(seed)]() mutable { return random(); });
}

std::optional<QUuid> maybeId(char letter) {
    return letter == '-' ? std::nullopt : std::optional(idOf(letter));
}

} // namespace

TEST(ShuffleOrder, startsWithTheGivenTrack) {
    ShuffleOrder order = seededOrder(3);
    const TrackList list = listOf("ABCD");
    for (const char first : {'X', 'C'}) {
        const std::size_t orders = first == 'C' ? 6 : 24;
        std::map<std::string, int> drawn;
        for (std::size_t i = 0; i < 1000 * orders; ++i) {
            order.start(list, idOf(first));
            ++drawn[lettersOf(order.order())];
            // Unless the first is playing, it is the next.
            const char next = letterOf(order.peekNext(list, {}, false, {}));
            EXPECT_EQ(next, letterOf(order.order()[first == 'C' ? 1 : 0]));
        }
        EXPECT_EQ(drawn.size(), orders);
        for (const auto& [letters, times] : drawn)
            EXPECT_NEAR(times, 1000, 160) << letters; // five standard deviations
        EXPECT_TRUE(first != 'C' || drawn.begin()->first.front() == 'C');
    }
}

TEST(ShuffleOrder, playsEveryTrackOncePerPass) {
    for (quint64 seed = 0; seed < 100; ++seed) {
        const TrackList list = listOf("ABCDE");
        ShuffleOrder order = seededOrder(seed);
        order.start(list, idOf('A'));
        std::string heard = "A";
        while (heard.size() < 15) {
            const auto cursor = maybeId(heard.back());
            const bool atEnd = heard.size() % 5 == 0;
            EXPECT_EQ(order.peekNext(list, cursor, false, {}).has_value(), !atEnd);
            const auto next = order.peekNext(list, cursor, true, {});
            ASSERT_TRUE(next);
            EXPECT_EQ(order.peekNext(list, cursor, true, {}), next) << "asking changes the answer";
            EXPECT_NE(letterOf(next), heard.back());
            order.take(*next, list, cursor);
            heard += letterOf(next);
        }
        for (std::size_t pass = 0; pass < heard.size(); pass += 5) {
            std::string letters = heard.substr(pass, 5);
            std::ranges::sort(letters);
            EXPECT_EQ(letters, "ABCDE");
        }
        EXPECT_EQ(lettersOf(order.order()), heard.substr(10));
        for (std::size_t i = 13; i >= 10; --i) {
            const auto previous = order.peekPrevious(list);
            EXPECT_EQ(letterOf(previous), heard[i]);
            order.goBack(*previous);
        }
        EXPECT_FALSE(order.peekPrevious(list));
        EXPECT_EQ(letterOf(order.peekNext(list, maybeId(heard[10]), true, {})), heard[11]);
    }
    const TrackList one = listOf("A");
    ShuffleOrder order = seededOrder(1);
    order.start(one, idOf('A'));
    EXPECT_EQ(order.peekNext(one, idOf('A'), true, {}), idOf('A'));
    EXPECT_FALSE(order.peekNext(one, idOf('A'), false, {}));
}

TEST(ShuffleOrder, isDrawnAfreshForAnotherPlaylist) {
    const TrackList list = listOf("ABCD");
    ShuffleOrder order = seededOrder(9);
    order.start(listOf("VWXYZ"), idOf('V'));
    const auto next = order.peekNext(list, idOf('B'), false, {});
    ASSERT_TRUE(next && list.contains(*next) && *next != idOf('B'));
    EXPECT_FALSE(order.peekPrevious(list));
    order.take(*next, list, idOf('B'));
    EXPECT_EQ(order.playlist(), list.id());
    EXPECT_EQ(lettersOf(order.order()).substr(0, 2), std::string("B") + letterOf(next));
    EXPECT_EQ(order.position(), 1);

    std::set<char> chosen;
    for (quint64 seed = 0; seed < 100; ++seed)
        chosen.insert(letterOf(seededOrder(seed).peekNext(list, idOf('B'), false, {})));
    EXPECT_EQ(chosen, (std::set{'A', 'C', 'D'})) << "before the first order is drawn";
}

TEST(ShuffleOrder, newTracksGoToRandomPlacesAmongThoseToCome) {
    std::map<std::size_t, int> places;
    ShuffleOrder order = seededOrder(5);
    for (int i = 0; i < 4'000; ++i) {
        const TrackList list = listOf("ABCDE");
        order.start(list, idOf('A'));
        order.take(*order.peekNext(list, idOf('A'), false, {}), list, idOf('A'));
        std::string before = lettersOf(order.order());
        order.insert({idOf('X'), idOf('B')}, list.id());
        order.insert({idOf('Y')}, QUuid::createUuid());
        std::string after = lettersOf(order.order());
        const std::size_t place = after.find('X');
        ASSERT_NE(place, std::string::npos);
        ++places[place];
        after.erase(place, 1);
        EXPECT_EQ(after, before) << "known tracks stay, and those of other playlists stay out";
    }
    ASSERT_EQ(places.size(), 4u);
    for (const auto& [place, times] : places) {
        EXPECT_GE(place, 2u);
        EXPECT_NEAR(times, 1000, 140);
    }
    const TrackList empty = listOf("");
    order.start(empty, {});
    order.insert({idOf('A')}, empty.id());
    EXPECT_EQ(order.position(), 0);
}

TEST(ShuffleOrder, takesBackWhatWasQueuedOnly) {
    for (const std::size_t heard : {2u, 4u}) { // within a pass, and where a new one begins
        TrackList list = listOf("ABCD");
        ShuffleOrder order = seededOrder(heard);
        order.start(list, idOf('A'));
        char cursor = 'A';
        for (std::size_t i = 1; i < heard; ++i) {
            const auto next = order.peekNext(list, idOf(cursor), true, {});
            order.take(*next, list, idOf(cursor));
            cursor = letterOf(next);
        }
        const std::vector<QUuid> before = order.order();
        const auto queued = order.peekNext(list, idOf(cursor), true, {});
        order.takeQueued(*queued, list, idOf(cursor));
        EXPECT_EQ(order.order()[std::size_t(order.position())], *queued);
        order.insert({idOf('E')}, list.id());
        list.insert(0, tracksOf("E"));
        order.rollBack();
        EXPECT_EQ(order.position(), qsizetype(heard) - 1);
        EXPECT_EQ(letterOf(order.order()[heard - 1]), cursor);
        EXPECT_EQ(lettersOf(order.order()).substr(0, heard), lettersOf(before).substr(0, heard));
        EXPECT_EQ(order.order().size(), 5u) << "the newcomer is forgotten";

        // What was planned is played although the newcomer may be the next by now.
        order.takeQueued(*queued, list, idOf(cursor));
        order.confirm();
        order.rollBack();
        EXPECT_EQ(order.order()[std::size_t(order.position())], *queued);
        EXPECT_EQ(order.order().size(), 5u);
    }
}
