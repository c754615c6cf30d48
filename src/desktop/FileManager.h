#pragma once

#include <QDBusConnection>
#include <QString>
#include <functional>

namespace quorel {

/// Has the desktop's file manager show a file, selected in its folder. Returns at once; `otherwise`
/// is called where it turns out that no file manager can.
void showInFileManager(const QString& path, std::function<void()> otherwise,
                       const QDBusConnection& bus = QDBusConnection::sessionBus());

} // namespace quorel
