// Tabs and toolbar.
#include "AreaFixture.h"
#include "ui/playlist/RenameField.h"

#include <QAccessible>
#include <QMessageBox>
#include <QSignalSpy>

namespace quorel::test {

class TabsTest : public AreaTest {
  protected:
    QString nameOf(qsizetype index) { return controller->playlistAt(index).name; }
    RenameField* field() { return area->tabs().findChild<RenameField*>(); }
    /// Begins renaming the first playlist and types that.
    void typeName(const char* name) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTest::mouseDClick(&tabs(), Qt::LeftButton, {}, tabs().tabRect(0).center());
        ASSERT_NE(field(), nullptr);
        QTest::keyClicks(field(), QString::fromUtf8(name));
    }
    /// One notch; whether the widget took it.
    static bool turnWheelOver(QWidget& widget) {
        const QPoint at = widget.rect().center();
        QWheelEvent turn(at, widget.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {},
                         Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&widget, &turn);
        return turn.isAccepted();
    }
    void openTabMenu(int index) { openMenuAt(&area->tabs(), tabAt(index)); }
    /// The open question with its buttons; answers it.
    std::string answer(const QString& button) {
        auto* const box = area->findChild<QMessageBox*>();
        if (!box)
            return "none";
        std::string said = (box->text() + u'|' + box->informativeText()).toStdString();
        QAbstractButton* chosen = nullptr;
        for (QAbstractButton* const offered : box->buttons()) {
            said += '|' + offered->text().remove(u'&').toStdString();
            if (offered->text().remove(u'&') == button)
                chosen = offered;
        }
        if (chosen)
            chosen->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return said;
    }
};

TEST_F(TabsTest, RenamingInPlace) {
    show({"A", "B"});
    typeName("Evening");
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(nameOf(0), QStringLiteral("Evening"));
    typeName("Night");
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_EQ(nameOf(0), QStringLiteral("Evening"));
    typeName("Rock & Roll");
    QTest::mouseClick(viewport(), Qt::LeftButton, {}, {50, 50});
    EXPECT_EQ(nameOf(0), QStringLiteral("Rock & Roll")) << "a press elsewhere keeps it";
    EXPECT_EQ(tabs().tabText(0), QStringLiteral("Rock && Roll")) << "not a key";
    typeName("  ");
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_EQ(nameOf(0), QStringLiteral("Rock & Roll"));

    openTabMenu(0);
    choose(QStringLiteral("Undo Rename to “Evening”"));
    EXPECT_EQ(nameOf(0), QStringLiteral("Evening"));
}

TEST_F(TabsTest, MenuOfATab) {
    show({"A", ""});
    openTabMenu(0);
    EXPECT_EQ(menuTexts(), "Rename…|-|New Playlist|Load Playlist|Save Playlist|-|(Move Left)|"
                           "Move Right|-|Clear Playlist|Close Playlist");
    choose(QStringLiteral("Move Right"));
    EXPECT_EQ(lettersOf(controller->playlistAt(1).tracks), "A");

    const QSignalSpy saves(area.get(), &PlaylistArea::saveRequested);
    openTabMenu(0);
    EXPECT_NE(menuTexts().find("(Clear Playlist)|Close Playlist"), std::string::npos);
    choose(QStringLiteral("Save Playlist"));
    ASSERT_EQ(saves.size(), 1);
    EXPECT_EQ(saves[0][0].toUuid(), list(0)) << "of the tab, which need not be the active one";

    controller->renamePlaylist(list(0), QStringLiteral("R&B"));
    openTabMenu(0);
    choose(QStringLiteral("Close Playlist"));
    EXPECT_EQ(answer({}), "none") << "without tracks nothing is asked";
    EXPECT_EQ(controller->playlistCount(), 1);
    openMenuAt(&area->tabs(), {area->tabs().width() - 20, 20});
    EXPECT_EQ(menuTexts(), "New Playlist|Load Playlist|-|Undo Close “R&&B”");
    choose(QStringLiteral("Undo Close “R&&B”"));
    EXPECT_EQ(controller->playlistCount(), 2);
}

