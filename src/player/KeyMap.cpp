#include "player/KeyMap.h"

#include <algorithm>
#include <iterator>

namespace quorel {

namespace {

using Kind = KeyAction::Kind;

constexpr double kSeekStep = 5.0; // seconds
constexpr double kVolumeStep = 0.05;

struct Binding {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers; // exactly these
    KeyAction action;
};

constexpr Binding kBindings[] = {
    {Qt::Key_A, Qt::ControlModifier, {Kind::SelectAll}},
    {Qt::Key_Left, Qt::NoModifier, {Kind::Seek, -kSeekStep}},
    {Qt::Key_Right, Qt::NoModifier, {Kind::Seek, kSeekStep}},
    {Qt::Key_Down, Qt::NoModifier, {Kind::Volume, -kVolumeStep}},
    {Qt::Key_Up, Qt::NoModifier, {Kind::Volume, kVolumeStep}},
};

/// Whether the focused control needs what the window would do with the key. A control that was
/// clicked leaves the arrows alone: after a click on a slider they go on seeking.
bool isForFocused(Kind kind, FocusContext focus) {
    switch (focus.kind) {
    case FocusKind::TextField:
        return true;
    case FocusKind::ArrowControl:
        return focus.byTab && kind != Kind::SelectAll;
    case FocusKind::Other:
        break;
    }
    return false;
}

} // namespace

KeyAction actionOfKey(Qt::Key key, Qt::KeyboardModifiers modifiers, FocusContext focus,
                      bool canSeek) {
    // Where on the keyboard a key is does not matter.
    modifiers &= Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const auto binding = std::ranges::find_if(kBindings, [key, modifiers](const Binding& entry) {
        return entry.key == key && entry.modifiers == modifiers;
    });
    if (binding == std::end(kBindings) || isForFocused(binding->action.kind, focus) ||
        (binding->action.kind == Kind::Seek && !canSeek))
        return {};
    return binding->action;
}

double positionAfter(KeyAction seek, double position, double duration) {
    return std::clamp(position + seek.amount, 0.0, std::max(duration, 0.0));
}

double volumeAfter(KeyAction change, double volume) {
    return std::clamp(volume + change.amount, 0.0, 1.0);
}

} // namespace quorel
