#include "audio/output/PulseSession.h"

#include <algorithm>

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kFirstRetry = 200ms;
constexpr auto kSlowestRetry = 2000ms;
constexpr auto kAnswerTime = 2s; // a server that takes longer to open a stream is reported
constexpr auto kWatchInterval = 500ms;
constexpr auto kUsualBuffer = 100ms; // the shortest that a loaded machine was seen to keep up with
constexpr auto kLongestBuffer = 400ms;

} // namespace

PulseSession::Time PulseSession::step(const PulseRequest& request, Time now) {
    if (connection_.broken()) {
        const bool wasReady = connection_.ready();
        close(now);
        tellLost(wasReady ? QStringLiteral("The connection to the sound server is lost.")
                          : QStringLiteral("The sound server cannot be reached."));
    }
    Time wake = connection_.step(now);
    followRequest(request, now);
    reportDevices(now);
    if (open_ == 0) {
        return wake;
    }
    if (stream_) {
        followStream(now);
    }
    if (!stream_ && connection_.current()) {
        if (now >= retryAt_) {
            openStream(now);
        }
        wake = std::min(wake, stream_ ? Time::max() : retryAt_);
    }
    if (settled_) {
        run(request, now);
        watch(now);
        return stream_->running() ? std::min(wake, now + kWatchInterval) : wake;
    }
    return std::min(wake, awaitAnswer(now));
}

void PulseSession::followRequest(const PulseRequest& request, Time now) {
    if (request.open == open_) {
        return;
    }
    open_ = request.open;
    wantedUid_ = request.uid;
    close(now);
    lostTold_ = false;
    failedBefore_ = false;
    answerDue_ = now + kAnswerTime;
    retryAt_ = now;
    retryDelay_ = kFirstRetry;
    if (connection_.unreachable()) {
        tellLost(QStringLiteral("The sound server cannot be reached."));
    }
}

void PulseSession::reportDevices(Time now) {
    if (seenRevision_ == connection_.revision()) {
        return;
    }
    seenRevision_ = connection_.revision();
    retryAt_ = now;
    QList<OutputDevice> devices;
    for (const PulseSink& sink : connection_.sinks()) {
        devices.append({sink.index, QString::fromStdString(sink.name),
                        QString::fromStdString(sink.description)});
    }
    events_.devicesChanged(devices);
}

void PulseSession::followStream(Time now) {
    if (stream_->state() == PulseStream::State::Failed) {
        streamFailed(now);
        return;
    }
    if (stream_->takeMoved()) {
        moved_ = true;
        connection_.refresh(); // the stream may know the new sink before the list does
    }
    if (!connection_.current()) {
        return;
    }
    const PulseSink* chosen = chosenSink();
    if (stream_->setup().pinnedTo != (chosen ? chosen->name : std::string())) {
        close(now);
    } else if (stream_->state() == PulseStream::State::Open && (moved_ || !settled_)) {
        settle(now);
    }
}

void PulseSession::streamFailed(Time now) {
    close(now);
    connection_.refresh();
    if (failedBefore_) {
        tellLost(QStringLiteral("The sound device cannot be used."));
        retryLater(now);
    } else {
        // Most often the device was unplugged: the next try finds the default in its place.
        failedBefore_ = true;
        retryAt_ = now;
    }
}

void PulseSession::settle(Time now) {
    moved_ = false;
    const std::string device = stream_->device();
    if (PulseConnection::isDummy(device)) {
        close(now);
        noDevice(now);
        return;
    }
    // A sink that is the one expected keeps the stream even if it reports another format by now:
    // some servers let a sink's rate follow the stream's.
    const PulseSink* sink = connection_.find(device);
    if (device != expectedSink_ && sink && sink->format != stream_->setup().format) {
        close(now);
        leadsTo_ = device;
        retryAt_ = now;
        return;
    }
    expectedSink_ = device;
    if (!settled_) {
        settled_ = true;
        lostTold_ = false;
        failedBefore_ = false;
        retryDelay_ = kFirstRetry;
        events_.opened(open_, stream_->setup().id, toFormat(stream_->setup().format));
    }
}

void PulseSession::run(const PulseRequest& request, Time now) {
    if (request.run == run_) {
        return;
    }
    run_ = request.run;
    if (request.runningStream == stream_->setup().id) {
        stream_->start(now);
    } else {
        stream_->stop();
    }
}

void PulseSession::watch(Time now) {
    const bool stalled = stream_->checkStalled(now);
    if (stalled != stalledTold_) {
        stalledTold_ = stalled;
        events_.stalled(open_, stalled);
    }
    if (stream_->takeUnderflow()) {
        events_.underflowed(++underflows_);
        lengthenBuffer();
    }
}

PulseSession::Time PulseSession::awaitAnswer(Time now) {
    if (now >= answerDue_) {
        tellLost(QStringLiteral("The sound server does not answer."));
    }
    return lostTold_ ? Time::max() : answerDue_;
}

void PulseSession::lengthenBuffer() {
    const auto longer =
        std::min<std::chrono::milliseconds>(stream_->setup().buffer * 2, kLongestBuffer);
    if (longer > stream_->setup().buffer) {
        stream_->setBuffer(longer);
        buffers_[expectedSink_] = longer;
    }
}

void PulseSession::openStream(Time now) {
    const PulseSink* chosen = chosenSink();
    const PulseSink* leadsTo = connection_.find(std::exchange(leadsTo_, {}));
    const PulseSink* sink = chosen ? chosen : leadsTo ? leadsTo : connection_.defaultSink();
    if (!sink) {
        noDevice(now);
        return;
    }
    expectedSink_ = sink->name;
    const auto known = buffers_.find(sink->name);
    stream_ = std::make_unique<PulseStream>(
        connection_.context(),
        PulseStream::Setup{.id = ++lastStream_,
                           .format = sink->format,
                           .pinnedTo = chosen ? chosen->name : std::string(),
                           .buffer = known == buffers_.end() ? kUsualBuffer : known->second},
        client_, events_);
}

void PulseSession::close(Time now) {
    stream_.reset();
    moved_ = false;
    stalledTold_ = false;
    if (settled_) {
        settled_ = false;
        answerDue_ = now + kAnswerTime;
        retryAt_ = now;
    }
}

void PulseSession::noDevice(Time now) {
    tellLost(QStringLiteral("There is no sound device."));
    retryLater(now);
}

void PulseSession::retryLater(Time now) {
    retryAt_ = now + retryDelay_;
    retryDelay_ = std::min<std::chrono::milliseconds>(retryDelay_ * 2, kSlowestRetry);
}

void PulseSession::tellLost(const QString& reason) {
    if (open_ != 0 && !lostTold_) {
        lostTold_ = true;
        events_.lost(open_, reason);
    }
}

const PulseSink* PulseSession::chosenSink() const {
    return wantedUid_.empty() ? nullptr : connection_.find(wantedUid_);
}

} // namespace quorel
