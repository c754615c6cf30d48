// What is dragged over and dropped on the list and the tabs.
#include "AreaFixture.h"
#include "model/FileUri.h"
#include "ui/theme/Theme.h"

namespace quorel::test {

class DraggingTest : public AreaTest {};

TEST_F(DraggingTest, RowsMoveAsOneBlock) {
    const struct {
        const char* search;
        const char* rows;
        int gap; ///< above that shown row
        const char* result;
    } cases[] = {
        {"", "A", 2, "BACDEF"},
        {"", "BD", 0, "BDACEF"},
        {"", "AC", 6, "BDEFAC"},
        {"", "ADF", 4, "BCADFE"},
        {"", "CD", 3, "ABCDEF"},
        // Only B, D and F are seen; what is hidden stays behind the gap.
        {"x", "F", 1, "ABFCDE"},
        {"x", "BF", 2, "ACDBFE"},
        {"x", "D", 0, "ADBCEF"},
        {"x", "B", 3, "ACDEFB"},
    };
    for (const auto& move : cases) {
        SCOPED_TRACE(testing::Message() << move.search << move.rows << move.gap);
        show({"ABCDEF"});
        controller->setSearchText(QString::fromLatin1(move.search));
        const int rows = view().model()->rowCount();
        const QPoint at =
            move.gap < rows ? gapAbove(move.gap) : QPoint(100, rowRect(rows - 1).bottom() + 40);
        EXPECT_TRUE(dropAt(viewport(), at, *DraggingTest::rows(move.rows)));
        EXPECT_EQ(shown(), move.result);
        EXPECT_FALSE(view().dropGap());
    }
}

TEST_F(DraggingTest, FilesLandInTheGap) {
    show({"ABC"});
    const auto dragged = files({"one.mp3", "two.mp3", "not music.txt"});
    ASSERT_TRUE(dragTo(viewport(), gapAbove(1), *dragged));
    EXPECT_EQ(view().dropGap(), 1);
    const QImage marked = viewport()->grab().toImage();
    EXPECT_EQ(marked.pixelColor(300, rowRect(1).top()), Theme::green) << "the marker is seen";
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(viewport(), &leave);
    EXPECT_FALSE(view().dropGap());
    EXPECT_TRUE(dropAt(viewport(), gapAbove(1), *dragged));
    EXPECT_EQ(shown(), "AonetwoBC");
    EXPECT_TRUE(dropAt(viewport(), {100, rowRect(4).bottom() + 60}, *files({"end.mp3"})));
    EXPECT_EQ(shown(), "AonetwoBCend");
    QMimeData text;
    text.setText(QStringLiteral("no files"));
    EXPECT_FALSE(dragTo(viewport(), gapAbove(1), text));
}

TEST_F(DraggingTest, FilesLandInTheTabTheyAreDroppedOn) {
    show({"AB", "CD"});
    EXPECT_TRUE(dropAt(&area->tabs(), tabAt(1), *files({"one.mp3"})));
    EXPECT_EQ(controller->activePlaylistID(), list(0)) << "it is not switched to";
    EXPECT_EQ(lettersOf(controller->playlistAt(1).tracks), "CDone");
    EXPECT_FALSE(dragTo(&area->tabs(), tabAt(0), *rows("A"))) << "rows on their own tab";
    EXPECT_TRUE(dragTo(&area->tabs(), tabAt(1), *rows("A")));
    EXPECT_EQ(tabs().target(), 1);
}

TEST_F(DraggingTest, RowsDroppedElsewhereKeepTheirOrderAndThoseWhoseFilesAreGone) {
    show({"ABCD", "E"});
    EXPECT_TRUE(dropAt(&area->tabs(), tabAt(1), *rows("CAA")));
    EXPECT_EQ(lettersOf(controller->playlistAt(1).tracks), "ECAA");
    EXPECT_TRUE(dropAt(&area->tabs(), {area->tabs().width() - 20, 20}, *rows("DB")));
    ASSERT_EQ(controller->playlistCount(), 3);
    EXPECT_EQ(shown(), "DB");
    controller->setActivePlaylist(list(1));
    EXPECT_TRUE(dropAt(viewport(), gapAbove(1), *rows("DB"))) << "of the first tab";
    EXPECT_EQ(shown(), "EDBCAA");
}

TEST_F(DraggingTest, GhostTabMakesAPlaylist) {
    show({"AB"});
    const QPoint end(area->tabs().width() - 20, 20);
    const auto dragged = files({"Live 1999/one.mp3"});
    dragged->setData(QStringLiteral("text/uri-list"),
                     "file://" + folder.path("Live 1999").replace(" ", "%20"));
    ASSERT_TRUE(dragTo(&area->tabs(), end, *dragged));
    EXPECT_TRUE(area->tabs().showsGhost());
    ASSERT_TRUE(dragTo(&area->tabs(), tabAt(0), *dragged));
    EXPECT_FALSE(area->tabs().showsGhost());
    EXPECT_TRUE(dropAt(&area->tabs(), end, *dragged));
    EXPECT_FALSE(area->tabs().showsGhost());
    ASSERT_EQ(controller->playlistCount(), 2);
    EXPECT_EQ(controller->activePlaylist().name, QStringLiteral("Live 1999"));
    EXPECT_EQ(shown(), "one");
}

TEST_F(DraggingTest, TabsMoveToWhereTheyAreDropped) {
    show({"A", "B", "C"});
    const auto order = [this] {
        std::string letters;
        for (qsizetype i = 0; i < controller->playlistCount(); ++i)
            letters += lettersOf(controller->playlistAt(i).tracks);
        return letters;
    };
    const QPoint end(area->tabs().width() - 20, 20);
    EXPECT_TRUE(dropAt(&area->tabs(), tabAt(2), DraggedPlaylist(list(0))));
    EXPECT_EQ(order(), "BCA");
    ASSERT_TRUE(dragTo(&area->tabs(), end, DraggedPlaylist(list(0))));
    EXPECT_FALSE(area->tabs().showsGhost());
    EXPECT_TRUE(dropAt(&area->tabs(), end, DraggedPlaylist(list(0))));
    EXPECT_EQ(order(), "CAB");
    EXPECT_EQ(tabs().currentIndex(), 1) << "the active one is still highlighted";
}

TEST_F(DraggingTest, SpeedOfAutoScroll) {
    const struct {
        double y;
        double height;
        double speed;
    } cases[] = {
        {100, 300, 0},
        {30, 300, 0},
        {15, 300, -6.5},
        {0, 300, -13},
        {-50, 300, -13},
        {270, 300, 0},
        {285, 300, 6.5},
        {300, 300, 13},
        {400, 300, 13},
        {0, 60, 0},
        {60, 60.5, 12.783333333333333},
    };
    for (const auto& place : cases)
        EXPECT_DOUBLE_EQ(PlaylistAutoScroller::speedAt(place.y, place.height), place.speed)
            << place.y << " of " << place.height;
}

TEST_F(DraggingTest, TheListScrollsUnderADragAtItsEdge) {
    showMany();
    const auto dragged = files({"one.mp3"});
    const QScrollBar& bar = *view().verticalScrollBar();
    const auto steps = [this](int count) { clock.advance(count * Clock::Duration(16'666'666)); };
    const QPoint nearEnd(100, viewport()->height() - 15);
    ASSERT_TRUE(dragTo(viewport(), nearEnd, *dragged));
    const int gap = view().dropGap().value();
    steps(60);
    EXPECT_EQ(bar.value(), 390) << "6.5 a step";
    EXPECT_DOUBLE_EQ(view().autoScroller().accumulated(), 390);
    EXPECT_EQ(view().dropGap(), (390 + nearEnd.y() + rowRect(0).height() / 2) / rowRect(0).height())
        << "the gap stays below the pointer, from " << gap;
    ASSERT_TRUE(send<QDragMoveEvent>(viewport(), {100, viewport()->height() / 2}, *dragged));
    steps(60);
    EXPECT_EQ(bar.value(), 390);
    ASSERT_TRUE(send<QDragMoveEvent>(viewport(), {100, 0}, *dragged));
    steps(60);
    EXPECT_EQ(bar.value(), 0) << "no further than the end";
    EXPECT_DOUBLE_EQ(view().autoScroller().accumulated(), 0);
    ASSERT_TRUE(send<QDragMoveEvent>(viewport(), nearEnd, *dragged));
    ASSERT_TRUE(send<QDropEvent>(viewport(), nearEnd, *dragged));
    const int value = bar.value();
    steps(60);
    EXPECT_EQ(bar.value(), value) << "the drag has ended";
}

TEST_F(DraggingTest, TheStripScrollsUnderADragAtItsEnds) {
    show({"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"});
    const auto dragged = files({"one.mp3"});
    const auto tab = [this](int index) { return tabs().tabRect(index).translated(tabs().pos()); };
    const auto dragOver = [&](int x) {
        EXPECT_TRUE(dragTo(&area->tabs(), {x, 20}, *dragged));
        clock.advance(std::chrono::seconds(3));
    };
    dragOver(area->tabs().width() - 20);
    EXPECT_TRUE(area->tabs().showsGhost());
    EXPECT_EQ(tab(9).right(), tabs().parentWidget()->rect().right()) << "beside the ghost";
    dragOver(area->tabs().width() / 2);
    EXPECT_LT(tab(0).left(), 0) << "not in the middle";
    dragOver(12);
    EXPECT_EQ(tab(0).left(), 0);
    EXPECT_EQ(tabs().target(), 0) << "what is below the pointer now";
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&area->tabs(), &leave);
    area->tabs().step(-1);
    clock.advance(std::chrono::seconds(3));
    EXPECT_LT(tab(0).left(), 0) << "it has left";
}

TEST_F(DraggingTest, DraggedRowsAreFilesToOthers) {
    show({"AB"});
    const DraggedTracks dragged(list(), {idOf('A')},
                                {QStringLiteral("/a b.mp3"), pathFromBytes("/caf\xe9.mp3")});
    EXPECT_TRUE(dragged.hasUrls());
    EXPECT_EQ(dragged.data(QStringLiteral("text/uri-list")),
              "file:///a%20b.mp3\r\nfile:///caf%E9.mp3\r\n");
    EXPECT_EQ(pathsOfUriList(dragged.data(QStringLiteral("text/uri-list"))), dragged.paths());
}

} // namespace quorel::test
