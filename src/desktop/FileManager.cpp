#include "desktop/FileManager.h"

#include "model/FileUri.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace quorel {

void showInFileManager(const QString& path, std::function<void()> otherwise,
                       const QDBusConnection& bus) {
    // What the desktops agreed upon: freedesktop.org, "File Manager DBus Interface".
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call.setArguments({QStringList(fileUri(path)), QString()});
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                     [answer, otherwise = std::move(otherwise)] {
                         if (answer->isError())
                             otherwise();
                         answer->deleteLater();
                     });
}

} // namespace quorel
