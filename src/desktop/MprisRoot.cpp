#include "desktop/MprisRoot.h"

#include "player/PlayerController.h"

namespace quorel {

MprisRoot::MprisRoot(QObject& object, PlayerController& controller, std::function<void()> quit)
    : QDBusAbstractAdaptor(&object)
    , controller_(controller)
    , quit_(std::move(quit)) {
    setAutoRelaySignals(false);
}

QStringList MprisRoot::mimeTypes() const {
    // Systems do not agree on what some of the kinds are called.
    return QStringLiteral("audio/mpeg audio/mp4 audio/x-m4a audio/x-m4b audio/aac audio/flac "
                          "audio/x-flac audio/wav audio/x-wav audio/vnd.wave audio/aiff "
                          "audio/x-aiff audio/x-caf application/vnd.apple.mpegurl audio/x-mpegurl")
        .split(u' ');
}

bool MprisRoot::fullscreen() const {
    return controller_.fullscreenActive();
}

void MprisRoot::setFullscreen(bool on) {
    controller_.setFullScreen(on);
}

void MprisRoot::Raise() {
    controller_.raiseWindow();
}

void MprisRoot::Quit() {
    quit_();
}

} // namespace quorel
