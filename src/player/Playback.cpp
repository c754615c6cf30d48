#include "player/Playback.h"

#include "audio/PlaybackSettings.h"
#include "player/StartGain.h"

#include <algorithm>
#include <utility>

namespace quorel {

using namespace std::chrono_literals;

namespace {

/// Key presses that come faster than this open one file: the last one's.
constexpr auto kSettle = 20ms;
/// Lets the last step of a fade be heard.
constexpr auto kAfterFade = 20ms;

} // namespace

Playback::Playback(Surroundings surroundings, TrackOpener open, ShuffleOrder::Random random,
                   Events events)
    : at_(surroundings)
    , open_(std::move(open))
    , events_(std::move(events))
    , order_(std::move(random)) {}

// --- Decisions -----------------------------------------------------------------------------------

TransportContext Playback::context(const TrackList* list) const {
    return {.mode = at_.settings.pbMode,
            .shuffle = at_.settings.shuffle,
            .list = list,
            .cursor = cursor_,
            .planned = plannedNext_,
            .orphanNext = orphanNextIndex_,
            .order = order_,
            .failed = failed_};
}

const TrackList* Playback::listToGoOnIn() const {
    if (change_)
        return at_.tabs.find(change_->playlist);
    return at_.tabs.find(playingPlaylist_ ? playingPlaylist_ : at_.tabs.activeId());
}

bool Playback::canPlayNext() const {
    return planNext(context(listToGoOnIn()), false).action == TransportStep::Action::Play;
}

bool Playback::canPlayPrevious() const {
    return planPrevious(context(listToGoOnIn()), 0).action == TransportStep::Action::Play;
}

std::optional<QUuid> Playback::following() const {
    const TrackList* const list = at_.tabs.find(playingPlaylist_);
    if (!list || !playingTrack_ || change_)
        return std::nullopt;
    return queued_ ? queued_ : planFollowing(context(list));
}

// --- The user's ----------------------------------------------------------------------------------

void Playback::play(const QUuid& track, const QUuid& playlist) {
    const TrackList* const list = at_.tabs.find(playlist);
    if (!list || !list->contains(track))
        return;
    forgetQueued();
    failed_.clear();
    if (at_.settings.shuffle)
        order_.start(*list, track);
    begin({track, playlist}, true, 0ms);
}

void Playback::playFrom(const QUuid& track, const QUuid& playlist, double position) {
    const TrackList* const list = at_.tabs.find(playlist);
    if (!list || !list->contains(track))
        return;
    if (at_.settings.shuffle)
        order_.start(*list, track);
    begin({.track = track, .playlist = playlist, .startAt = position, .onlyThis = true}, false,
          0ms);
}

void Playback::pause() {
    if (change_)
        change_->paused = true;
    if (playingTrack_ && isPlaying_) {
        isPlaying_ = false;
        at_.engine.pause(fadeLengthMs(at_.settings.fadePauseOn, at_.settings.fadePauseMs));
    }
    events_.changed();
}

void Playback::resume() {
    if (change_)
        change_->paused = false;
    if (playingTrack_ && !isPlaying_) {
        isPlaying_ = true;
        at_.engine.resume(fadeLengthMs(at_.settings.fadePauseOn, at_.settings.fadePauseMs));
    }
    events_.changed();
}

void Playback::stop() {
    stopNow();
    events_.changed();
}

void Playback::stopNow() {
    dropChange();
    dropPrepared();
    at_.engine.stop(fadeLengthMs(at_.settings.fadeStopOn, at_.settings.fadeStopMs));
    forgetQueued();
    failed_.clear();
    playingTrack_.reset();
    isPlaying_ = false;
}

void Playback::next() {
    if (const TrackList* const list = listToGoOnIn())
        carryOut(planNext(context(list), false), *list, true);
}

void Playback::previous() {
    const TrackList* const list = listToGoOnIn();
    const double position = change_ ? 0 : at_.engine.currentTime();
    carryOut(planPrevious(context(list), position), list ? *list : at_.tabs.active(), true);
}

void Playback::seek(double time) {
    at_.engine.seek(time);
    events_.jumped();
}

void Playback::carryOut(const TransportStep& step, const TrackList& list, bool byUser) {
    switch (step.action) {
    case TransportStep::Action::Nothing:
        break;
    case TransportStep::Action::Stop:
        stop();
        break;
    case TransportStep::Action::SeekToStart:
        seek(0);
        break;
    case TransportStep::Action::Play:
        if (step.order == TransportStep::Order::Takes)
            order_.take(step.track, list, cursor_);
        else if (step.order == TransportStep::Order::GoesBack)
            order_.goBack(step.track);
        begin({step.track, list.id()}, byUser, byUser ? Clock::Duration(kSettle) : 0ns);
        break;
    }
}

// --- Changing to another track -------------------------------------------------------------------

void Playback::begin(Change change, bool byUser, Clock::Duration wait) {
    dropChange();
    forgetQueued();
    cursor_ = change.track;
    orphanNextIndex_.reset();
    const int fadeMs = fadeLengthMs(at_.settings.fadeChangeOn, at_.settings.fadeChangeMs);
    if (byUser && fadeMs > 0 && playingTrack_ && isPlaying_ && at_.engine.isPlaying() &&
        notBefore_ <= at_.clock.now()) {
        at_.engine.stop(fadeMs);
        notBefore_ = at_.clock.now() + std::chrono::milliseconds(fadeMs) + kAfterFade;
    }
    change_ = std::move(change);
    if (prepared_ && prepared_->track == change_->track && prepared_->opened) {
        change_->opened = std::move(prepared_->opened);
        prepared_.reset();
        finishChange();
        return;
    }
    if (wait > 0ns)
        changeTimer_ = at_.clock.startTimer(wait, Clock::Repeat::Once,
                                            [this] { events_.asOne([this] { openChange(); }); });
    else
        openChange();
    events_.changed(); // what may follow is seen from the new track on
}

void Playback::openChange() {
    changeTimer_.reset();
    const TrackList* const list = at_.tabs.find(change_->playlist);
    const auto row = list ? list->rowOf(change_->track) : std::nullopt;
    if (!row) {
        abandonChange();
        return;
    }
    change_->opening = at_.files.post(
        SerialQueue::Priority::Urgent,
        [open = open_, wanted = toOpen(list->tracks().at(*row), TrackToOpen::Trim::Head)](
            const std::stop_token&) { return open(wanted); },
        [this](OpenedTrack opened) {
            change_->opened = std::move(opened);
            events_.asOne([this] { finishChange(); });
        });
}

void Playback::finishChange() {
    if (const auto left = notBefore_ - at_.clock.now(); left > 0ns) {
        changeTimer_ = at_.clock.startTimer(left, Clock::Repeat::Once,
                                            [this] { events_.asOne([this] { finishChange(); }); });
        return;
    }
    const TrackList* const list = at_.tabs.find(change_->playlist);
    const auto row = list ? list->rowOf(change_->track) : std::nullopt;
    if (!row) {
        abandonChange();
        return;
    }
    const Change change = *std::exchange(change_, std::nullopt);
    changeTimer_.reset();
    TrackToPlay track = toPlay(list->tracks().at(*row), *list, *change.opened);
    track.startAt = change.startAt;
    const int fadeMs = fadeLengthMs(at_.settings.fadePlayOn, at_.settings.fadePlayMs);
    if (!track.file || at_.engine.load(track, fadeMs)) {
        failed(change);
        return;
    }
    playingTrack_ = change.track;
    playingPlaylist_ = change.playlist;
    isPlaying_ = !change.paused;
    if (change.paused)
        at_.engine.pause(0);
    failed_.clear();
    refused_.reset();
    dropPrepared();
    events_.trackStarted();
}

// The failed track is the cursor, so that nothing leads to it again before another one has played.
void Playback::failed(const Change& change) {
    failed_.insert(change.track);
    const TrackList* const list = at_.tabs.find(change.playlist);
    const TransportStep step = planNext(context(list), true);
    if (!change.onlyThis && step.action == TransportStep::Action::Play) {
        carryOut(step, *list, false);
        return;
    }
    stopNow();
    playingPlaylist_ = change.playlist; // where the user's Next goes on
    events_.changed();
}

// The track was removed meanwhile. The one before it goes on, unless it has been faded out.
void Playback::abandonChange() {
    dropChange();
    if (!at_.engine.isLoaded() || notBefore_ > at_.clock.now()) {
        stopNow();
    } else if (playingTrack_) {
        cursor_ = playingTrack_;
        orphanNextIndex_.reset();
        at_.engine.discardQueued(); // planned before the change
    }
    events_.changed();
}

void Playback::dropChange() {
    changeTimer_.reset();
    if (change_)
        change_->opening.request_stop();
    change_.reset();
}

TrackToOpen Playback::toOpen(const Track& track, TrackToOpen::Trim unknown) const {
    const bool isKnown = track.trimStart && track.trimEnd;
    return {track.path, at_.settings, isKnown ? TrackToOpen::Trim::Known : unknown};
}

TrackToPlay Playback::toPlay(const Track& track, const TrackList& list,
                             const OpenedTrack& opened) const {
    TrackMeasures measures;
    measures.trim = opened.trim;
    if (track.trimStart && track.trimEnd)
        measures.trim = Trim{*track.trimStart, *track.trimEnd};
    TrackToPlay play;
    if (opened.file)
        play = trackToPlay(at_.settings, opened.file, measures);
    play.trackID = track.id;
    play.normGain = startGain(at_.settings, track, list);
    return play;
}

} // namespace quorel
