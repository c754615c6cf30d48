#include "ui/WindowFixture.h"
#include "ui/controls/Sliders.h"

#include <QClipboard>
#include <QLineEdit>
#include <QListView>

using namespace quorel;
using namespace quorel::test;

namespace {

class KeysTest : public WindowTest {
  protected:
    enum class Focus { List, ListByTab, ButtonByTab, SliderByClick, SliderByTab, Field };

    void openWith(Focus focus) {
        open();
        field = new QLineEdit(QStringLiteral("ab"), window->centralWidget());
        field->setGeometry(0, 0, 100, 30);
        field->show();
        play('A');
        controller->seek(10);
        auto* const pan = find<PanSlider>("Balance");
        switch (focus) {
        case Focus::List:
            return window->findChild<QListView*>()->setFocus();
        case Focus::ListByTab:
            tabTo(find("Stop"));
            return tabTo(window->findChild<QListView*>());
        case Focus::ButtonByTab:
            return tabTo(find("Stop"));
        case Focus::SliderByClick:
            click(pan);
            return pan->setFocus(Qt::MouseFocusReason);
        case Focus::SliderByTab:
            return tabTo(pan);
        case Focus::Field:
            click(field);
            return field->setFocus();
        }
    }

    QLineEdit* field = nullptr;
};

} // namespace

TEST_F(KeysTest, GoWhereTheFocusWantsThem) {
    using enum Focus;
    const struct {
        Focus focus;
        Qt::Key key;
        const char* what;
    } kCases[] = {
        {ListByTab, Qt::Key_Down, "row"},      {ListByTab, Qt::Key_Left, "back"},
        {List, Qt::Key_Space, "pause"},        {List, Qt::Key_Right, "forward"},
        {List, Qt::Key_Left, "back"},          {List, Qt::Key_Up, "louder"},
        {List, Qt::Key_Down, "softer"},        {ButtonByTab, Qt::Key_Space, "pause"},
        {ButtonByTab, Qt::Key_Return, "stop"}, {ButtonByTab, Qt::Key_Left, "back"},
        {SliderByClick, Qt::Key_Left, "back"}, {SliderByClick, Qt::Key_Space, "pause"},
        {SliderByTab, Qt::Key_Left, "slider"}, {SliderByTab, Qt::Key_Up, "slider"},
        {SliderByTab, Qt::Key_Space, "pause"}, {Field, Qt::Key_Space, "typed"},
        {Field, Qt::Key_Left, "cursor"},       {Field, Qt::Key_Up, ""},
    };
    for (const auto& row : kCases) {
        openWith(row.focus);
        const auto cursor = field->cursorPosition();
        key(row.key);
        std::string what;
        const double time = controller->playback().currentTime();
        const double volume = controller->settings().volume;
        if (!controller->playback().isLoaded())
            what += "stop";
        else if (!controller->playback().isPlaying())
            what += "pause";
        else if (time != 10)
            what += time > 10 ? "forward" : "back";
        if (volume != 0.5)
            what += volume > 0.5 ? "louder" : "softer";
        if (window->findChild<QListView*>()->currentIndex().row() > 0)
            what += "row";
        if (controller->settings().pan != 0)
            what += "slider";
        if (field->text() != QLatin1String("ab"))
            what += "typed";
        else if (field->cursorPosition() != cursor)
            what += "cursor";
        EXPECT_EQ(what, row.what) << "focus " << int(row.focus) << ", key " << row.key;
    }
}

TEST_F(KeysTest, ArrowsSetWhatWasClickedInADialog) {
    open();
    play('A');
    controller->seek(10);
    key(Qt::Key_Comma, Qt::ControlModifier);
    key(Qt::Key_PageUp, Qt::ControlModifier);
    auto* const slider = find<FillSlider>("Playlist font size");
    click(slider);
    const double clicked = controller->settings().playlistFontSize;
    for (const Qt::Key arrow : {Qt::Key_Right, Qt::Key_Up})
        key(arrow);
    EXPECT_NEAR(controller->settings().playlistFontSize, clicked + 1, 1e-9);
    EXPECT_EQ(controller->playback().currentTime(), 10);
    EXPECT_EQ(controller->settings().volume, 0.5);
}

TEST_F(KeysTest, ArrowsWithModifiers) {
    open();
    EXPECT_EQ(menuItem("Next Track")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Right));
    play('A');
    key(Qt::Key_Right, Qt::ControlModifier);
    advance(0.1);
    EXPECT_EQ(playing(), 'B');
    key(Qt::Key_Left, Qt::ControlModifier);
    advance(0.1);
    EXPECT_EQ(playing(), 'A');
    engine->takeLog();
    key(Qt::Key_Right, Qt::KeypadModifier);
    EXPECT_EQ(engine->takeLog(), "k");
}

TEST_F(KeysTest, EditingKeysAreTheFieldsOwn) {
    openWith(Focus::List);
    for (const char* const item : {"Cut", "Copy", "Paste"})
        EXPECT_FALSE(menuItem(item)->isEnabled()) << item;
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(controller->selection().size(), 4u);
    controller->selectOnly(idOf('A'));
    click(field);
    field->setFocus();
    for (const char* const item : {"Cut", "Copy", "Paste"})
        EXPECT_TRUE(menuItem(item)->isEnabled()) << item;
    for (const bool byMenu : {false, true}) {
        const auto use = [&](const char* item, Qt::Key pressed) {
            if (byMenu)
                menuItem(item)->trigger();
            else
                key(pressed, Qt::ControlModifier);
        };
        field->setText(QStringLiteral("ab"));
        use("Select All", Qt::Key_A);
        EXPECT_EQ(field->selectedText(), QStringLiteral("ab"));
        use("Copy", Qt::Key_C);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("ab"));
        use("Cut", Qt::Key_X);
        EXPECT_EQ(field->text(), QString());
        use("Paste", Qt::Key_V);
        use("Paste", Qt::Key_V);
        EXPECT_EQ(field->text(), QStringLiteral("abab"));
    }
    EXPECT_EQ(controller->selection().size(), 1u) << "the tracks are left alone";
}

TEST_F(KeysTest, UndoInAFieldIsTheFieldsOwn) {
    openWith(Focus::List);
    select("B");
    key(Qt::Key_Delete);
    EXPECT_EQ(shown(), "ACD");
    click(field);
    field->setFocus();
    key(Qt::Key_X);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field->text(), QStringLiteral("ab"));
    EXPECT_EQ(shown(), "ACD");
    window->findChild<QListView*>()->setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown(), "ABCD");
}

TEST_F(KeysTest, ArrowsWalkThroughTheMenuBar) {
    open();
    play('A');
    controller->seek(10);
    QTest::keyPress(window->windowHandle(), Qt::Key_Alt);
    QTest::keyRelease(window->windowHandle(), Qt::Key_Alt);
    rest();
    ASSERT_TRUE(window->menuBar()->activeAction());
    const QString first = window->menuBar()->activeAction()->text();
    key(Qt::Key_Right);
    ASSERT_TRUE(window->menuBar()->activeAction());
    EXPECT_NE(window->menuBar()->activeAction()->text(), first);
    EXPECT_EQ(controller->playback().currentTime(), 10);
    key(Qt::Key_Down);
    ASSERT_TRUE(QApplication::activePopupWidget());
    key(Qt::Key_Escape);
    EXPECT_EQ(controller->settings().volume, 0.5);
}
