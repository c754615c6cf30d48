#include "tools/quorel-cli/TrackRun.h"

#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/OpenTrack.h"

namespace quorel::cli {

TrackRun::TrackRun(OfflineRenderer& renderer, const std::vector<std::string>& paths, int fadeInMs)
    : renderer_(renderer)
    , engine_(renderer.engine())
    , fadeInMs_(fadeInMs) {
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

std::shared_ptr<AudioFile> TrackRun::openNext() {
    while (!nextFile_ && next_ < tracks_.size()) {
        OpenedTrack opened = openTrack(tracks_[next_].path);
        if (opened.file) {
            nextFile_ = std::move(opened.file);
        } else {
            giveUp(opened.error);
        }
    }
    return nextFile_;
}

void TrackRun::giveUp(const QString& error) {
    printProblem(aboutFile(tracks_[next_].path, error));
    tracks_[next_++].error = error;
    nextFile_.reset();
}

void TrackRun::playNext() {
    while (const auto file = openNext()) {
        if (const auto error = engine_.load(wholeFile(file), fadeInMs_)) {
            giveUp(error->description);
            continue;
        }
        tracks_[next_].start = renderer_.position();
        playing_ = next_++;
        nextFile_.reset();
        return;
    }
    finished_ = true;
}

void TrackRun::preload() {
    if (const auto file = openNext()) {
        engine_.preloadNext(wholeFile(file));
    }
}

void TrackRun::promoted() {
    tracks_[*playing_].end = heard();
    playing_ = next_++;
    nextFile_.reset();
    tracks_[*playing_].start = heard();
    tracks_[*playing_].gapless = true;
}

void TrackRun::trackEnded() {
    end_ = heard();
    tracks_[*playing_].end = end_;
    playNext();
}

} // namespace quorel::cli
