#include "desktop/MprisPlayer.h"

#include "desktop/MprisMetadata.h"
#include "model/FileUri.h"
#include "player/PlayerController.h"

#include <algorithm>
#include <cmath>

namespace quorel {

MprisPlayer::MprisPlayer(QObject& object, PlayerController& controller)
    : QDBusAbstractAdaptor(&object)
    , controller_(controller) {
    setAutoRelaySignals(false);
}

QString MprisPlayer::playbackStatus() const {
    if (controller_.playback().isPlaying())
        return QStringLiteral("Playing");
    return isLoaded() ? QStringLiteral("Paused") : QStringLiteral("Stopped");
}

QString MprisPlayer::loopStatus() const {
    switch (controller_.settings().pbMode) {
    case PlaybackMode::One:
        return QStringLiteral("Track");
    case PlaybackMode::All:
        return QStringLiteral("Playlist");
    case PlaybackMode::Normal:
    case PlaybackMode::StopAfter:
        break;
    }
    return QStringLiteral("None");
}

void MprisPlayer::setLoopStatus(const QString& status) {
    // The interface has no word for stopping after each track: "None" is that, too, and keeps it.
    if (status == loopStatus())
        return;
    if (status == QLatin1String("None"))
        controller_.setPlaybackMode(PlaybackMode::Normal);
    else if (status == QLatin1String("Track"))
        controller_.setPlaybackMode(PlaybackMode::One);
    else if (status == QLatin1String("Playlist"))
        controller_.setPlaybackMode(PlaybackMode::All);
}

bool MprisPlayer::shuffle() const {
    return controller_.settings().shuffle;
}

void MprisPlayer::setShuffle(bool on) {
    if (on != shuffle())
        controller_.toggleShuffle();
}

double MprisPlayer::volume() const {
    return controller_.settings().volume;
}

void MprisPlayer::setVolume(double volume) {
    if (!std::isnan(volume))
        controller_.setVolume(std::clamp(volume, 0.0, 1.0));
}

QVariantMap MprisPlayer::metadata() const {
    const Track* track = controller_.playingTrack();
    const double playable = controller_.playback().duration();
    return mprisMetadata(track, track && playable <= 0 ? track->duration.value_or(0) : playable);
}

qlonglong MprisPlayer::position() const {
    return mprisTime(controller_.playback().currentTime());
}

bool MprisPlayer::canGoNext() const {
    return controller_.canPlayNext();
}

bool MprisPlayer::canGoPrevious() const {
    return controller_.canPlayPrevious();
}

bool MprisPlayer::canPlay() const {
    return isLoaded() || !controller_.activePlaylist().tracks.isEmpty();
}

bool MprisPlayer::isLoaded() const {
    return controller_.playback().isLoaded();
}

void MprisPlayer::Next() {
    controller_.nextTrack();
}

void MprisPlayer::Previous() {
    controller_.prevTrack();
}

void MprisPlayer::Pause() {
    controller_.pause();
}

void MprisPlayer::PlayPause() {
    controller_.playPause();
}

void MprisPlayer::Stop() {
    controller_.stop();
}

void MprisPlayer::Play() {
    if (controller_.playback().isPlaying())
        return;
    // A paused track is resumed even where another one is selected in the window.
    if (isLoaded())
        controller_.pauseToggle();
    else
        controller_.togglePlay();
}

void MprisPlayer::Seek(qlonglong offset) {
    if (!isLoaded())
        return;
    // Compared like this no sum can overflow: the position is never negative.
    if (offset > length() - position())
        controller_.nextTrack();
    else
        seekTo(std::max(position() + offset, 0LL));
}

void MprisPlayer::SetPosition(const QDBusObjectPath& track, qlonglong position) {
    // Who asks may speak of a track that has ended meanwhile.
    const std::optional<QUuid> playing = controller_.playingTrackID();
    if (isLoaded() && playing && track == mprisTrackId(*playing) && position >= 0 &&
        position <= length())
        seekTo(position);
}

void MprisPlayer::OpenUri(const QString& uri) {
    if (const std::optional<QString> path = pathOfFileUri(uri))
        controller_.importPaths({*path}, {.playlist = {}, .playFirst = true});
}

qlonglong MprisPlayer::length() const {
    return mprisTime(controller_.playback().duration());
}

void MprisPlayer::seekTo(qlonglong position) {
    controller_.seek(static_cast<double>(position) / 1e6);
}

} // namespace quorel
