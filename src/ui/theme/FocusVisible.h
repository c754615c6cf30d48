#pragma once

class QApplication;
class QWidget;

namespace quorel {

/// From now on remembers whether the user walks through the controls by Tab. A press of a mouse
/// button ends that.
void watchKeyboardFocus(QApplication& application);

/// As if Tab had been pressed: another key is about to move the focus.
void beginFocusWalk();

/// Whether the widget has the focus and got there in a walk by Tab: only then is a ring of use.
bool showsFocusRing(const QWidget* widget);

} // namespace quorel
