#include "tools/quorel-cli/TrackRun.h"

#include "audio/PlaybackSettings.h"
#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/OpenTrack.h"

namespace quorel::cli {

TrackRun::TrackRun(OfflineRenderer& renderer, const std::vector<std::string>& paths,
                   const AppSettings& settings)
    : renderer_(renderer)
    , engine_(renderer.engine())
    , settings_(settings) {
    for (const std::string& path : paths) {
        tracks_.push_back({.path = path, .error = {}});
    }
    engine_.onNeedPreload = [this] { preload(); };
    engine_.onGaplessPromotion = [this](QUuid) { promoted(); };
    engine_.onTrackEnded = [this] { trackEnded(); };
}

TrackRun::~TrackRun() {
    engine_.onNeedPreload = {};
    engine_.onGaplessPromotion = {};
    engine_.onTrackEnded = {};
}

// Null when there is none left.
const TrackToPlay* TrackRun::openNext() {
    while (!nextTrack_ && next_ < tracks_.size()) {
        OpenedTrack opened = openTrack(tracks_[next_].path);
        if (opened.file) {
            const TrackMeasures measures = measureFor(settings_, *opened.file);
            nextTrack_ = trackToPlay(settings_, std::move(opened.file), measures);
        } else {
            giveUp(opened.error);
        }
    }
    return nextTrack_ ? &*nextTrack_ : nullptr;
}

void TrackRun::giveUp(const QString& error) {
    printProblem(aboutFile(tracks_[next_].path, error));
    tracks_[next_++].error = error;
    nextTrack_.reset();
}

void TrackRun::playNext() {
    const int fadeInMs = fadeLengthMs(settings_.fadePlayOn, settings_.fadePlayMs);
    while (const TrackToPlay* track = openNext()) {
        if (const auto error = engine_.load(*track, fadeInMs)) {
            giveUp(error->description);
            continue;
        }
        tracks_[next_].start = renderer_.position();
        playing_ = next_++;
        nextTrack_.reset();
        return;
    }
    finished_ = true;
}

void TrackRun::preload() {
    if (const TrackToPlay* track = openNext()) {
        engine_.preloadNext(*track);
    }
}

void TrackRun::promoted() {
    tracks_[*playing_].end = heard();
    playing_ = next_++;
    nextTrack_.reset();
    tracks_[*playing_].start = heard();
    tracks_[*playing_].gapless = true;
}

void TrackRun::trackEnded() {
    end_ = heard();
    tracks_[*playing_].end = end_;
    playNext();
}

} // namespace quorel::cli
