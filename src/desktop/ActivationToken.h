#pragma once

#include <QByteArray>

namespace quorel {

// A desktop lets a window come to the front where the user asked for it. The program that they
// clicked in proves that with a token, which it leaves to the one that it launches.

/// The token this process was launched with; empty without one.
QByteArray launchActivationToken();

/// The next window to be raised shows this token, where the desktop asks for it when a window is
/// raised (Wayland). An empty one changes nothing. Main thread.
void useActivationToken(const QByteArray& token);

} // namespace quorel
