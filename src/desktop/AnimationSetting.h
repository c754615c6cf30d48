#pragma once

#include <QDBusConnection>
#include <functional>

class QObject;

namespace quorel {

/// Asks the desktop's settings portal whether the user has switched animations off, as GNOME's
/// accessibility settings offer; calls `switchedOff` later if so, while `context` lives. Waits for
/// the bus, so call it when the window has been drawn. Main thread.
void askForAnimations(QObject* context, std::function<void()> switchedOff,
                      const QDBusConnection& bus = QDBusConnection::sessionBus());

} // namespace quorel
