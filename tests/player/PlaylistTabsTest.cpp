#include "player/PlaylistTabs.h"

#include "player/MadeList.h"

#include <gtest/gtest.h>

using namespace quorel;

namespace {

PlaylistTabs tabsOf(std::string_view names) {
    QList<Playlist> playlists;
    for (const char name : names)
        playlists += Playlist::named(QChar::fromLatin1(name));
    return {playlists, std::nullopt};
}

std::string namesOf(const PlaylistTabs& tabs) {
    std::string names;
    for (const Playlist& playlist : tabs.records())
        names += playlist.name.toStdString();
    return names;
}

} // namespace

TEST(PlaylistTabs, areNeverEmpty) {
    PlaylistTabs tabs({}, QUuid::createUuid());
    ASSERT_EQ(namesOf(tabs), "Playlist 1");
    tabs.active().insert(0, test::tracksOf("AB"));
    const QUuid old = tabs.activeId();
    ASSERT_TRUE(tabs.close(old));
    EXPECT_EQ(namesOf(tabs), "Playlist 1");
    EXPECT_TRUE(tabs.active().isEmpty());
    EXPECT_EQ(tabs.placeholder(), tabs.activeId());

    tabs.create(QStringLiteral("New"));
    EXPECT_TRUE(tabs.undoClose());
    EXPECT_EQ(namesOf(tabs), "Playlist 1New") << "the placeholder gives way";
    EXPECT_EQ(tabs.activeId(), old);
    EXPECT_TRUE(tabs.active().contains(test::idOf('B')));
    EXPECT_FALSE(tabs.placeholder());

    tabs.close(tabs.at(1).id());
    tabs.close(old);
    tabs.active().insert(0, test::tracksOf("C"));
    EXPECT_TRUE(tabs.undoClose());
    EXPECT_EQ(tabs.size(), 2) << "what was put into the placeholder stays";
    EXPECT_EQ(test::lettersOf(tabs.at(1)), "C");
}

TEST(PlaylistTabs, areToldApartWhereTheirIdsAreTheSame) {
    Playlist first = Playlist::named(QStringLiteral("A"));
    Playlist second = first;
    second.name = QStringLiteral("B");
    PlaylistTabs tabs({first, second}, first.id);
    EXPECT_EQ(tabs.active().name(), QStringLiteral("A"));
    ASSERT_TRUE(tabs.close(tabs.at(1).id()));
    EXPECT_EQ(namesOf(tabs), "A");
}

TEST(PlaylistTabs, moveAndShift) {
    constexpr qsizetype kFar = std::numeric_limits<qsizetype>::max();
    // From, to; then shifted by as much, empty where it cannot be.
    const std::tuple<qsizetype, qsizetype, std::string, std::string> kCases[] = {
        {0, 2, "BCAD", "CBAD"}, {3, 1, "ADBC", "ADCB"}, {1, 99, "ACDB", ""},
        {2, -5, "CABD", ""},    {2, 2, "ABCD", "ABCD"}, {3, 2, "ABDC", "ABDC"},
        {1, kFar, "ACDB", ""},  {1, -kFar, "BACD", ""},
    };
    for (const auto& [from, to, moved, shifted] : kCases) {
        PlaylistTabs tabs = tabsOf("ABCD");
        EXPECT_EQ(tabs.move(tabs.at(from).id(), to), moved != "ABCD");
        EXPECT_EQ(namesOf(tabs), moved);

        tabs = tabsOf("ABCD");
        const QUuid id = tabs.at(from).id();
        const qsizetype by = to == kFar ? kFar : to - from;
        EXPECT_EQ(tabs.canShift(id, by), !shifted.empty());
        EXPECT_EQ(tabs.shift(id, by), !shifted.empty() && shifted != "ABCD");
        EXPECT_EQ(namesOf(tabs), shifted.empty() ? "ABCD" : shifted);
    }
    PlaylistTabs tabs = tabsOf("AB");
    const QUuid unknown = QUuid::createUuid();
    EXPECT_FALSE(tabs.move(unknown, 0) || tabs.canShift(unknown, 0) || tabs.close(unknown) ||
                 tabs.rename(unknown, QStringLiteral("X")) || tabs.activate(unknown));
}

TEST(PlaylistTabs, undoTenClosings) {
    PlaylistTabs tabs = tabsOf("ABCDEFGHIJKLM");
    tabs.activate(tabs.at(12).id());
    for (int i = 0; i < 11; ++i)
        tabs.close(tabs.at(1).id());
    EXPECT_EQ(namesOf(tabs), "AM");
    EXPECT_EQ(tabs.active().name(), QStringLiteral("M"));
    EXPECT_EQ(tabs.newestClosed()->name, QStringLiteral("L"));
    tabs.close(tabs.activeId());
    EXPECT_EQ(tabs.active().name(), QStringLiteral("A")) << "the first tab is shown";
    int undone = 0;
    while (tabs.undoClose())
        ++undone;
    EXPECT_EQ(undone, 10);
    EXPECT_EQ(namesOf(tabs), "ADEFGHIJKLM");
    EXPECT_EQ(tabs.active().name(), QStringLiteral("D"));

    tabs.close(tabs.at(10).id());
    while (tabs.size() > 3)
        tabs.close(tabs.at(0).id());
    for (int i = 0; i < 8; ++i)
        tabs.undoClose();
    EXPECT_EQ(namesOf(tabs).back(), 'M') << "beyond the end means at the end";
}

TEST(PlaylistTabs, undoTwentyRenamings) {
    PlaylistTabs tabs = tabsOf("AB");
    const QUuid id = tabs.at(0).id();
    EXPECT_FALSE(tabs.rename(id, QStringLiteral(" \t ")));
    for (int i = 1; i <= 21; ++i)
        EXPECT_TRUE(tabs.rename(id, QStringLiteral("\t %1 ").arg(i)));
    EXPECT_EQ(tabs.at(0).name(), QStringLiteral("21"));
    EXPECT_EQ(tabs.newestRename()->previousName, QStringLiteral("20"));
    tabs.rename(tabs.at(1).id(), QStringLiteral("gone"));
    tabs.close(tabs.at(1).id());
    EXPECT_FALSE(tabs.undoRename()) << "of a closed tab";
    int undone = 0;
    while (tabs.undoRename())
        ++undone;
    EXPECT_EQ(undone, 19);
    EXPECT_EQ(tabs.at(0).name(), QStringLiteral("2"));
}
