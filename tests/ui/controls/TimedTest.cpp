#include "Window.h"
#include "core/ManualClock.h"
#include "ui/Painted.h"
#include "ui/controls/FloatingValueLabel.h"
#include "ui/controls/MarqueeLabel.h"

using namespace quorel;
using namespace std::chrono_literals;

namespace {

const QString kLong = QStringLiteral("A title that is far too long for the display it stands in");

} // namespace

TEST(FloatingValueLabel, HidesAfterTheLastChange) {
    Window window;
    ManualClock clock;
    auto& target = window.with(new QWidget, {200, 20});
    FloatingValueLabel label(clock, &target);
    label.showValue(QStringLiteral("10%"), {50, 10});
    clock.advance(800ms);
    label.showValue(QStringLiteral("11%"), {52, 10});
    clock.advance(899ms);
    EXPECT_TRUE(label.isVisible());
    EXPECT_EQ(label.text(), QStringLiteral("11%"));
    clock.advance(1ms);
    EXPECT_FALSE(label.isVisible());
    target.hide();
    label.showValue(QStringLiteral("12%"), {52, 10});
    EXPECT_FALSE(label.isVisible());
}

TEST(FloatingValueLabel, StaysInsideTheWindow) {
    const struct {
        QPoint target;
        bool above;
    } kCases[] = {{{0, 200}, true}, {{560, 200}, true}, {{300, 0}, false}};
    for (const auto& row : kCases) {
        Window window;
        ManualClock clock;
        auto& target = window.with(new QWidget, {40, 20});
        target.move(row.target);
        FloatingValueLabel label(clock, &target);
        label.showValue(QStringLiteral("-1:23:45"), {20, 10});
        EXPECT_TRUE(window.rect().contains(label.geometry())) << row.target.x();
        EXPECT_EQ(label.geometry().bottom() < row.target.y() + 10, row.above) << row.target.y();
    }
}

TEST(MarqueePath, RestsAtBothEnds) {
    const MarqueePath path{.excess = 40}; // two seconds of gliding
    const struct {
        Clock::Duration elapsed;
        double offset;
        std::optional<Clock::Duration> rest;
    } kCases[] = {{0s, 0, 2s},  {1500ms, 0, 500ms}, {2s, 0, {}}, {3s, 20, {}},      {4s, 40, 2s},
                  {5s, 40, 1s}, {7s, 20, {}},       {8s, 0, 2s}, {80s + 3s, 20, {}}};
    for (const auto& row : kCases) {
        EXPECT_NEAR(path.offsetAt(row.elapsed), row.offset, 1e-6) << row.elapsed / 1ms;
        EXPECT_EQ(path.restLeft(row.elapsed), row.rest) << row.elapsed / 1ms;
    }
}

TEST(MarqueeLabel, MovesOnlyAsFarAsTheTextIsTooLong) {
    Window window;
    ManualClock clock;
    auto& label = window.with(new MarqueeLabel(clock), {150, 20});
    label.setText(kLong);
    clock.advance(1999ms);
    EXPECT_EQ(label.offset(), 0);
    clock.advance(501ms);
    EXPECT_NEAR(label.offset(), 10, 1.1); // half a second, less a frame
    const double excess = label.sizeHint().width() - 150;
    clock.advanceTo(2s + std::chrono::milliseconds(qRound(excess / 20 * 1000)) + 1s);
    EXPECT_NEAR(label.offset(), excess, 1.1);
    label.setText(kLong + kLong);
    EXPECT_EQ(label.offset(), 0) << "a new text begins at its start";
}

TEST(MarqueeLabel, RestsWithoutNeed) {
    const struct {
        const char* name;
        bool isLong, hidden, reduced;
    } kCases[] = {{"fits", false, false, false},
                  {"hidden", true, true, false},
                  {"reduced", true, false, true}};
    for (const auto& row : kCases) {
        Window window;
        ManualClock clock;
        qputenv("QUOREL_REDUCED_MOTION", row.reduced ? "1" : "0");
        auto& label = window.with(new MarqueeLabel(clock), {150, 20});
        label.setText(row.isLong ? kLong : QStringLiteral("Short"));
        label.setHidden(row.hidden);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        test::Painted painted(label);
        clock.advance(10s);
        EXPECT_EQ(clock.nextDeadline(), std::nullopt) << row.name;
        EXPECT_EQ(painted.takeTimes(), 0) << row.name;
        EXPECT_FALSE(label.isMoving()) << row.name;
    }
    qputenv("QUOREL_REDUCED_MOTION", "0");
}
