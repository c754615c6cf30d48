#include "desktop/SuspendInhibition.h"

#include "player/PlayerController.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <array>

namespace quorel {

namespace {

struct Service {
    const char* name;
    const char* path;
    const char* interface;
    const char* releaseMethod;
    bool isSession; ///< takes a window and flags as well
};

constexpr std::array kServices = {
    Service{"org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit",
            "org.freedesktop.PowerManagement.Inhibit", "UnInhibit", false},
    Service{"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager",
            "Uninhibit", true},
};
constexpr quint32 kNoWindow = 0;
constexpr quint32 kSuspending = 4; // of the session manager's flags

QVariantList argumentsFor(const Service& service) {
    const QString program = QStringLiteral("Quorel");
    const QString reason = QCoreApplication::translate("SuspendInhibition", "Music is playing");
    if (service.isSession)
        return {program, kNoWindow, reason, kSuspending};
    return {program, reason};
}

} // namespace

SuspendInhibition::SuspendInhibition(PlayerController& controller)
    : controller_(controller) {}

void SuspendInhibition::start(const QDBusConnection& bus) {
    bus_ = bus;
    if (!bus_.isConnected())
        return;
    QObject::connect(&controller_, &PlayerController::transportChanged, &context_,
                     [this] { follow(); });
    follow();
}

void SuspendInhibition::follow() {
    if (isAsking_) {
        isBehind_ = true; // the answer leads here again
        return;
    }
    isBehind_ = false;
    const bool isPlaying = controller_.playback().isPlaying();
    if (isPlaying && !held_)
        inhibit(0);
    else if (!isPlaying && held_)
        release();
}

void SuspendInhibition::inhibit(std::size_t service) {
    isAsking_ = true;
    call(service, "Inhibit", argumentsFor(kServices[service]),
         [this, service](std::optional<quint32> cookie) {
             if (!cookie && service + 1 < kServices.size()) {
                 inhibit(service + 1);
                 return;
             }
             isAsking_ = false;
             if (cookie)
                 held_ = Held{service, *cookie};
             if (isBehind_) // else nobody is there, or it holds
                 follow();
         });
}

void SuspendInhibition::release() {
    const Held held = *std::exchange(held_, {});
    call(held.service, kServices[held.service].releaseMethod, {held.cookie}, {});
}

void SuspendInhibition::call(std::size_t service, const char* method, const QVariantList& arguments,
                             const std::function<void(std::optional<quint32>)>& answered) {
    const Service& to = kServices[service];
    QDBusMessage message =
        QDBusMessage::createMethodCall(QLatin1String(to.name), QLatin1String(to.path),
                                       QLatin1String(to.interface), QLatin1String(method));
    message.setAutoStartService(false);
    message.setArguments(arguments);
    if (!answered) {
        bus_.send(message);
        return;
    }
    auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message), &context_);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &context_, [watcher, answered] {
        const QDBusPendingReply<quint32> reply = *watcher;
        watcher->deleteLater();
        answered(reply.isError() ? std::nullopt : std::optional(reply.value()));
    });
}

} // namespace quorel