TEST_F(TabsTest, QuestionsBeforeTracksGo) {
    show({"AB", "CDE"});
    openTabMenu(0);
    choose(QStringLiteral("Clear Playlist"));
    EXPECT_EQ(answer(QStringLiteral("Cancel")),
              "Clear playlist \"Letters\" — this can't be undone?|2 tracks?|Clear|Cancel");
    EXPECT_EQ(shown(), "AB");
    openTabMenu(0);
    choose(QStringLiteral("Clear Playlist"));
    answer(QStringLiteral("Clear"));
    EXPECT_EQ(shown(), "");

    controller->setActivePlaylist(list(1));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(answer(QStringLiteral("Cancel")),
              "Close playlist \"Letters\" — this can't be undone?|3 tracks?|Close Playlist|Cancel");
    EXPECT_EQ(controller->playlistCount(), 2);
    QTest::mousePress(&tabs(), Qt::MiddleButton, {}, tabs().tabRect(0).center());
    QTest::mouseRelease(&tabs(), Qt::MiddleButton, {}, tabs().tabRect(1).center());
    EXPECT_EQ(answer({}), "none") << "pressed on another";
    QTest::mouseClick(&tabs(), Qt::MiddleButton, {}, tabs().tabRect(1).center());
    answer(QStringLiteral("Close Playlist"));
    EXPECT_EQ(controller->playlistCount(), 1);
}

TEST_F(TabsTest, SwitchingAndScrolling) {
    show({"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"});
    const auto seen = [this](int index) {
        const QRect tab = tabs().tabRect(index).translated(tabs().pos());
        return tabs().parentWidget()->rect().contains(tab);
    };
    EXPECT_FALSE(seen(9));
    press(Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(shown(), "J") << "around the end";
    EXPECT_TRUE(seen(9));
    EXPECT_FALSE(seen(0));
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(shown(), "A");
    EXPECT_TRUE(seen(0));
    QTest::mouseClick(&tabs(), Qt::LeftButton, {}, tabs().tabRect(1).center());
    EXPECT_EQ(shown(), "B");
    tabs().setFocus();
    QTest::keyClick(&tabs(), Qt::Key_Right);
    EXPECT_EQ(shown(), "C");
    for (int i = 0; i < 30; ++i) {
        EXPECT_FALSE(turnWheelOver(tabs())) << "left to the strip";
        EXPECT_TRUE(turnWheelOver(area->tabs()));
    }
    EXPECT_TRUE(seen(9)) << "by the wheel";
    EXPECT_EQ(shown(), "C");
    area->list().setFocus();
    tabs().setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(seen(2)) << "where the focus is";
    QTest::keyClick(&tabs(), Qt::Key_End);
    EXPECT_TRUE(seen(9));
    EXPECT_EQ(shown(), "J");
    typeName("A name that needs more room than the tab has");
    EXPECT_TRUE(seen(0));
    EXPECT_GT(field()->width(), tabs().tabRect(0).width());
    QTest::keyClick(field(), Qt::Key_Escape);
}

TEST_F(TabsTest, ToolbarFollowsTheController) {
    show({"ABC"});
    const auto button = [this](const char* name) -> ToolbarButton& {
        for (auto* const found : area->toolbar().findChildren<ToolbarButton*>())
            if (found->accessibleName() == QLatin1String(name))
                return *found;
        throw std::runtime_error(name);
    };
    EXPECT_FALSE(button("Remove selected").isEnabled());
    EXPECT_FALSE(button("Undo remove").isVisible());
    clickRow(1);
    QTest::mouseClick(&button("Remove selected"), Qt::LeftButton);
    EXPECT_EQ(shown(), "AC");
    QTest::mouseClick(&button("Undo remove"), Qt::LeftButton);
    EXPECT_EQ(shown(), "ABC");
    EXPECT_FALSE(button("Undo remove").isVisible());

    const QSignalSpy adds(area.get(), &PlaylistArea::addRequested);
    const QSignalSpy loads(area.get(), &PlaylistArea::loadRequested);
    const QSignalSpy saves(area.get(), &PlaylistArea::saveRequested);
    for (const char* const name :
         {"Add files or folders", "Load .m3u8 playlist", "Save playlist as .m3u8"})
        QTest::mouseClick(&button(name), Qt::LeftButton);
    EXPECT_EQ(adds.size() * 100 + loads.size() * 10 + saves.size(), 111);
}

TEST_F(TabsTest, TabsCanBeReadAloud) {
    show({"A", "B"});
    controller->renamePlaylist(list(1), QStringLiteral("R&B"));
    QAccessibleInterface* const strip = QAccessible::queryAccessibleInterface(&tabs());
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->role(), QAccessible::PageTabList);
    EXPECT_EQ(strip->child(1)->text(QAccessible::Name), QStringLiteral("R&B"));
    EXPECT_TRUE(strip->child(0)->state().focused);
}

} // namespace quorel::test
