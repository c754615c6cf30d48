#include "tools/quorel-cli/PlaySession.h"

#include "model/Path.h"
#include "model/Track.h"
#include "tools/quorel-cli/Console.h"

namespace quorel::cli {

namespace {

/// After this much of a track, in seconds, going back means its own beginning.
constexpr double kRestartSeconds = 3;

QString titleOf(const std::string& path) {
    const Track track = Track::fromPath(pathFromBytes(QByteArrayView(path)));
    return printable(track.artist.isEmpty() ? track.title
                                            : track.artist + QStringLiteral(" - ") + track.title);
}

} // namespace

PlaySession::PlaySession(Clock& clock, std::unique_ptr<Output> output,
                         std::vector<std::string> paths, PlayView& view,
                         std::function<void(bool)> finished)
    : paths_(std::move(paths))
    , view_(view)
    , finished_(std::move(finished))
    , engine_(clock, std::move(output), SourceWorker::Mode::Threaded)
    , opener_(clock) {
    engine_.onNeedPreload = [this] { preload(); };
    engine_.onGaplessPromotion = [this](QUuid) { promoted(); };
    engine_.onQueueDiscarded = [this] { queued_.reset(); };
    engine_.onTrackEnded = [this] { trackEnded(); };
    engine_.onStateChanged = [this] { show(); };
    engine_.onOutputNotice = [this] { showNotice(); };
}

void PlaySession::start(const QString& uid) {
    engine_.onOutputDevicesChanged = [this, uid] { checkDevice(uid); };
    engine_.openOutput(uid);
    want(playableFrom(0, 1), 1);
}

void PlaySession::togglePause() {
    if (ended_) {
        return;
    }
    paused_ = engine_.isPlaying();
    if (paused_) {
        engine_.pause(0);
    } else {
        engine_.resume(0);
    }
}

void PlaySession::next() {
    want(playableFrom(wanted_.value_or(current_) + 1, 1), 1);
}

void PlaySession::previous() {
    const auto before = playableFrom(wanted_.value_or(current_) - 1, -1);
    if (before && (wanted_ || engine_.currentTime() < kRestartSeconds)) {
        want(before, -1);
    } else if (!ended_) {
        engine_.seek(0);
    }
}

void PlaySession::seekBy(double seconds) {
    if (!ended_) {
        engine_.seek(engine_.currentTime() + seconds);
    }
}

// --- Tracks --------------------------------------------------------------------------------------

std::optional<int> PlaySession::playableFrom(int index, int step) const {
    while (index >= 0 && index < static_cast<int>(paths_.size())) {
        if (!unplayable_.contains(index)) {
            return index;
        }
        index += step;
    }
    return std::nullopt;
}

// What plays goes on until the wanted track is open.
void PlaySession::want(std::optional<int> index, int step) {
    if (!index) {
        if (ended_) {
            finished_(played_);
        }
        return;
    }
    wanted_ = index;
    step_ = step;
    prepare(*index);
    if (prepared_->file) {
        begin();
    }
}

void PlaySession::prepare(int index) {
    if (prepared_ && prepared_->index == index) {
        return;
    }
    prepared_ = Prepared{index, nullptr};
    opener_.open(paths_[static_cast<std::size_t>(index)],
                 [this, index](const OpenedTrack& track) { opened(index, track); });
}

void PlaySession::opened(int index, const OpenedTrack& track) {
    if (!prepared_ || prepared_->index != index) {
        return; // another one is wanted by now
    }
    if (!track.file) {
        giveUp(index, track.error);
        return;
    }
    prepared_->file = track.file;
    if (wanted_ == index) {
        begin();
    } else {
        queuePrepared();
    }
}

void PlaySession::giveUp(int index, const QString& error) {
    view_.problem(aboutFile(paths_[static_cast<std::size_t>(index)], error));
    unplayable_.insert(index);
    prepared_.reset();
    if (wanted_ == index) {
        wanted_.reset();
        want(playableFrom(index + step_, step_), step_);
    }
}

void PlaySession::begin() {
    current_ = *std::exchange(wanted_, std::nullopt);
    const auto file = std::exchange(prepared_, std::nullopt)->file;
    queued_.reset();
    ended_ = true; // nothing to show until it is known what plays
    const auto error = engine_.load(wholeFile(file), 0);
    ended_ = error.has_value();
    if (error) {
        wanted_ = current_;
        giveUp(current_, error->description);
        return;
    }
    announce();
}

void PlaySession::announce() {
    paused_ = false;
    played_ = true;
    view_.trackStarted(titleOf(paths_[static_cast<std::size_t>(current_)]), engine_.duration());
    show();
}

// --- What the engine tells -----------------------------------------------------------------------

void PlaySession::preload() {
    const auto next = playableFrom(current_ + 1, 1);
    if (next && !wanted_) {
        prepare(*next);
        queuePrepared();
    }
}

// The file stays prepared, for a seek takes it from the engine's queue again.
void PlaySession::queuePrepared() {
    if (prepared_ && prepared_->file && prepared_->index == current_ + 1 &&
        engine_.preloadNext(wholeFile(prepared_->file))) {
        queued_ = prepared_->index;
    }
}

void PlaySession::promoted() {
    current_ = *std::exchange(queued_, std::nullopt);
    if (prepared_ && prepared_->index == current_) {
        prepared_.reset();
    }
    announce();
}

void PlaySession::trackEnded() {
    ended_ = true;
    if (!wanted_) {
        want(playableFrom(current_ + 1, 1), 1);
    }
}

void PlaySession::showNotice() {
    const QString& notice = engine_.outputNotice();
    if (notice == toldNotice_ || notice.isEmpty()) {
        return;
    }
    if (toldNotice_.isEmpty() && !engine_.isOutputOpen()) {
        view_.problem(notice);
        view_.problem(QStringLiteral("Waiting for a sound server... "
                                     "(use --output null to play without sound)"));
    } else {
        view_.problem(notice);
    }
    toldNotice_ = notice;
}

// The engine plays on the default while the wanted device is absent.
void PlaySession::checkDevice(const QString& uid) {
    if (deviceChecked_ || uid.isEmpty()) {
        return;
    }
    deviceChecked_ = true;
    const auto devices = engine_.outputDevices();
    const auto isWanted = [&](const OutputDevice& device) { return device.uid == uid; };
    if (std::none_of(devices.begin(), devices.end(), isWanted)) {
        view_.problem(QStringLiteral("There is no device \"%1\" (see quorel-cli devices); "
                                     "the default serves until it appears.")
                          .arg(uid));
    }
}

void PlaySession::show() {
    if (ended_) {
        return;
    }
    const bool waiting = !engine_.isOutputOpen() || !engine_.outputNotice().isEmpty();
    const char* state = paused_ ? "Paused" : waiting ? "Waiting" : "Playing";
    view_.show({state, engine_.currentTime(), engine_.duration()});
}

} // namespace quorel::cli
