#pragma once

#include <Qt>

namespace quorel {

/// What has the keyboard focus, as far as keys go.
enum class FocusKind {
    Other,
    TextField,
    ArrowControl, ///< slider, combo box, tab strip or pop-up: arrows mean something in it
};

struct FocusContext {
    FocusKind kind = FocusKind::Other;
    bool byTab = false; ///< the focus came by the Tab key, not by a click
};

struct KeyAction {
    enum class Kind {
        PassOn, ///< the key is the focused control's
        SelectAll,
        Seek,   ///< by `amount` seconds
        Volume, ///< by `amount`, 1 being full volume
    };

    Kind kind = Kind::PassOn;
    double amount = 0;

    bool operator==(const KeyAction&) const = default;
};

/// What a key pressed anywhere in the window does; `canSeek` is whether a track is loaded.
KeyAction actionOfKey(Qt::Key key, Qt::KeyboardModifiers modifiers, FocusContext focus,
                      bool canSeek);

/// Where a seek leads: within 0..duration. Seconds.
double positionAfter(KeyAction seek, double position, double duration);

/// Within 0..1.
double volumeAfter(KeyAction change, double volume);

} // namespace quorel
