// What goes on behind the records: where to resume, measuring, reading tags, saving.
#include "player/PlayerCore.h"

namespace quorel {

// --- Where to resume -----------------------------------------------------------------------------

void PlayerController::Core::keepResumePoint() {
    resumePlaylistID = playback.playingPlaylist();
    resumeTrackID = playback.playingTrack();
    resumePosition = resumeTrackID ? std::optional(engine->currentTime()) : std::nullopt;
    saver.changed();
}

void PlayerController::Core::forgetResumePoint() {
    resumePlaylistID.reset();
    resumeTrackID.reset();
    resumePosition.reset();
}

void PlayerController::Core::resume(bool wanted) {
    const bool hasEndedProgram = resumeMark.isSet(); // the track did, last time
    if (hasEndedProgram)
        clearResumeMark();
    if (hasEndedProgram || !wanted || !settings.resumeOnStartup || !resumePlaylistID ||
        !resumeTrackID)
        return;
    resumeMark.set();
    isResuming = true;
    playback.playFrom(*resumeTrackID, *resumePlaylistID, resumePosition.value_or(0));
}

void PlayerController::Core::clearResumeMark() {
    isResuming = false;
    writer.post(
        SerialQueue::Priority::Ordinary,
        [mark = resumeMark](const std::stop_token&) { mark.clear(); }, [] {});
}

// --- Background work -----------------------------------------------------------------------------

void PlayerController::Core::saved() {
    takeMeasured();
    loader.resume();
}

/// Has measured what is not known of the playing track and the one that follows.
void PlayerController::Core::measure() {
    std::vector<TrackAnalyses::Task> tasks;
    const auto add = [&](const std::optional<QUuid>& track, bool withTempo) {
        const auto place = track ? placeOf(*track) : std::nullopt;
        if (place)
            tasks.push_back(
                TrackAnalyses::missing(place->list->tracks().at(place->row), settings, withTempo));
    };
    add(playback.playingTrack(), true);
    add(playback.following(), false);
    analyses.measure(std::move(tasks));
}

void PlayerController::Core::takeMeasured() {
    if (saver.isUnderWay())
        return; // its end leads here again
    const Operation operation(*this);
    for (const TrackAnalyses::Result& result : std::exchange(measured, {})) {
        const auto place = placeOf(result.task.track);
        if (!place || place->list->tracks().at(place->row).path != result.task.path)
            continue;
        place->list->change(place->row, [&](Track& track) {
            if (result.trim) {
                track.trimStart = result.trim->start;
                track.trimEnd = result.trim->end;
            }
            if (result.levels) {
                track.peakLinear = result.levels->peak;
                track.rmsLinear = result.levels->rms;
            }
            if (result.bpm)
                track.bpm = qRound64(*result.bpm);
        });
        dataChanged(*place->list, {{place->row, 1}});
        saver.changed();
    }
}

void PlayerController::Core::readingsApplied(const MetadataScan::Applied& applied) {
    const Operation operation(*this);
    for (const auto& [playlist, rows] : applied.playlists)
        dataChanged(*tabs.find(playlist), rows);
    changes.activity = true;
    if (applied.scanEnded)
        saver.changed();
}

} // namespace quorel
