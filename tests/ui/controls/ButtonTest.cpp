#include "Window.h"
#include "ui/controls/PanelButton.h"
#include "ui/controls/PopoverPanel.h"
#include "ui/theme/FocusVisible.h"

#include <QVBoxLayout>

using namespace quorel;

TEST(PanelButton, IsPressedByItsKeys) {
    const struct {
        Qt::Key key;
        bool spacePresses;
        int clicks;
    } kCases[] = {{Qt::Key_Return, true, 1},
                  {Qt::Key_Enter, false, 1},
                  {Qt::Key_Space, true, 1},
                  {Qt::Key_Space, false, 0},
                  {Qt::Key_A, true, 0}};
    for (const auto& row : kCases) {
        Window window;
        auto& button = window.with(new TransportButton(Icon::Play), {44, 40});
        button.setSpacePresses(row.spacePresses);
        int clicks = 0;
        QObject::connect(&button, &QAbstractButton::clicked, [&] { ++clicks; });
        QTest::keyPress(&button, row.key);
        EXPECT_EQ(button.isDown(), row.clicks == 1) << row.key;
        QTest::keyRelease(&button, row.key);
        EXPECT_EQ(clicks, row.clicks) << row.key;
    }
}

TEST(PanelButton, ShowsEveryState) {
    Window window;
    auto& button = window.with(new TextIconButton(QStringLiteral("Mode")), {100, 40});
    button.setIcons({Icon::RepeatAll, Icon::Shuffle});
    std::vector<std::pair<const char*, QImage>> looks;
    const auto look = [&](const char* name) {
        const QImage image = button.grab().toImage();
        for (const auto& [other, seen] : looks)
            EXPECT_NE(image, seen) << name << " looks " << other;
        looks.emplace_back(name, image);
    };
    look("normal");
    button.setAttribute(Qt::WA_UnderMouse);
    look("hovered");
    button.setDown(true);
    look("pressed");
    button.setDown(false);
    button.setAttribute(Qt::WA_UnderMouse, false);
    button.setLit(true);
    look("lit");
    button.setEnabled(false);
    look("lit but disabled");
    button.setLit(false);
    look("disabled");
}

TEST(Focus, ShowsOnlyInAWalkByTab) {
    Window window;
    auto& first = window.with(new TransportButton(Icon::Play), {44, 40});
    auto& second = window.with(new TransportButton(Icon::Stop), {44, 40});
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    first.setFocus();
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_TRUE(first.hasFocus()) << "a click took the focus";
    EXPECT_FALSE(showsFocusRing(&first));
    QTest::keyClick(&window, Qt::Key_Tab);
    EXPECT_TRUE(showsFocusRing(&second));
    QTest::mousePress(&window, Qt::LeftButton);
    EXPECT_FALSE(showsFocusRing(&second));
}

TEST(PopoverPanel, SaysWhenItCloses) {
    Window window;
    auto& button = window.with(new TransportButton(Icon::Equalizer), {44, 40});
    auto* panel = new PopoverPanel(&window);
    new QVBoxLayout(panel);
    int closed = 0;
    QObject::connect(panel, &PopoverPanel::closed, [&] { ++closed; });
    panel->popUpAt(&button);
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
    panel->popUpAt(&button);
    QTest::mousePress(panel, Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_EQ(closed, 2);
}
