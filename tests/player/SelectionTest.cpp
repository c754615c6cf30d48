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
    struct Case {
        std::string_view clicks;
        std::string selected;
    };
    const Case kCases[] = {
        {"B", "B"},        {"BD", "D"},        {"^C", "C"},    {"B^D", "BCD"},    {"D^B", "BCD"},
        {"B^D^E", "DE"},   {"B+D", "BD"},      {"B+D+B", "D"}, {"B+D+D^E", "DE"}, {"B+^D", "BD"},
        {"B+^D^E", "DE"},  {"+C", "C"},        {"B^?", "B"},   {"B+?", "B"},      {"?", ""},
        {"A^E+C", "ABDE"}, {"A+C+E^C", "CDE"}, {"+B+B", ""},
    };
    for (const Case& c : kCases) {
        const TrackList list = listOf("ABCDE");
        Selection selection;
        bool extend = false;
        bool toggle = false;
        for (const char click : c.clicks) {
            extend |= click == '^';
            toggle |= click == '+';
            if (click == '^' || click == '+')
                continue;
            selection.click(list, idOf(click), extend, toggle);
            extend = toggle = false;
        }
        EXPECT_EQ(sorted(selection), c.selected) << c.clicks;
    }
}

TEST(Selection, staysWithinTheShownList) {
    TrackList list = listOf("ABCDE");
    Selection selection;
    selection.selectAll(list, VisibleRows(std::vector<qint32>{0, 2, 3}));
    EXPECT_EQ(sorted(selection), "ACD");
    EXPECT_FALSE(selection.keepOnly(list));
    RemovedTracks removed;
    list.remove({0, 3}, removed);
    EXPECT_TRUE(selection.keepOnly(list));
    EXPECT_EQ(sorted(selection), "C");
    selection.click(list, idOf('E'), false, false);
    list.remove({*list.rowOf(idOf('E'))}, removed);
    selection.click(list, idOf('B'), true, false);
    EXPECT_EQ(sorted(selection), "B") << "an anchor that is gone is none";
}

TEST(IdSet, keepsWhatWasNotErased) {
    std::mt19937 random(1);
    IdSet set;
    std::set<QUuid> expected;
    for (int i = 0; i < 20'000; ++i) {
        const QUuid id(random() % 300, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        if (random() % 2 == 0) {
            ASSERT_EQ(set.insert(id), expected.insert(id).second);
        } else {
            ASSERT_EQ(set.erase(id), expected.erase(id) == 1);
        }
        const QUuid other(random() % 300, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        ASSERT_EQ(set.contains(other), expected.contains(other));
    }
    EXPECT_EQ(std::set(set.ids().begin(), set.ids().end()), expected);
    EXPECT_EQ(set.size(), expected.size());
}

TEST(TrackSearch, foldsCaseButNotAccents) {
    Track track;
    track.title = QStringLiteral(u"Heartbeat ÿ of it").append(QChar(0x130));
    track.artist = QStringLiteral(u"DÉJÀ Vu Όσο");
    track.album = QStringLiteral(u"Straße 1");
    TrackList list = listOf("");
    list.insert(0, {track});
    struct Case {
        QString text;
        bool found;
    };
    const Case kCases[] = {
        {QStringLiteral("  BEAT\t"), true},     {QStringLiteral("t o"), false},
        {QStringLiteral(u"déjà"), true},        {QStringLiteral(u"DéJÀ vU"), true},
        {QStringLiteral("deja"), false},        {QStringLiteral(u"straße"), true},
        {QStringLiteral("strasse"), false},     {QStringLiteral(u"όσο"), true},
        {QStringLiteral("itDE"), false},        {QStringLiteral("heartbeatdeja"), false},
        {QStringLiteral(" \t"), true},          {QStringLiteral("1s"), false},
        {QStringLiteral(u"\u00a0beat"), false}, {QString(QChar(0x130)), true},
    };
    TrackSearch search;
    for (const Case& c : kCases)
        EXPECT_EQ(search.find(list, c.text).size(), c.found ? 1 : 0) << c.text.toStdString();
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
    EXPECT_EQ(some.indexFrom(299), 1);
    EXPECT_EQ(some.indexFrom(5), 1);
    EXPECT_EQ(some.indexFrom(301), some.size());
    EXPECT_EQ(VisibleRows(7).indexFrom(9), 7);
}
