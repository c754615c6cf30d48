#include "ui/AllWindows.h"

#include <QAbstractButton>
#include <algorithm>
#include <functional>

using namespace quorel;
using namespace quorel::test;

namespace {

class AccessTest : public AllWindowsTest {
  protected:
    /// What Tab leads to in front, in its order, once around.
    QWidgetList walk() {
        QWidgetList stops;
        for (int steps = 0; steps < 80; ++steps) {
            key(Qt::Key_Tab);
            QWidget* const focus = QApplication::activePopupWidget() ? front().focusWidget()
                                                                     : QApplication::focusWidget();
            if (!focus || (!stops.isEmpty() && focus == stops.first()))
                break;
            stops += focus;
        }
        return stops;
    }
    static QPoint placeOf(const QWidget* widget) {
        return widget->mapTo(widget->window(), widget->rect().center());
    }
    /// Line by line from left to right, once around to what stands lowest.
    static void expectReadingOrder(QWidgetList stops) {
        const auto last = std::ranges::max_element(stops, {}, [](const QWidget* widget) {
            const QPoint corner = widget->mapTo(widget->window(), widget->rect().bottomRight());
            return std::pair(corner.y(), corner.x());
        });
        std::rotate(stops.begin(), last + 1, stops.end());
        for (qsizetype i = 1; i < stops.size(); ++i) {
            const QWidget& before = *stops.at(i - 1);
            const QWidget& after = *stops.at(i);
            const int top = after.mapTo(after.window(), QPoint()).y();
            const int bottom = before.mapTo(before.window(), QPoint()).y() + before.height();
            const bool isBelow = top >= bottom - 2;
            const bool isRight = placeOf(&after).x() > placeOf(&before).x();
            EXPECT_TRUE(isBelow || isRight)
                << nameOf(*stops.at(i - 1)).toStdString() << " comes before "
                << nameOf(*stops.at(i)).toStdString();
        }
    }
    void expectUsable(const QWidgetList& stops) {
        for (QWidget* const widget : stops) {
            QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
            const std::string name = face->text(QAccessible::Name).toStdString();
            EXPECT_FALSE(name.empty()) << widget->metaObject()->className();
            EXPECT_NE(face->role(), QAccessible::Client) << name;
            EXPECT_NE(face->role(), QAccessible::NoRole) << name;
            if (face->role() == QAccessible::Slider) {
                EXPECT_TRUE(face->valueInterface()) << name;
                EXPECT_FALSE(face->text(QAccessible::Value).isEmpty()) << name;
            }
            // The focus is seen.
            widget->setFocus(Qt::TabFocusReason);
            const QImage with = widget->grab().toImage();
            widget->clearFocus();
            EXPECT_NE(widget->grab().toImage(), with) << name << " does not show its focus";
            widget->setFocus(Qt::TabFocusReason);
        }
    }
    /// Who walks down from the program comes to it.
    static void expectInTree(QWidget* shown) {
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(shown);
        while (QAccessibleInterface* const parent = face->parent()) {
            const int index = parent->indexOfChild(face);
            ASSERT_GE(index, 0) << face->object()->metaObject()->className();
            EXPECT_EQ(parent->child(index), face);
            EXPECT_LT(index, parent->childCount());
            face = parent;
        }
        EXPECT_EQ(face->role(), QAccessible::Application);
    }
    /// All that wants the focus, whatever the order.
    qsizetype focusable() const {
        return std::ranges::count_if(front().findChildren<QWidget*>(), [](const QWidget* widget) {
            return widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
                   (widget->focusPolicy() & Qt::TabFocus) != 0;
        });
    }
};

} // namespace

TEST_F(AccessTest, TabReachesEverythingInReadingOrder) {
    open();
    play('B');
    const Scene main = {"main window", [this] { return window.get(); }};
    for (const auto& scenes : {std::vector{main}, panels(), dialogs()})
        for (const Scene& scene : scenes) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, scene.name);
            QWidget* const shown = scene.show();
            EXPECT_TRUE(shown->focusWidget());
            expectInTree(shown);
            const QWidgetList stops = walk();
            EXPECT_EQ(stops.size(), focusable());
            expectReadingOrder(stops);
            expectUsable(stops);
            leave();
        }
}

TEST_F(AccessTest, WhatIsOnIsToldInWords) {
    open();
    play('A');
    const auto words = [](QWidget* widget) {
        const QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
        const auto state = face->state();
        return face->text(QAccessible::Name) + u'|' + face->text(QAccessible::Description) + u'|' +
               QString::number(state.checked) + widget->toolTip();
    };
    const struct {
        const char* control;
        std::function<void(PlayerController&)> change;
    } kCases[] = {
        {"Mute", [](PlayerController& player) { player.toggleMute(); }},
        {"Mode: repeat one, shuffle", [](PlayerController& player) { player.toggleShuffle(); }},
        {"Equalizer", [](PlayerController& player) { player.setEQEnabled(true); }},
        {"Playlist", [](PlayerController& player) { player.togglePlaylistVisible(); }},
        {"Visualization", [](PlayerController& player) { player.cycleVisualization(); }},
        {"Volume", [](PlayerController& player) { player.setVolume(0.1); }},
    };
    for (const auto& row : kCases) {
        QWidget* const widget = find(row.control);
        QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(widget);
        const QString before = words(widget) + face->text(QAccessible::Value);
        row.change(*controller);
        rest();
        EXPECT_NE(words(widget) + face->text(QAccessible::Value), before) << row.control;
    }
}

TEST_F(AccessTest, SlidersAreSetByAssistiveTechnology) {
    open();
    play('A');
    const struct {
        const char* slider;
        double value;
        const char* text;
    } kCases[] = {{"Volume", 0.25, "25%"}, {"Balance", -0.35, "L35%"}, {"Position", 0.5, "0:10"}};
    for (const auto& row : kCases) {
        QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(find(row.slider));
        ASSERT_TRUE(face && face->valueInterface()) << row.slider;
        face->valueInterface()->setCurrentValue(row.value);
        rest();
        EXPECT_EQ(face->text(QAccessible::Value).toStdString(), row.text);
    }
    EXPECT_EQ(controller->settings().volume, 0.25);
    EXPECT_EQ(controller->settings().pan, -0.35);
    EXPECT_NEAR(controller->playback().currentTime(), 10, 0.3);
}
