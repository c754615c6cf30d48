#include "player/KeyMap.h"

#include <gtest/gtest.h>

using namespace quorel;
using Kind = KeyAction::Kind;

namespace {

/// '<' and '>' seek by 5 s, '+' and '-' change the volume by 5 %, 'A' selects all, '.' passes on.
char codeOf(const KeyAction& action) {
    const std::pair<char, KeyAction> kCodes[] = {
        {'<', {Kind::Seek, -5}},      {'>', {Kind::Seek, 5}},   {'+', {Kind::Volume, 0.05}},
        {'-', {Kind::Volume, -0.05}}, {'A', {Kind::SelectAll}}, {'.', {}},
    };
    for (const auto& [code, known] : kCodes)
        if (action == known)
            return code;
    return '?';
}

} // namespace

TEST(KeyMap, givesEachKeyItsActionWhereTheFocusLetsIt) {
    // Elsewhere, there by Tab, text field, clicked control, that by Tab; elsewhere without a track.
    const std::pair<FocusContext, bool> kPlaces[] = {
        {{}, true},
        {{FocusKind::Other, true}, true},
        {{FocusKind::TextField, false}, true},
        {{FocusKind::ArrowControl, false}, true},
        {{FocusKind::ArrowControl, true}, true},
        {{}, false},
    };
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, std::string> kCases[] = {
        {Qt::Key_Left, Qt::NoModifier, "<<.<.."},
        {Qt::Key_Right, Qt::NoModifier, ">>.>.."},
        {Qt::Key_Up, Qt::NoModifier, "++.+.+"},
        {Qt::Key_Down, Qt::KeypadModifier, "--.-.-"},
        {Qt::Key_Right, Qt::ShiftModifier, "......"},
        {Qt::Key_Left, Qt::AltModifier, "......"},
        {Qt::Key_Up, Qt::MetaModifier, "......"},
        {Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier, "......"},
        {Qt::Key_A, Qt::ControlModifier, "AA.AAA"},
        {Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier, "......"},
        {Qt::Key_A, Qt::NoModifier, "......"},
        {Qt::Key_B, Qt::ControlModifier, "......"},
    };
    for (const auto& [key, modifiers, expected] : kCases) {
        std::string actions;
        for (const auto& [focus, canSeek] : kPlaces)
            actions += codeOf(actionOfKey(key, modifiers, focus, canSeek));
        EXPECT_EQ(actions, expected) << "key " << key << " with " << modifiers;
    }
}

TEST(KeyMap, stepsStayWithinTheirBounds) {
    const std::tuple<KeyAction, double, double> kCases[] = {
        {{Kind::Seek, -5}, 3, 0},      {{Kind::Seek, -5}, 50, 45},
        {{Kind::Seek, 5}, 98, 100},    {{Kind::Volume, 0.05}, 0.98, 1},
        {{Kind::Volume, -0.05}, 0, 0}, {{Kind::Volume, 0.05}, 0.5, 0.55},
    };
    for (const auto& [step, from, to] : kCases)
        EXPECT_DOUBLE_EQ(
            step.kind == Kind::Seek ? positionAfter(step, from, 100) : volumeAfter(step, from), to)
            << from << " by " << step.amount;
    EXPECT_EQ(positionAfter({Kind::Seek, 5}, 0, 0), 0) << "a length that is not known";
}
