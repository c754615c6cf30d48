// What follows the playing track: opened and queued ahead, and looked at again after every change.
#include "player/Playback.h"

namespace quorel {

void Playback::trackEnded() {
    if (change_)
        return; // the user's wish comes first
    if (const TrackList* const list = listToGoOnIn())
        carryOut(planNext(context(list), true), *list, false);
    else
        stop();
}

void Playback::gaplessPromotion(const QUuid& track) {
    order_.confirm();
    queued_.reset();
    plannedNext_.reset();
    playingTrack_ = track;
    if (!change_)
        cursor_ = track;
    orphanNextIndex_.reset();
    failed_.clear();
    refused_.reset();
    events_.trackStarted();
}

void Playback::preloadNextIfPossible() {
    if (!at_.engine.gaplessEnabled || change_ || queued_ || !playingTrack_)
        return;
    const TrackList* const list = at_.tabs.find(playingPlaylist_);
    const auto track = list ? planFollowing(context(list)) : std::nullopt;
    const auto row = track ? list->rowOf(*track) : std::nullopt;
    if (!row || refused_ == track)
        return;
    const Track& record = list->tracks().at(*row);
    if (!prepared_ || prepared_->track != *track)
        prepare(record);
    else if (prepared_->opened)
        queue(record, *list);
}

void Playback::prepare(const Track& track) {
    dropPrepared();
    prepared_ = Prepared{track.id};
    prepared_->opening = at_.files.post(
        SerialQueue::Priority::Urgent,
        [open = open_, wanted = toOpen(track, TrackToOpen::Trim::Whole)](const std::stop_token&) {
            return open(wanted);
        },
        [this](OpenedTrack opened) {
            prepared_->opened = std::move(opened);
            events_.asOne([this] { preloadNextIfPossible(); });
        });
}

void Playback::dropPrepared() {
    if (prepared_)
        prepared_->opening.request_stop();
    prepared_.reset();
}

void Playback::queue(const Track& track, const TrackList& list) {
    const TrackToPlay next = toPlay(track, list, *prepared_->opened);
    if (!next.file) {
        failed_.insert(track.id);
        dropPrepared();
        preloadNextIfPossible();
        events_.changed();
        return;
    }
    if (!at_.engine.preloadNext(next)) {
        refused_ = track.id; // it stays open for the change that comes instead
        return;
    }
    prepared_.reset();
    queued_ = track.id;
    // A track that repeats is not planned, so that the user's Next leads on.
    if (at_.settings.pbMode != PlaybackMode::One) {
        plannedNext_ = track.id;
        if (at_.settings.shuffle)
            order_.takeQueued(track.id, list, cursor_);
    }
    events_.changed();
}

void Playback::queueDiscarded() {
    forgetQueued();
    events_.changed();
}

/// The engine holds no queued track any more, or is about to let it go.
void Playback::forgetQueued() {
    order_.rollBack();
    queued_.reset();
    plannedNext_.reset();
}

void Playback::replan() {
    refused_.reset();
    if (!queued_)
        return;
    const QUuid queued = *queued_;
    const TrackList* const list = at_.tabs.find(playingPlaylist_);
    forgetQueued();
    if (!list || !at_.engine.gaplessEnabled || planFollowing(context(list)) != queued) {
        at_.engine.discardQueued();
        return;
    }
    queued_ = queued;
    if (at_.settings.pbMode != PlaybackMode::One) {
        plannedNext_ = queued;
        if (at_.settings.shuffle)
            order_.takeQueued(queued, *list, cursor_);
    }
}

void Playback::replanTrims() {
    dropPrepared();
    refused_.reset();
    if (queued_)
        at_.engine.discardQueued();
}

void Playback::reshuffle() {
    forgetQueued();
    if (const TrackList* const list = listToGoOnIn())
        order_.start(*list, cursor_);
    at_.engine.discardQueued();
}

// --- The library's -------------------------------------------------------------------------------

std::optional<qsizetype> Playback::cursorRow() const {
    const TrackList* const list = listToGoOnIn();
    return list && cursor_ ? list->rowOf(*cursor_) : std::nullopt;
}

void Playback::edited(const TrackList& list, const TracksEdit& edit,
                      std::optional<qsizetype> cursorRow) {
    if (change_ && playingPlaylist_ == list.id())
        at_.engine.discardQueued(); // planned before the change, and it may be gone now
    if (&list != listToGoOnIn() || !cursor_)
        return;
    orphanNextIndex_ =
        list.contains(*cursor_) ? std::nullopt : orphanNextAfter(edit, cursorRow, orphanNextIndex_);
    replan();
}

void Playback::tracksAdded(const std::vector<QUuid>& tracks, const QUuid& playlist) {
    order_.insert(tracks, playlist);
}

void Playback::aboutToEmpty(const QUuid& playlist) {
    if (playingPlaylist_ == playlist || (change_ && change_->playlist == playlist))
        stop();
}

void Playback::aboutToClose(const QUuid& playlist) {
    aboutToEmpty(playlist);
    if (playingPlaylist_ == playlist) {
        playingPlaylist_.reset();
        cursor_.reset();
        orphanNextIndex_.reset();
    }
}

} // namespace quorel
