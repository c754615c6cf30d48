#include "Window.h"
#include "ui/Painted.h"
#include "ui/controls/Sliders.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QWheelEvent>
#include <memory>

using namespace quorel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Kind { Fill, Pan, Band, Tenths };

std::unique_ptr<ValueSlider> make(Kind kind) {
    if (kind == Fill)
        return std::make_unique<FillSlider>();
    if (kind == Pan)
        return std::make_unique<PanSlider>();
    if (kind == Tenths)
        return std::make_unique<FillSlider>(
            ValueSlider::Range{
                .lowest = 0.5, .highest = 1.5, .step = 0.1, .page = 0.2, .rest = std::nullopt},
            FillSlider::Snap::ToSteps, nullptr);
    return std::make_unique<EQBandSlider>();
}

/// A slider in a window, 216 base units long, so that its handle travels 200; and what it reports.
struct Slider {
    explicit Slider(Kind kind, double value = 0, double scale = 1)
        : window(scale)
        , slider(make(kind))
        , upright(kind == Band) {
        window.with(slider.get(), upright ? QSize(px(24), px(216)) : QSize(px(216), px(20)));
        slider->setValue(value);
        QObject::connect(slider.get(), &ValueSlider::editingStarted, [this] { log << "begin"; });
        QObject::connect(slider.get(), &ValueSlider::valueEdited,
                         [this](double to) { log << std::to_string(qRound(to * 100)); });
        QObject::connect(slider.get(), &ValueSlider::editingEnded, [this] { log << "end"; });
        QObject::connect(slider.get(), &ValueSlider::editingCutOff, [this] { log << "cut off"; });
    }

    /// The pixel where the handle stands at a share of its way from the lowest value.
    QPoint at(double share) const {
        const int way = qRound((upright ? 208 - 200 * share : 8 + 200 * share) * uiScale());
        return upright ? QPoint(px(12), way) : QPoint(way, px(10));
    }
    void move(double share) const {
        QMouseEvent event(QEvent::MouseMove, at(share), slider->mapToGlobal(at(share)),
                          Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(slider.get(), &event);
    }
    void press(double share) const {
        QTest::mousePress(slider.get(), Qt::LeftButton, {}, at(share));
    }
    void release(double share) const {
        QTest::mouseRelease(slider.get(), Qt::LeftButton, {}, at(share));
    }
    void wheel(QPoint turn) const {
        const QPointF middle(slider->rect().center());
        QWheelEvent event(middle, slider->mapToGlobal(middle), {}, turn, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(slider.get(), &event);
    }

    struct Log : std::vector<std::string> {
        Log& operator<<(const std::string& entry) {
            push_back(entry);
            return *this;
        }
    };

    Window window;
    std::unique_ptr<ValueSlider> slider;
    bool upright;
    Log log;
};

} // namespace

TEST(ValueSlider, RepaintsWhereItsHandleMovedAndNoMore) {
    for (const double scale : {1.0, 1.5}) {
        const Slider fixture(Fill, 0.5, scale);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(fixture.slider->window()));
        test::Painted painted(*fixture.slider);
        fixture.slider->setValue(0.6);
        const QRect moved = painted.takeArea();
        EXPECT_TRUE(moved.contains(fixture.at(0.5)) && moved.contains(fixture.at(0.6)));
        EXPECT_LT(moved.width(), px(50));

        fixture.slider->setValue(0.6 + 0.06 / 200);
        EXPECT_TRUE(painted.takeArea().isEmpty()) << "less than can be seen";
        fixture.slider->setValue(0.6 + 0.12 / 200);
        EXPECT_FALSE(painted.takeArea().isEmpty()) << "steps too small to be seen add up";
    }
}

