#include "audio/AudioEngine.h"

#include "audio/HeardClock.h"

#include <algorithm>
#include <cmath>

namespace quorel {

using namespace std::chrono_literals;

namespace {
constexpr auto kTickInterval = 200ms;
constexpr double kPreloadSeconds = 12.0;
constexpr double kSeekMargin = 0.05;
} // namespace

AudioEngine::AudioEngine(Clock& clock, std::unique_ptr<Output> output, SourceWorker::Mode mode)
    : EngineSound(clock)
    , clock_(clock)
    , output_(std::move(output))
    , fadeRamp_(clock)
    , timer_(clock.startTimer(kTickInterval, Clock::Repeat::Always, [this] { tick(); }))
    , worker_(mode, workerEvents()) {
    output_->attach(*this, *this);
}

// What the worker has to tell comes to the main thread, unless the engine is gone by then.
SourceWorker::Events AudioEngine::workerEvents() {
    const auto onMain = [this](auto member) {
        return [this, member, alive = std::weak_ptr(alive_)](auto... arguments) {
            clock_.post([this, member, alive, arguments...] {
                if (alive.lock()) {
                    (this->*member)(arguments...);
                }
            });
        };
    };
    return {.primed = onMain(&AudioEngine::runOutputWhenPrimed),
            .shortened = onMain(&AudioEngine::segmentShortened),
            .dropFailed = onMain(&AudioEngine::dropFailed)};
}

AudioEngine::~AudioEngine() {
    output_.reset(); // its thread renders from everything else here
}

std::optional<Error> AudioEngine::load(const TrackToPlay& track, int fadeInMs) {
    stopInternal();
    if (!track.file) {
        return Error{2, QStringLiteral("The file could not be opened.")};
    }
    auto segment = segmentOf(track);
    if (!segment) {
        return Error{1,
                     QStringLiteral("There is nothing to play between the track's trim points.")};
    }
    current_ = std::move(segment);
    queued_.reset();
    duration_ = static_cast<double>(current_->t1) / current_->sampleRate;
    const double start = static_cast<double>(current_->t0) / current_->sampleRate;
    currentTime_ = std::max(std::min(track.startAt, duration_ - kSeekMargin), start);
    isLoaded_ = true;
    scheduleCurrent(frameAt(currentTime_, current_->sampleRate).value_or(current_->t0));
    setNormGain(track.normGain, true);
    play(fadeInMs);
    return std::nullopt;
}

// Every earlier completion is stale from here on.
void AudioEngine::scheduleCurrent(int64_t frame) {
    currentCallbackID_ = ++callbackCounter_;
    validCallbackIDs_ = {currentCallbackID_};
    beginStream(frame);
}

// Begins a new stream at a frame of the current file, the queued track behind it.
void AudioEngine::beginStream(int64_t frame) {
    ++epoch_;
    heard_ = 0;
    framesBeforeCurrent_ = 0;
    segmentNumber_ = 0;
    segmentStartFrame_ = frame;
    nodeSecondsAtSegmentStart_ = 0;
    currentSegmentDur_ = static_cast<double>(current_->t1 - frame) / current_->sampleRate;
    completionTimer_.reset();
    parameters_.epoch = epoch_;
    if (stream_ == 0) {
        return; // begun when the output is open
    }
    constexpr int64_t kRingBytes = 4 << 20;
    constexpr int64_t kRingSeconds = 2;
    const int channels = format_.channels();
    const int64_t capacity =
        std::min<int64_t>(kRingSeconds * format_.sampleRate,
                          kRingBytes / (channels * static_cast<int64_t>(sizeof(float))));
    auto source = std::make_shared<rt::Source>(epoch_, channels, capacity, frame > current_->t0);
    freeSources();
    sources_.push_back(source);
    worker_.begin(source, format_, {current_->file, frame, current_->t1});
    if (queued_) {
        worker_.append(epoch_, {queued_->file, queued_->t0, queued_->t1});
    }
    if (rt::Source* untaken = renderer_.sources().offer(source.get())) {
        std::erase_if(sources_, [&](const auto& held) { return held.get() == untaken; });
    }
    sendParameters();
}

// Nothing is to be heard any more: the renderer gets a source without frames.
void AudioEngine::endStream() {
    ++epoch_;
    heard_ = 0;
    completionTimer_.reset();
    worker_.end();
    parameters_.epoch = epoch_;
    if (stream_ == 0) {
        return;
    }
    auto source = std::make_shared<rt::Source>(epoch_, format_.channels(), 1, false);
    source->end = 0;
    source->primed = true;
    freeSources();
    sources_.push_back(source);
    if (rt::Source* untaken = renderer_.sources().offer(source.get())) {
        std::erase_if(sources_, [&](const auto& held) { return held.get() == untaken; });
    }
    sendParameters();
}

bool AudioEngine::preloadNext(const TrackToPlay& track) {
    if (queued_ || !current_ || !track.file) {
        return false;
    }
    const auto segment = segmentOf(track);
    if (!segment || std::abs(segment->sampleRate - current_->sampleRate) >= 1.0 ||
        segment->file->channels() != current_->file->channels()) {
        return false;
    }
    if (stream_ != 0 && !worker_.append(epoch_, {segment->file, segment->t0, segment->t1})) {
        return false;
    }
    queued_ = segment;
    queuedCallbackID_ = ++callbackCounter_;
    validCallbackIDs_.insert(queuedCallbackID_);
    return true;
}

void AudioEngine::discardQueued() {
    if (!queued_) {
        return;
    }
    queued_.reset();
    validCallbackIDs_.erase(queuedCallbackID_);
    if (stream_ != 0) {
        worker_.dropAppended(epoch_);
    }
    if (onQueueDiscarded) {
        onQueueDiscarded();
    }
}

// Some of the dropped track is on its way to the ear: go on from what is heard without it.
void AudioEngine::dropFailed(uint64_t epoch) {
    if (epoch == epoch_ && current_) {
        beginStream(std::min(static_cast<int64_t>(std::llround(heardTime() * current_->sampleRate)),
                             current_->t1));
        checkCompletion();
    }
}

void AudioEngine::segmentShortened(uint64_t epoch, int segment, int64_t frames) {
    if (epoch != epoch_ || !current_) {
        return;
    }
    if (segment == segmentNumber_) {
        current_->t1 = segmentStartFrame_ + frames;
        currentSegmentDur_ = static_cast<double>(frames) / current_->sampleRate;
        duration_ = static_cast<double>(current_->t1) / current_->sampleRate;
        changed();
        checkCompletion();
    } else if (segment == segmentNumber_ + 1 && queued_) {
        queued_->t1 = queued_->t0 + frames;
    }
}

void AudioEngine::seek(double time) {
    if (!current_ || duration_ <= 0) {
        return;
    }
    const double start = static_cast<double>(current_->t0) / current_->sampleRate;
    const double target = std::max(std::min(time, duration_ - kSeekMargin), start);
    const auto frame = frameAt(target, current_->sampleRate);
    if (!frame) {
        return;
    }
    const bool discarded = queued_.has_value();
    queued_.reset();
    scheduleCurrent(*frame);
    publishTime(target);
    if (isPlaying_) {
        runOutput();
        checkCompletion();
    }
    if (discarded && onQueueDiscarded) {
        onQueueDiscarded();
    }
}

void AudioEngine::stopInternal() {
    validCallbackIDs_.clear();
    completionTimer_.reset();
    endFade();
    fadeLevel_ = 1.0F;
    parameters_.playing = false;
    sendParameters();
    isPlaying_ = false;
    changed();
}

void AudioEngine::hardStop() {
    stopInternal();
    endStream();
    currentTime_ = 0;
    duration_ = 0;
    isLoaded_ = false;
    current_.reset();
    queued_.reset();
    changed();
}

void AudioEngine::changed() {
    if (onStateChanged) {
        onStateChanged();
    }
}

void AudioEngine::publishTime(double time) {
    currentTime_ = std::max(std::min(time, duration_), 0.0);
    changed();
}

// --- What is heard -------------------------------------------------------------------------------

// Device frames of the present stream that have been heard.
int64_t AudioEngine::heardFrames() {
    const rt::RenderReport& report = renderer_.report();
    if (stream_ != 0 && report.epoch == epoch_) {
        const int64_t device =
            heardDeviceFrame(output_->timing(), format_.sampleRate, clock_.now());
        heard_ = std::max(heard_, sourceFrameAt(report, device, renderer_.latencyFrames()));
    }
    return heard_;
}

// The device frame of the stream on which the current segment ends.
int64_t AudioEngine::currentEnd() const {
    return deviceFrames(framesBeforeCurrent_ + current_->t1 - segmentStartFrame_,
                        current_->file->sampleRate(), format_.sampleRate);
}

double AudioEngine::heardTime() {
    if (stream_ == 0) {
        return currentTime_; // held until there is an output again
    }
    const double start = static_cast<double>(segmentStartFrame_) / current_->sampleRate;
    const int64_t heard = heardFrames();
    if (heard == 0) {
        return start;
    }
    return static_cast<double>(heard) / format_.sampleRate - nodeSecondsAtSegmentStart_ + start;
}

void AudioEngine::tick() {
    freeSources();
    haltOutputWhenHeard();
    decayMeters();
    if (!isPlaying_ || !current_) {
        return;
    }
    underruns_ = renderer_.report().underruns;
    publishTime(heardTime());
    checkCompletion();
    if (isPlaying_ && gaplessEnabled && !queued_ && duration_ > 0 &&
        duration_ - currentTime_ < kPreloadSeconds && onNeedPreload) {
        onNeedPreload();
    }
}

// While a fade leads to a pause or a stop the end of the track waits for the outcome.
void AudioEngine::checkCompletion() {
    if (!isPlaying_ || !current_ || stream_ == 0 || fadeEnd_ != FadeEnd::None) {
        return;
    }
    const int64_t left = currentEnd() - heardFrames();
    if (left > 0) {
        armCompletion(left);
    } else {
        segmentFinished(currentCallbackID_);
    }
}

void AudioEngine::armCompletion(int64_t framesLeft) {
    // A little late rather than early: rounding must not make it ask twice for one frame.
    auto wait = Clock::Duration(static_cast<int64_t>(
        std::ceil(static_cast<double>(framesLeft) * 1e9 / format_.sampleRate)));
    if (!output_->timing().advancing) {
        wait = std::max<Clock::Duration>(wait, kTickInterval);
    }
    completionTimer_ = clock_.startTimer(wait, Clock::Repeat::Once, [this] { checkCompletion(); });
}

void AudioEngine::segmentFinished(int callbackID) {
    if (validCallbackIDs_.erase(callbackID) == 0) {
        return;
    }
    completionTimer_.reset();
    if (queued_) {
        promoteQueued();
        return;
    }
    endFade();
    parameters_.playing = false;
    sendParameters();
    isPlaying_ = false;
    publishTime(duration_);
    if (onTrackEnded) {
        onTrackEnded();
    }
}

void AudioEngine::promoteQueued() {
    framesBeforeCurrent_ += current_->t1 - segmentStartFrame_;
    nodeSecondsAtSegmentStart_ += currentSegmentDur_;
    current_ = std::move(queued_);
    queued_.reset();
    currentCallbackID_ = queuedCallbackID_;
    ++segmentNumber_;
    segmentStartFrame_ = current_->t0;
    currentSegmentDur_ = static_cast<double>(current_->t1 - current_->t0) / current_->sampleRate;
    duration_ = static_cast<double>(current_->t1) / current_->sampleRate;
    setNormGain(current_->normGain, false);
    publishTime(heardTime());
    checkCompletion();
    if (onGaplessPromotion) {
        onGaplessPromotion(current_->trackID);
    }
}

} // namespace quorel
