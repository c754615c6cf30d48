#include "player/PlayerCore.h"

#include "audio/PlaybackSettings.h"
#include "model/Path.h"

#include <QRandomGenerator>
#include <algorithm>

namespace quorel {

using namespace std::chrono_literals;

namespace {

constexpr auto kResumeInterval = 5s;
/// What played that long does not crash the program.
constexpr auto kProven = 3s;

std::function<quint64()> orSystems(std::function<quint64()> random) {
    return random ? std::move(random) : [] { return QRandomGenerator::system()->generate64(); };
}

} // namespace

PlayerController::Core::Core(PlayerController& owner, Parts parts)
    : controller(owner)
    , clock(parts.clock)
    , engine(std::move(parts.engine))
    , outputOverride(std::move(parts.output))
    , store(parts.stateFile)
    , resumeMark(pathToBytes(parts.stateFile) + ".resuming")
    , files(parts.queues, clock, "files")
    , collecting(parts.queues, clock, "collecting")
    , analysis(parts.queues, clock, "analysis")
    , writer(parts.queues, clock, "writer")
    , tabs(load())
    , playback({clock, files, *engine, tabs, settings}, std::move(parts.open),
               orSystems(std::move(parts.random)),
               {.changed = [this] { playbackChanged(); },
                .trackStarted = [this] { trackStarted(); },
                .jumped =
                    [this] {
                        const Operation operation(*this);
                        changes.jumped = true;
                        publishPosition();
                    },
                .asOne =
                    [this](const auto& step) {
                        const Operation operation(*this);
                        step();
                    }})
    , saver(clock, writer, store,
            {.snapshot = [this] { return snapshot(); }, .ended = [this] { saved(); }})
    , loader(files, tabs,
             {.mayApply = [this] { return !saver.isUnderWay(); },
              .applied = [this](const auto& applied) { readingsApplied(applied); },
              .progressed =
                  [this] {
                      const Operation operation(*this);
                      changes.activity = true;
                  }})
    , import(collecting, clock,
             {.found = [this](FileImport::Found found) { land(std::move(found)); },
              .progressed =
                  [this] {
                      const Operation operation(*this);
                      changes.activity = true;
                  }})
    , analyses(analysis, {.measured =
                              [this](const auto& result) {
                                  measured.push_back(result);
                                  if (!saver.isUnderWay())
                                      takeMeasured();
                              },
                          .progressed =
                              [this] {
                                  const Operation operation(*this);
                                  changes.activity = true;
                              }})
    , resumeTimer(clock.startTimer(kResumeInterval, Clock::Repeat::Always, [this] {
        if (playback.isPlaying())
            keepResumePoint();
    })) {
    applySettings(*engine, settings);
    connectEngine();
}

/// The state of the last session, all but the tabs put into place; a fresh one without it.
PlaylistTabs PlayerController::Core::load() {
    PersistedState loaded = store.load().value_or(PersistedState());
    settings = std::move(loaded.settings);
    resumePlaylistID = loaded.resumePlaylistID;
    resumeTrackID = loaded.resumeTrackID;
    resumePosition = loaded.resumePosition;
    return {std::move(loaded.playlists), loaded.activePlaylistID};
}

PersistedState PlayerController::Core::snapshot() const {
    return {tabs.records(),   tabs.activeId(), settings,
            resumePlaylistID, resumeTrackID,   resumePosition};
}

// --- Telling -------------------------------------------------------------------------------------

void PlayerController::Core::tell() {
    if (isTelling)
        return;
    isTelling = true;
    const PlayerChanges told = std::exchange(changes, {});
    tellOf(told);
    isTelling = false;
}

void PlayerController::Core::tellOf(const PlayerChanges& told) {
    const auto tellIf = [this](bool changed, auto signal) {
        if (changed)
            (controller.*signal)();
    };
    tellIf(told.playlists, &PlayerController::playlistsEdited);
    tellIf(told.activePlaylist, &PlayerController::activePlaylistChanged);
    for (const auto& [playlist, edit] : told.edits)
        controller.tracksEdited(playlist, edit);
    for (const auto& [playlist, rows] : told.data)
        controller.trackDataChanged(playlist, rows);
    tellIf(told.searchText, &PlayerController::searchTextChanged);
    tellIf(told.selection, &PlayerController::selectionChanged);
    tellIf(told.playingTrack, &PlayerController::playingTrackChanged);
    tellIf(told.transport, &PlayerController::transportChanged);
    if (told.settings)
        controller.settingsChanged(told.settings);
    tellIf(told.undo, &PlayerController::undoChanged);
    tellIf(told.notice, &PlayerController::noticeChanged);
    tellIf(told.activity, &PlayerController::activityChanged);
    if (told.position)
        state.positionChanged();
    if (told.jumped)
        state.jumped();
    if (told.meters)
        state.metersChanged();
    for (const KeyNudge nudge : told.nudges)
        controller.keyNudge(nudge);
}

void PlayerController::Core::publishPosition() {
    const Operation operation(*this);
    const bool isPlaying = playback.isPlaying();
    const bool isLoaded = playback.playingTrack().has_value();
    changes.transport |= isPlaying != state.isPlaying_ || isLoaded != state.isLoaded_;
    changes.position = true;
    state.isPlaying_ = isPlaying;
    state.isLoaded_ = isLoaded;
    state.currentTime_ = isLoaded ? engine->currentTime() : 0;
    state.duration_ = isLoaded ? engine->duration() : 0;
}

// --- The engine ----------------------------------------------------------------------------------

void PlayerController::Core::connectEngine() {
    engine->onTrackEnded = [this] {
        const Operation operation(*this);
        playback.trackEnded();
    };
    engine->onGaplessPromotion = [this](const QUuid& track) {
        const Operation operation(*this);
        playback.gaplessPromotion(track);
    };
    engine->onNeedPreload = [this] {
        const Operation operation(*this);
        playback.preloadNextIfPossible();
    };
    engine->onQueueDiscarded = [this] {
        const Operation operation(*this);
        playback.queueDiscarded();
    };
    engine->onStateChanged = [this] { publishPosition(); };
    engine->onMetersChanged = [this] {
        const Operation operation(*this);
        state.meters_ = engine->meters();
        changes.meters = true;
    };
    engine->onOutputNotice = [this] {
        const Operation operation(*this);
        changes.notice = true;
    };
    engine->onOutputDevicesChanged = engine->onOutputNotice;
}

void PlayerController::Core::playbackChanged() {
    const Operation operation(*this);
    changes.transport = true;
    if (state.isLoaded_ && !playback.playingTrack()) {
        changes.playingTrack = true;
        forgetResumePoint();
        analyses.measure({});
        saver.changed();
    }
    publishPosition();
}

void PlayerController::Core::trackStarted() {
    const Operation operation(*this);
    if (const auto place = placeOf(*playback.playingTrack()))
        playing = place->list->tracks().at(place->row);
    forgetResumePoint();
    publishPosition();
    changes.playingTrack = true;
    changes.transport = true;
    changes.jumped = isResuming; // it begins elsewhere than at its beginning
    if (isResuming && !markTimer)
        markTimer = clock.startTimer(kProven, Clock::Repeat::Once, [this] { clearResumeMark(); });
    measure();
    saver.changed();
}

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

void PlayerController::Core::resume() {
    if (resumeMark.isSet()) {
        clearResumeMark(); // the track ended the program last time
        return;
    }
    if (!settings.resumeOnStartup || !resumePlaylistID || !resumeTrackID)
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

// --- Records -------------------------------------------------------------------------------------

std::optional<PlayerController::Core::Place> PlayerController::Core::placeOf(const QUuid& track) {
    for (qsizetype i = 0; i < tabs.size(); ++i)
        if (const auto row = tabs.at(i).rowOf(track))
            return Place{tabs.find(tabs.at(i).id()), *row};
    return std::nullopt;
}

const VisibleRows& PlayerController::Core::visibleRows() {
    if (!visible)
        visible = search.find(tabs.active(), searchText);
    return *visible;
}

void PlayerController::Core::tabSwitched() {
    changes.selection |= !selection.ids().isEmpty();
    selection.clear();
    search.reset();
    visible.reset();
    changes.activePlaylist = true;
    changes.transport = true; // what may follow while nothing plays
    saver.changed();
}

void PlayerController::Core::insertTracks(TrackList& list, qsizetype row, QList<Track> tracks) {
    if (tracks.isEmpty())
        return;
    const auto cursorRow = playback.cursorRow();
    const TracksEdit edit = list.insert(row, std::move(tracks));
    std::vector<QUuid> added;
    for (const RowRange& range : edit.ranges)
        for (qsizetype i = 0; i < range.count; ++i)
            added.push_back(list.tracks().at(range.first + i).id);
    playback.tracksAdded(added, list.id());
    listEdited(list, edit, cursorRow);
    loader.load();
}

QUuid PlayerController::Core::addTab(const QString& name, QList<Track> tracks) {
    const QUuid id = tabs.create(name.isEmpty() ? tabs.nextName() : name, std::move(tracks));
    changes.playlists = true;
    tabSwitched();
    if (!tabs.active().isEmpty())
        loader.load();
    return id;
}

void PlayerController::Core::listEdited(TrackList& list, const TracksEdit& edit,
                                        std::optional<qsizetype> cursorRow) {
    if (!edit)
        return;
    if (list.id() == tabs.activeId()) {
        search.rowsEdited(edit);
        visible.reset();
        if (edit.kind == TracksEdit::Kind::Removed)
            changes.selection |= selection.keepOnly(list);
    }
    playback.edited(list, edit, cursorRow);
    changes.transport = true; // what may follow
    changes.edits.push_back({list.id(), edit});
    saver.changed();
}

void PlayerController::Core::dataChanged(const TrackList& list, std::vector<RowRange> rows) {
    if (list.id() == tabs.activeId()) {
        search.tracksChanged(rows);
        if (!trimmedOfBlanks(searchText).isEmpty())
            visible.reset();
    }
    const auto playingRow =
        playback.playingTrack() ? list.rowOf(*playback.playingTrack()) : std::nullopt;
    const auto isPlaying = [&](const RowRange& range) {
        return *playingRow >= range.first && *playingRow < range.first + range.count;
    };
    if (playingRow && std::ranges::any_of(rows, isPlaying)) {
        playing = list.tracks().at(*playingRow);
        changes.playingTrack = true;
    }
    changes.data.push_back({list.id(), std::move(rows)});
}

/// What was collected goes where it was meant to, unless that is gone.
void PlayerController::Core::land(FileImport::Found found) {
    const Operation operation(*this);
    changes.activity = true;
    std::optional<std::pair<QUuid, QUuid>> first; // track and playlist
    for (Playlist& playlist : found.playlists) {
        const QUuid id = addTab(playlist.name, std::move(playlist.tracks));
        if (!first && !tabs.active().isEmpty())
            first = {tabs.active().tracks().front().id, id};
    }
    if (!found.tracks.isEmpty()) {
        const QUuid firstTrack = found.tracks.front().id;
        if (found.target.kind == ImportTarget::Kind::NewPlaylist) {
            first = {firstTrack, addTab(found.folderName, std::move(found.tracks))};
        } else if (TrackList* const list = tabs.find(found.target.playlist)) {
            const bool atEnd = found.target.kind == ImportTarget::Kind::Playlist;
            insertTracks(*list, atEnd ? list->size() : found.target.row, std::move(found.tracks));
            first = {firstTrack, list->id()};
        }
    }
    if (found.target.playFirst && first)
        playback.play(first->first, first->second);
}

} // namespace quorel
