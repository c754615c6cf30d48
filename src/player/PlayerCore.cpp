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

PlayerController::Core::Core(PlayerController& owner, PlayerParts parts)
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
    , tabs(load(parts))
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
                                  takeMeasured();
                              },
                          .answered =
                              [this](const TrackAnalyses::Result& result) {
                                  const Operation operation(*this);
                                  changes.tempos.emplace_back(result.task.track, result.bpm);
                              },
                          .progressed =
                              [this] {
                                  const Operation operation(*this);
                                  changes.activity = true;
                              }})
    , resumeTimer(clock.startTimer(kResumeInterval, Clock::Repeat::Always, [this] {
        // Each time the whole state is written: not where nobody will ask for it.
        if (playback.isPlaying() && settings.resumeOnStartup)
            keepResumePoint();
    })) {
    applySettings(*engine, settings);
    connectEngine();
}

/// The state of the last session, all but the tabs put into place; a fresh one without it.
PlaylistTabs PlayerController::Core::load(PlayerParts& parts) {
    LoadedState begun =
        parts.loading.valid() ? parts.loading.get() : LoadedState::of(parts.stateFile);
    store = std::move(begun.file);
    PersistedState loaded = std::move(begun.state).value_or(PersistedState());
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
    for (const auto& [track, bpm] : told.tempos) {
        if (const auto place = placeOf(track))
            controller.tempoMeasured(place->list->tracks().at(place->row), bpm);
    }
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

} // namespace quorel