TEST(Slider, KeysMoveByStepsWithinTheRange) {
    const struct {
        Kind kind;
        double from;
        Qt::Key key;
        double to;
    } kCases[] = {
        {Fill, 0.5, Qt::Key_Right, 0.55},   {Fill, 0.5, Qt::Key_Down, 0.45},
        {Fill, 0.98, Qt::Key_Up, 1},        {Fill, 0.5, Qt::Key_PageDown, 0.3},
        {Fill, 0.5, Qt::Key_Home, 0},       {Fill, 1, Qt::Key_Right, 1},
        {Pan, 0, Qt::Key_Left, -0.05},      {Pan, 0, Qt::Key_PageUp, 0.25},
        {Pan, 0.3, Qt::Key_End, 1},         {Pan, -1, Qt::Key_Left, -1},
        {Band, 0, Qt::Key_Up, 1},           {Band, 11.5, Qt::Key_Right, 12},
        {Band, -10, Qt::Key_PageDown, -12}, {Band, 3, Qt::Key_Home, -12},
        {Tenths, 0.64, Qt::Key_Right, 0.7}, {Tenths, 0.7, Qt::Key_Left, 0.6},
        {Tenths, 1.4, Qt::Key_PageUp, 1.5},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(testing::Message() << row.kind << " from " << row.from << " by " << row.key);
        Slider test(row.kind, row.from);
        QTest::keyClick(test.slider.get(), row.key);
        EXPECT_NEAR(test.slider->value(), row.to, 1e-9);
        if (row.from == row.to)
            EXPECT_THAT(test.log, IsEmpty());
        else
            EXPECT_THAT(test.log,
                        ElementsAre("begin", std::to_string(qRound(row.to * 100)), "end"));
    }
}

TEST(Slider, AClickJumpsToItsPlaceAtEveryScale) {
    const struct {
        Kind kind;
        double from, share, to;
    } kCases[] = {{Tenths, 0.5, 0.33, 0.8}, {Fill, 0, 0.75, 0.75}, {Fill, 1, -0.1, 0},
                  {Fill, 0.2, 1.1, 1},      {Pan, -1, 0.9, 0.8},   {Pan, -1, 0.52, 0},
                  {Band, 0, 1, 12},         {Band, 0, 0.25, -6},   {Band, 12, -0.03, -12}};
    for (const double scale : {0.5, 1.0, 1.5}) {
        for (const auto& row : kCases) {
            SCOPED_TRACE(testing::Message() << row.kind << " at " << row.share << " x" << scale);
            Slider test(row.kind, row.from, scale);
            test.press(row.share);
            EXPECT_TRUE(test.slider->isEditing());
            test.release(row.share);
            EXPECT_FALSE(test.slider->isEditing());
            // At half size half a pixel is that much.
            EXPECT_NEAR(test.slider->value(), row.to, row.kind == Band ? 0.13 : 0.011);
        }
    }
}

TEST(Slider, ADragTakesTheHandleAsItStands) {
    Slider test(Fill, 0.5);
    test.press(0.52); // four units beside its middle
    test.move(0.62);
    test.move(2);
    test.slider->setValue(0.1); // the player goes on meanwhile
    test.release(2);
    EXPECT_THAT(test.log, ElementsAre("begin", "60", "100", "end"));
    test.slider->setValue(0.1);
    EXPECT_EQ(test.slider->value(), 0.1);
}

TEST(Slider, ADoubleClickLeadsToRest) {
    const struct {
        Kind kind;
        double to;
    } kCases[] = {{Fill, 0.9}, {Pan, 0}, {Band, 0}};
    for (const auto& row : kCases) {
        Slider test(row.kind, 0.3);
        test.press(0.9);
        test.release(0.9);
        QMouseEvent second(QEvent::MouseButtonDblClick, test.at(0.9),
                           test.slider->mapToGlobal(test.at(0.9)), Qt::LeftButton, Qt::LeftButton,
                           Qt::NoModifier);
        QApplication::sendEvent(test.slider.get(), &second);
        test.release(0.9);
        EXPECT_NEAR(test.slider->value(), row.to, 1e-9) << row.kind;
        EXPECT_FALSE(test.slider->isEditing()) << row.kind;
    }
}

TEST(Slider, TheWheelTurnsBySteps) {
    const struct {
        std::vector<QPoint> turns;
        double to;
    } kCases[] = {{{{0, 120}}, 1},         {{{0, -240}}, -2}, {{{0, 60}}, 0},
                  {{{0, 60}, {0, 60}}, 1}, {{{-120, 0}}, 1},  {{{0, 12000}}, 12}};
    for (const auto& row : kCases) {
        Slider test(Band);
        for (const QPoint& turn : row.turns)
            test.wheel(turn);
        EXPECT_EQ(test.slider->value(), row.to) << row.turns.front().y();
    }
}

TEST(Slider, ADragIsCutOffWhenTheSliderGoesAway) {
    for (const bool hide : {false, true}) {
        Slider test(Fill);
        test.press(0.5);
        if (hide)
            test.slider->hide();
        else
            test.slider->setEnabled(false);
        test.release(0.5);
        EXPECT_THAT(test.log, ElementsAre("begin", "50", "cut off"));
    }
}
