#include "player/PlayerController.h"

#include "player/PlayerCore.h"

namespace quorel {

PlayerController::PlayerController(PlayerParts parts)
    : core_(std::make_unique<Core>(*this, std::move(parts))) {}

PlayerController::~PlayerController() {
    if (core_->playback.playingTrack())
        core_->keepResumePoint();
    core_->saver.flush();
    core_->writer.drain(); // of playlist files
    if (core_->isResuming)
        core_->resumeMark.clear();
}

void PlayerController::start(bool resume) {
    const Core::Operation operation(*core_);
    core_->engine->openOutput(
        core_->outputOverride.value_or(core_->settings.outputDeviceUID.value_or(QString())));
    core_->resume(resume);
    core_->loader.load();
}

// --- What there is -------------------------------------------------------------------------------

qsizetype PlayerController::playlistCount() const {
    return core_->tabs.size();
}

const Playlist& PlayerController::playlistAt(qsizetype index) const {
    return core_->tabs.at(index).playlist();
}

std::optional<qsizetype> PlayerController::playlistIndex(const std::optional<QUuid>& id) const {
    return core_->tabs.indexOf(id);
}

const Playlist* PlayerController::findPlaylist(const std::optional<QUuid>& id) const {
    const TrackList* const list = core_->tabs.find(id);
    return list ? &list->playlist() : nullptr;
}

const QUuid& PlayerController::activePlaylistID() const {
    return core_->tabs.activeId();
}

const Playlist& PlayerController::activePlaylist() const {
    return core_->tabs.active().playlist();
}

std::optional<qsizetype> PlayerController::rowOf(const QUuid& track, const QUuid& playlist) const {
    const TrackList* const list = core_->tabs.find(playlist);
    return list ? list->rowOf(track) : std::nullopt;
}

const AppSettings& PlayerController::settings() const {
    return core_->settings;
}

const PlaybackState& PlayerController::playback() const {
    return core_->state;
}

std::optional<QUuid> PlayerController::playingPlaylistID() const {
    return core_->playback.playingPlaylist();
}

std::optional<QUuid> PlayerController::playingTrackID() const {
    return core_->playback.playingTrack();
}

std::optional<QUuid> PlayerController::plannedNextID() const {
    return core_->playback.plannedNext();
}

const Track* PlayerController::playingTrack() const {
    return playingTrackID() ? &core_->playing : nullptr;
}

bool PlayerController::canPlayNext() const {
    return core_->playback.canPlayNext();
}

bool PlayerController::canPlayPrevious() const {
    return core_->playback.canPlayPrevious();
}

const IdSet& PlayerController::selection() const {
    return core_->selection.ids();
}

const QString& PlayerController::searchText() const {
    return core_->searchText;
}

const VisibleRows& PlayerController::visibleTracks() const {
    return core_->visibleRows();
}

bool PlayerController::removalUndoAvailable() const {
    return !core_->removals.isEmpty();
}

bool PlayerController::closedPlaylistUndoAvailable() const {
    return core_->tabs.newestClosed() != nullptr;
}

bool PlayerController::renameUndoAvailable() const {
    return core_->tabs.newestRename() != nullptr;
}

QString PlayerController::closedPlaylistName() const {
    const Playlist* const closed = core_->tabs.newestClosed();
    return closed ? closed->name : QString();
}

QString PlayerController::renamedPlaylistName() const {
    const PlaylistTabs::Rename* const rename = core_->tabs.newestRename();
    return rename ? rename->previousName : QString();
}

QString PlayerController::notice() const {
    return core_->engine->outputNotice();
}

std::optional<Activity> PlayerController::activity() const {
    using Kind = Activity::Kind;
    if (core_->import.isRunning())
        return Activity{Kind::Collecting, core_->import.foundSoFar(), 0};
    if (core_->loader.isRunning())
        return Activity{Kind::ReadingTags, core_->loader.filesRead(), core_->loader.filesInAll()};
    if (const auto asked = qsizetype(core_->analyses.asked()))
        return Activity{Kind::Analysing, 0, asked};
    return std::nullopt;
}

QList<OutputDevice> PlayerController::outputDevices() const {
    return core_->engine->outputDevices();
}

bool PlayerController::fullscreenActive() const {
    return core_->isFullScreen;
}

// --- Transport -----------------------------------------------------------------------------------

void PlayerController::play(const QUuid& trackID, const QUuid& playlistID) {
    const Core::Operation operation(*core_);
    core_->playback.play(trackID, playlistID);
}

void PlayerController::togglePlay() {
    const Core::Operation operation(*core_);
    const TrackList& shown = core_->tabs.active();
    const std::vector<qsizetype> selected = shown.rowsOf(core_->selection.ids().ids());
    const auto topmost =
        selected.empty() ? std::nullopt : std::optional(shown.tracks().at(selected.front()).id);
    const bool isLoaded = core_->playback.playingTrack() || core_->playback.isChanging();
    if (const auto track = planPlayButton(shown, topmost, core_->playback.playingTrack(), isLoaded))
        core_->playback.play(*track, shown.id());
    else if (isLoaded)
        pauseToggle();
}

void PlayerController::playPause() {
    if (core_->playback.isPlaying())
        pause();
    else
        togglePlay();
}

void PlayerController::pauseToggle() {
    if (core_->playback.isPlaying()) {
        pause();
        return;
    }
    const Core::Operation operation(*core_);
    core_->playback.resume();
}

void PlayerController::pause() {
    const Core::Operation operation(*core_);
    core_->playback.pause();
    if (core_->playback.playingTrack())
        core_->keepResumePoint();
}

void PlayerController::stop() {
    const Core::Operation operation(*core_);
    core_->playback.stop();
}

void PlayerController::nextTrack(bool automatic) {
    const Core::Operation operation(*core_);
    if (automatic)
        core_->playback.trackEnded();
    else
        core_->playback.next();
}

void PlayerController::prevTrack() {
    const Core::Operation operation(*core_);
    core_->playback.previous();
}

void PlayerController::restartTrack() {
    const Core::Operation operation(*core_);
    core_->playback.seek(0);
    core_->forgetResumePoint();
    core_->saver.changed();
}

void PlayerController::seek(double time) {
    const Core::Operation operation(*core_);
    if (!core_->playback.playingTrack())
        return;
    core_->playback.seek(time);
    core_->keepResumePoint();
}

bool PlayerController::handleKey(Qt::Key key, Qt::KeyboardModifiers modifiers, FocusContext focus) {
    const Core::Operation operation(*core_);
    const KeyAction action = actionOfKey(key, modifiers, focus, core_->state.isLoaded());
    switch (action.kind) {
    case KeyAction::Kind::PassOn:
        return false;
    case KeyAction::Kind::SelectAll:
        selectAll();
        break;
    case KeyAction::Kind::Seek:
        seek(positionAfter(action, core_->engine->currentTime(), core_->engine->duration()));
        core_->changes.nudges.push_back(KeyNudge::Seek);
        break;
    case KeyAction::Kind::Volume:
        setVolume(volumeAfter(action, core_->settings.volume));
        core_->changes.nudges.push_back(KeyNudge::Volume);
        break;
    }
    return true;
}

} // namespace quorel
