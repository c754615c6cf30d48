#include "Window.h"
#include "ui/controls/LcdDigits.h"
#include "ui/controls/ModeRow.h"
#include "ui/controls/PanelButton.h"
#include "ui/controls/PopoverPanel.h"
#include "ui/controls/Switch.h"
#include "ui/theme/FocusVisible.h"

#include <QAccessible>
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

TEST(Accessible, EveryButtonHasItsRoleNameAndState) {
    Window window;
    auto* readout = new LcdDigits;
    readout->setAccessibleName(QStringLiteral("Elapsed time"));
    readout->showTime(QStringLiteral("2:47"));
    auto* row = new ModeRow(Icon::Shuffle, QStringLiteral("Shuffle"));
    row->setChecked(true);
    auto* equalizer = new Switch(QStringLiteral("Equalizer"));
    const struct {
        QAbstractButton* button;
        QAccessible::Role role;
        const char* name;
        bool checked;
    } kCases[] = {{new TextIconButton(QStringLiteral("Mode")), QAccessible::Button, "Mode", false},
                  {readout, QAccessible::Button, "Elapsed time", false},
                  {row, QAccessible::CheckBox, "Shuffle", true},
                  {equalizer, QAccessible::CheckBox, "Equalizer", false}};
    for (const auto& entry : kCases) {
        window.with(entry.button, {100, 40});
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(entry.button);
        ASSERT_NE(face, nullptr) << entry.name;
        EXPECT_EQ(face->role(), entry.role) << entry.name;
        EXPECT_EQ(face->text(QAccessible::Name), QString::fromLatin1(entry.name));
        EXPECT_EQ(face->state().checked, entry.checked) << entry.name;
        EXPECT_TRUE(face->state().focusable) << entry.name;
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(readout)->text(QAccessible::Description),
              QStringLiteral("2:47"));
}

TEST(PopoverPanel, HangsOnItsButtonAndClosesByEscape) {
    Window window;
    auto& button = window.with(new TransportButton(Icon::Equalizer), {44, 40});
    auto* panel = new PopoverPanel(&window);
    auto* layout = new QVBoxLayout(panel);
    auto* row = new ModeRow(Icon::Shuffle, QStringLiteral("Shuffle"));
    layout->addWidget(row);
    int closed = 0;
    QObject::connect(panel, &PopoverPanel::closed, [&] { ++closed; });
    panel->popUpAt(&button);
    EXPECT_EQ(panel->y(), button.mapToGlobal(QPoint(0, button.height())).y());
    EXPECT_TRUE(panel->rect().contains(row->geometry()));
    EXPECT_EQ(panel->focusWidget(), row);
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(closed, 1);
    panel->popUpAt(&button);
    QTest::mousePress(panel, Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(closed, 2);
}
