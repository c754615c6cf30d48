#include "ui/WindowFixture.h"

#include <QAbstractButton>
#include <algorithm>
#include <functional>

using namespace quorel;
using namespace quorel::test;

namespace {

class AccessTest : public WindowTest {
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
    /// Begins where the highest of all begins, and goes on line by line from left to right.
    static void expectReadingOrder(const QWidgetList& stops) {
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
    QWidgetList stops = walk();
    EXPECT_EQ(stops.size(), focusable());
    // What stands lowest is the last.
    const auto last = std::ranges::max_element(stops, {}, [](const QWidget* widget) {
        return widget->mapTo(widget->window(), widget->rect().bottomLeft()).y();
    });
    std::ranges::rotate(stops, last + 1);
    expectReadingOrder(stops);
    expectUsable(stops);
    for (const char* const opener : {"Mode: normal", "Equalizer"}) {
        click(opener);
        stops = {front().focusWidget()};
        EXPECT_TRUE(stops.first());
        stops = walk();
        EXPECT_EQ(stops.size(), focusable()) << opener;
        std::ranges::rotate(stops, stops.end() - 1);
        expectReadingOrder(stops);
        expectUsable(stops);
        key(Qt::Key_Escape);
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
        {"Mode: normal", [](PlayerController& player) { player.toggleShuffle(); }},
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
