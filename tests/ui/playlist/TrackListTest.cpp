// The track list under mouse and keyboard.
#include "AreaFixture.h"
#include "ui/playlist/MissingFiles.h"
#include "ui/playlist/TrackDelegate.h"
#include "ui/theme/ApplyTheme.h"

#include <QAccessible>
#include <QShortcut>
#include <QSignalSpy>

namespace quorel::test {

class TrackListTest : public AreaTest {};

TEST_F(TrackListTest, ClicksSelect) {
    show({"ABCDEF"});
    clickRow(1);
    EXPECT_EQ(selected(), "B");
    clickRow(3, Qt::ShiftModifier);
    EXPECT_EQ(selected(), "BCD");
    clickRow(2, Qt::ControlModifier);
    EXPECT_EQ(selected(), "BD");
    clickRow(5, Qt::ControlModifier);
    EXPECT_EQ(selected(), "BDF");

    QTest::mousePress(viewport(), Qt::LeftButton, {}, rowRect(3).center());
    EXPECT_EQ(selected(), "BDF") << "a press on what is selected may begin a drag";
    QTest::mouseRelease(viewport(), Qt::LeftButton, {}, rowRect(3).center());
    EXPECT_EQ(selected(), "D");
    EXPECT_EQ(playing(), '-');
    QTest::mouseDClick(viewport(), Qt::LeftButton, {}, rowRect(2).center());
    settle();
    EXPECT_EQ(playing(), 'C');
}

TEST_F(TrackListTest, KeysMoveTheCurrentRow) {
    showMany();
    const int page = viewport()->height() / rowRect(0).height() - 1;
    const struct {
        int key;
        Qt::KeyboardModifiers modifiers;
        int row;
        std::size_t selected;
    } steps[] = {
        {Qt::Key_End, {}, 100, 1},
        {Qt::Key_Home, {}, 0, 1},
        {Qt::Key_PageDown, {}, page, 1},
        {Qt::Key_Down, Qt::ControlModifier, page + 1, 1},
        {Qt::Key_Up, Qt::ControlModifier, page, 1},
        {Qt::Key_PageUp, {}, 0, 1},
        {Qt::Key_Up, Qt::ControlModifier, 0, 1},
        {Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier, 1, 2},
        {Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier, 2, 3},
        {Qt::Key_End, Qt::ShiftModifier, 100, 101},
        {Qt::Key_A, Qt::ControlModifier, 100, 101},
        {Qt::Key_Space, Qt::ControlModifier, 100, 100},
    };
    for (const auto& step : steps) {
        press(step.key, step.modifiers);
        EXPECT_EQ(currentRow(), step.row) << step.key;
        EXPECT_EQ(controller->selection().size(), step.selected) << step.key;
        EXPECT_TRUE(viewport()->rect().intersects(rowRect(currentRow()))) << step.key;
    }
}

TEST_F(TrackListTest, ReturnPlaysAndDeleteRemoves) {
    show({"ABCD"});
    clickRow(1);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(playing(), 'B');
    clickRow(2);
    press(Qt::Key_Delete);
    EXPECT_EQ(shown(), "ABD");
    EXPECT_EQ(currentRow(), 2) << "the row that followed";
    controller->undoRemove();
    EXPECT_EQ(shown(), "ABCD");
    EXPECT_EQ(currentRow(), 3) << "the same track";
}

TEST_F(TrackListTest, TypingFindsTheNextTrack) {
    show({"ABCD"});
    controller->addFiles({QStringLiteral("/Cure - Lovesong.mp3"), QStringLiteral("/Cat.mp3")});
    settle();
    const auto type = [this](const char* keys) {
        QTest::keyClicks(&view(), QString::fromLatin1(keys));
        return currentRow();
    };
    EXPECT_EQ(type("c"), 2);
    EXPECT_EQ(type("c"), 4) << "again the same letter: the next one";
    advance(5);
    EXPECT_EQ(type("ca"), 5);
    advance(5);
    EXPECT_EQ(type("cure - l"), 4);
    advance(5);
    EXPECT_EQ(type("LOVE"), 4) << "a title without its artist";
    advance(5);
    EXPECT_EQ(type("xyz"), 4);
}

TEST_F(TrackListTest, SpaceBelongsToANameThatIsTyped) {
    show({"A"});
    QShortcut space(QKeySequence(Qt::Key_Space), area.get());
    const QSignalSpy commands(&space, &QShortcut::activated);
    press(Qt::Key_X);
    press(Qt::Key_Space);
    EXPECT_EQ(commands.size(), 0);
    advance(5);
    press(Qt::Key_Space);
    EXPECT_EQ(commands.size(), 1);
}

TEST_F(TrackListTest, MenuOfARow) {
    show({"ABCD"});
    const QSignalSpy edits(&view(), &TrackListView::editTagsRequested);
    select("AB");
    openMenuAt(viewport(), rowRect(1).center());
    EXPECT_EQ(selected(), "AB") << "a selected row keeps the selection";
    EXPECT_EQ(menuTexts(), "Play|Show in File Manager|Edit Tags…|Recompute BPM|-|"
                           "Remove from playlist|-|(Show Playing Track)");
    choose(QStringLiteral("Edit Tags…"));
    ASSERT_EQ(edits.size(), 1);
    EXPECT_EQ(edits[0][0].toUuid(), idOf('B')) << "the clicked row, whatever else is selected";

    openMenuAt(viewport(), rowRect(2).center());
    EXPECT_EQ(selected(), "C");
    choose(QStringLiteral("Play"));
    settle();
    EXPECT_EQ(playing(), 'C');
    openMenuAt(viewport(), rowRect(3).center());
    choose(QStringLiteral("Remove from playlist"));
    EXPECT_EQ(shown(), "ABC");
    openMenuAt(viewport(), {100, rowRect(2).bottom() + 30});
    EXPECT_EQ(menuTexts(), "Show Playing Track") << "beside the rows";
    openMenu()->close();
}

TEST_F(TrackListTest, MissingFilesAreFoundOutAndTold) {
    saved.settings.playlistFontSize = 12;
    show({"A"});
    const QByteArray file = folder.write("there.mp3");
    controller->addFiles({pathFromBytes(file)});
    const auto look = [this] {
        view().viewport()->grab();
        clock.advance(std::chrono::milliseconds(100));
        while (area->missingFiles().pump())
            clock.runPosted();
        auto* const rows = qobject_cast<TrackDelegate*>(view().itemDelegate());
        std::string gone;
        for (const int row : {0, 1})
            gone += rows->toolTip(view().model()->index(row, 0), 600).isEmpty() ? '-' : 'x';
        openMenuAt(viewport(), rowRect(1).center());
        const bool canEdit = menuTexts().find("(Edit") == std::string::npos;
        openMenu()->close();
        EXPECT_EQ(canEdit, gone[1] == '-');
        return gone;
    };
    EXPECT_EQ(look(), "x-");
    ASSERT_EQ(::unlink(file.constData()), 0);
    EXPECT_EQ(look(), "x-") << "it is known";
    area->missingFiles().forget();
    EXPECT_EQ(look(), "xx");
}

TEST_F(TrackListTest, CutLabelsHaveATooltip) {
    show({"A"});
    const QByteArray file = folder.write("A rather long title of a song.mp3");
    controller->addFiles({pathFromBytes(file)});
    const auto* const rows = qobject_cast<TrackDelegate*>(view().itemDelegate());
    const QModelIndex row = view().model()->index(1, 0);
    EXPECT_EQ(rows->toolTip(row, 600), QString());
    EXPECT_EQ(rows->toolTip(row, 150), QStringLiteral("A rather long title of a song"));
}

TEST_F(TrackListTest, ThePlaceIsKept) {
    showMany();
    const auto top = [this] { return view().indexAt({10, 1}).data().toString(); };
    view().verticalScrollBar()->setValue(40 * rowRect(0).height() + 5);
    const QString before = top();
    controller->selectOnly(idOf('A'));
    controller->removeSelected();
    EXPECT_EQ(top(), before) << "rows above went";
    controller->addPlaylist();
    EXPECT_EQ(view().model()->rowCount(), 0);
    controller->setActivePlaylist(list(0));
    EXPECT_EQ(top(), before) << "the tab was left and entered again";
    setInterfaceScale(0.6);
    EXPECT_EQ(top(), before) << "in another size";
    setInterfaceScale(1);
}

TEST_F(TrackListTest, PlayingTrackIsFoundWhereverItIs) {
    showMany();
    const QUuid wanted = controller->activePlaylist().tracks[80].id;
    controller->play(wanted, list());
    settle();
    controller->addPlaylist();
    controller->setSearchText(QStringLiteral("nothing like it"));
    view().showPlayingTrack();
    EXPECT_EQ(controller->activePlaylistID(), list(0));
    EXPECT_EQ(controller->searchText(), QString());
    EXPECT_EQ(currentRow(), 80);
    EXPECT_TRUE(controller->selection().contains(wanted));
    EXPECT_TRUE(viewport()->rect().contains(rowRect(80)));
}

TEST_F(TrackListTest, SearchSelectRemoveUndo) {
    show({"ABCD"});
    for (const QString& name : {QStringLiteral("/beat 1.mp3"), QStringLiteral("/Beat 2.mp3")})
        controller->insertFiles({name}, 1);
    settle();
    SearchField& field = area->toolbar().search();
    QTest::keyClick(&view(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(&field, QStringLiteral("beat"));
    EXPECT_EQ(view().model()->rowCount(), 2);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(controller->selection().size(), 1U) << "the first that was found";
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    EXPECT_EQ(view().model()->rowCount(), 0);
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_EQ(controller->searchText(), QString());
    EXPECT_EQ(shown(), "ABCD");
    controller->undoRemove();
    EXPECT_EQ(shown(), "ABeat 2beat 1BCD");
    EXPECT_EQ(view().model()->rowCount(), 6);
}

TEST_F(TrackListTest, RowsCanBeReadAloud) {
    show({"AB"});
    play('B');
    select("B");
    QAccessibleInterface* const rows = QAccessible::queryAccessibleInterface(&view());
    ASSERT_NE(rows, nullptr);
    ASSERT_EQ(rows->childCount(), 2);
    EXPECT_EQ(rows->child(0)->text(QAccessible::Name), QStringLiteral("1. A, 0:20"));
    EXPECT_EQ(rows->child(1)->text(QAccessible::Name),
              QStringLiteral("2. B, 0:20, playing, selected"));
}

} // namespace quorel::test
