#include "player/Selection.h"

#include "player/MadeList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

using namespace quorel;
using namespace quorel::test;

namespace {

std::string sorted(const Selection& selection) {
    std::string letters = lettersOf(selection.ids().ids());
    std::ranges::sort(letters);
    return letters;
}

} // namespace

/// Clicks are written as their letters, after '+' with Ctrl and after '^' with Shift.
TEST(Selection, followsClicks) {
    const std::pair<std::string_view, std::string> kCases[] = {
        {"BD", "D"},      {"^C", "C"},    {"B^D", "BCD"},    {"D^B", "BCD"},
        {"B^D^E", "DE"},  {"B+D+B", "D"}, {"B+D+D^E", "DE"}, {"B+^D", "BD"},
        {"B+^D^E", "DE"}, {"+C", "C"},    {"B^?", "B"},      {"B+?", "B"},
        {"?", ""},        {"+B+B", ""},   {"A^E+C", "ABDE"}, {"A+C+E^C", "CDE"},
    };
    for (const auto& [clicks, selected] : kCases) {
        const TrackList list = listOf("ABCDE");
        Selection selection;
        bool extend = false;
        bool toggle = false;
        for (const char click : clicks) {
            extend |= click == '^';
            toggle |= click == '+';
            if (click == '^' || click == '+')
                continue;
            selection.click(list, idOf(click), extend, toggle);
            extend = toggle = false;
        }
        EXPECT_EQ(sorted(selection), selected) << clicks;
    }
}

TEST(IdSet, keepsWhatWasNotErased) {
    std::mt19937 random(1);
    IdSet set;
    std::set<QUuid> expected;
    for (int i = 0; i < 20'000; ++i) {
        const QUuid id(random() % 300, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        const bool changed = random() % 2 == 0 ? set.insert(id) == expected.insert(id).second
                                               : set.erase(id) == (expected.erase(id) == 1);
        ASSERT_TRUE(changed) << "at step " << i;
        const QUuid other(random() % 300, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        ASSERT_EQ(set.contains(other), expected.contains(other));
    }
    EXPECT_EQ(std::set(set.ids().begin(), set.ids().end()), expected);
}

TEST(TrackSearch, foldsCaseButNotAccents) {
    TrackList list = listOf("A");
    list.change(0, [](Track& track) {
        track.title = QStringLiteral(u"Heartbeat ÿ of it\u0130");
        track.artist = QStringLiteral(u"DÉJÀ Vu Όσο");
        track.album = QStringLiteral(u"Straße 1");
    });
    TrackSearch search;
    for (const char* text : {"  BEAT\t", "déjà", "DéJÀ vU", "straße", "όσο", " \t", "\u0130"})
        EXPECT_EQ(search.find(list, QString::fromUtf8(text)).size(), 1) << text;
    for (const char* text : {"t o", "deja", "strasse", "itDE", "heartbeatdeja", "1s", "\u00a0beat"})
        EXPECT_EQ(search.find(list, QString::fromUtf8(text)).size(), 0) << text;
}

TEST(TrackSearch, knowsWhatChanged) {
    std::mt19937 random(1);
    const auto below = [&](qsizetype end) { return qsizetype(random() % std::uint32_t(end)); };
    const auto someRows = [&](const TrackList& list) {
        std::set<qsizetype> rows;
        const qsizetype first = below(list.size());
        const qsizetype step = 1 + below(3);
        for (qsizetype row = first; row < list.size() && rows.size() < random() % 900; row += step)
            rows.insert(row);
        rows.insert(first);
        return std::vector(rows.begin(), rows.end());
    };
    const auto more = [&] {
        Track track;
        track.title = QChar(char16_t(u'a' + below(20)));
        return QList<Track>(below(700) + 1, track);
    };
    TrackList list = listOf("");
    TrackSearch search;
    std::vector<RemovedTracks> history;
    for (int i = 0; i < 500; ++i) {
        if (list.isEmpty() || random() % 3 == 0) {
            search.rowsEdited(list.insert(below(list.size() + 1), more()));
        } else if (random() % 3 == 0) {
            history.emplace_back();
            search.rowsEdited(list.remove(someRows(list), history.back()));
        } else if (random() % 3 == 0 && !history.empty()) {
            search.rowsEdited(list.restore(std::exchange(history.back(), {})));
            history.pop_back();
        } else if (random() % 3 == 0) {
            search.rowsEdited(list.move(someRows(list), below(list.size() + 1)));
        } else if (const auto rows = someRows(list); random() % 20 != 0) {
            for (const qsizetype row : rows)
                list.change(row, [](Track& track) { track.album = QStringLiteral("be"); });
            search.tracksChanged(rangesOf(rows));
        } else {
            search.rowsEdited(list.clear());
        }
        if (random() % 2 == 0)
            search.prepareSome(list);
        else
            ASSERT_EQ(search.find(list, QStringLiteral("b")),
                      TrackSearch().find(list, QStringLiteral("b")));
    }

    const VisibleRows some(std::vector<qint32>{4, 299, 300});
    EXPECT_EQ(some.indexFrom(5), 1);
    EXPECT_EQ(some.indexFrom(301), some.size());
    EXPECT_EQ(VisibleRows(7).indexFrom(9), 7);
}
