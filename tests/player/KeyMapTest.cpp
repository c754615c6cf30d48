#include "player/KeyMap.h"

#include <gtest/gtest.h>

using namespace quorel;
using Kind = KeyAction::Kind;

TEST(KeyMap, givesEachKeyItsActionWhereTheFocusLetsIt) {
    constexpr FocusContext kOther;
    constexpr FocusContext kOtherByTab{FocusKind::Other, true};
    constexpr FocusContext kText{FocusKind::TextField, false};
    constexpr FocusContext kClicked{FocusKind::ArrowControl, false};
    constexpr FocusContext kTabbed{FocusKind::ArrowControl, true};
    constexpr KeyAction kPassOn;
    constexpr KeyAction kBack{Kind::Seek, -5};
    constexpr KeyAction kOn{Kind::Seek, 5};
    constexpr KeyAction kLouder{Kind::Volume, 0.05};
    constexpr KeyAction kSofter{Kind::Volume, -0.05};
    constexpr KeyAction kAll{Kind::SelectAll};
    struct Case {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        KeyAction other;
        KeyAction text;
        KeyAction clicked;
        KeyAction tabbed;
        KeyAction withoutTrack;
    };
    const Case kCases[] = {
        {Qt::Key_Left, Qt::NoModifier, kBack, kPassOn, kBack, kPassOn, kPassOn},
        {Qt::Key_Right, Qt::NoModifier, kOn, kPassOn, kOn, kPassOn, kPassOn},
        {Qt::Key_Up, Qt::NoModifier, kLouder, kPassOn, kLouder, kPassOn, kLouder},
        {Qt::Key_Down, Qt::KeypadModifier, kSofter, kPassOn, kSofter, kPassOn, kSofter},
        {Qt::Key_Right, Qt::ShiftModifier, {}, {}, {}, {}, {}},
        {Qt::Key_Left, Qt::AltModifier, {}, {}, {}, {}, {}},
        {Qt::Key_Up, Qt::MetaModifier, {}, {}, {}, {}, {}},
        {Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier, {}, {}, {}, {}, {}},
        {Qt::Key_A, Qt::ControlModifier, kAll, kPassOn, kAll, kAll, kAll},
        {Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier, {}, {}, {}, {}, {}},
        {Qt::Key_A, Qt::NoModifier, {}, {}, {}, {}, {}},
        {Qt::Key_B, Qt::ControlModifier, {}, {}, {}, {}, {}},
        {Qt::Key_Space, Qt::NoModifier, {}, {}, {}, {}, {}},
    };
    for (const Case& c : kCases) {
        const auto action = [&c](FocusContext focus, bool canSeek = true) {
            return actionOfKey(c.key, c.modifiers, focus, canSeek);
        };
        const auto what = [&c](const char* focus) {
            return testing::Message() << focus << ", key " << c.key << " with " << c.modifiers;
        };
        EXPECT_EQ(action(kOther), c.other) << what("elsewhere");
        EXPECT_EQ(action(kOtherByTab), c.other) << what("elsewhere by Tab");
        EXPECT_EQ(action(kText), c.text) << what("text field");
        EXPECT_EQ(action(kClicked), c.clicked) << what("clicked control");
        EXPECT_EQ(action(kTabbed), c.tabbed) << what("control reached by Tab");
        EXPECT_EQ(action(kOther, false), c.withoutTrack) << what("without a track");
    }
}

TEST(KeyMap, stepsStayWithinTheirBounds) {
    struct Case {
        Kind kind;
        double by;
        double from;
        double to;
    };
    constexpr double kDuration = 100;
    const Case kCases[] = {
        {Kind::Seek, -5, 3, 0},          {Kind::Seek, -5, 50, 45},
        {Kind::Seek, 5, 98, kDuration},  {Kind::Seek, 5, kDuration, kDuration},
        {Kind::Volume, 0.05, 0.98, 1},   {Kind::Volume, 0.05, 1, 1},
        {Kind::Volume, -0.05, 0.03, 0},  {Kind::Volume, -0.05, 0, 0},
        {Kind::Volume, 0.05, 0.5, 0.55},
    };
    for (const Case& c : kCases) {
        const KeyAction step{c.kind, c.by};
        const double to = c.kind == Kind::Seek ? positionAfter(step, c.from, kDuration)
                                               : volumeAfter(step, c.from);
        EXPECT_DOUBLE_EQ(to, c.to) << c.from << " by " << c.by;
    }
    EXPECT_EQ(positionAfter({Kind::Seek, 5}, 0, 0), 0) << "a length that is not known";
}
