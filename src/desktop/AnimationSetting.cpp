#include "desktop/AnimationSetting.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace quorel {

void askForAnimations(QObject* context, std::function<void()> switchedOff,
                      const QDBusConnection& bus) {
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    question.setArguments(
        {QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations")});
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(question), context);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, context,
                     [answer, switchedOff = std::move(switchedOff)] {
                         const QDBusPendingReply<QDBusVariant> reply = *answer;
                         answer->deleteLater();
                         // It is wrapped once more by Read. Where there is none it is no bool.
                         QVariant value = reply.value().variant();
                         if (value.canConvert<QDBusVariant>())
                             value = value.value<QDBusVariant>().variant();
                         if (value.typeId() == QMetaType::Bool && !value.toBool())
                             switchedOff();
                     });
}

} // namespace quorel
