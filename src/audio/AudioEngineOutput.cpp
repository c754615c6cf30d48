// The engine's dealings with the output: opening, losing and regaining it, and letting it run only
// while there is something to hear.
#include "audio/AudioEngine.h"
#include "audio/HeardClock.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {
/// Ticks without anything to hear before the output is halted; a track that follows soon finds it
/// running.
constexpr int kIdleTicks = 3;
} // namespace

void AudioEngine::render(float* interleaved, int frames) noexcept {
    renderer_.render(interleaved, frames);
}

void AudioEngine::openOutput(const QString& uid) {
    outputLost({});
    outputUid_ = uid;
    output_->open(uid);
}

void AudioEngine::setOutputDevice(std::optional<uint32_t> deviceID) {
    if (!deviceID) {
        openOutput(outputUid_);
        return;
    }
    for (const OutputDevice& device : output_->devices()) {
        if (device.id == *deviceID) {
            openOutput(device.uid);
            return;
        }
    }
}

void AudioEngine::outputOpened(uint64_t stream, const rt::Format& format) {
    outputLost({}); // another device may have taken over without a loss in between
    format_ = format;
    renderer_.prepare(format);
    stream_ = stream;
    setNotice({});
    if (current_) {
        const auto frame = static_cast<int64_t>(std::llround(currentTime_ * current_->sampleRate));
        beginStream(std::clamp(frame, current_->t0, current_->t1));
    } else {
        sendParameters();
    }
    if (isPlaying_) {
        runOutput();
        checkCompletion();
    }
}

// The position stays where the last frame was heard; a new stream goes on from there.
void AudioEngine::outputLost(const QString& reason) {
    if (stream_ != 0) {
        if (current_) {
            publishTime(heardTime());
        }
        stream_ = 0;
        outputRuns_ = false;
        heard_ = 0;
        completionTimer_.reset();
        worker_.end();
    }
    setNotice(reason);
}

void AudioEngine::outputStalled(bool stalled) {
    setNotice(stalled ? QStringLiteral("The sound server does not respond.") : QString());
}

void AudioEngine::outputUnderflowed(int total) {
    underflows_ = total;
}

void AudioEngine::outputDevicesChanged() {
    if (onOutputDevicesChanged) {
        onOutputDevicesChanged();
    }
}

void AudioEngine::setNotice(const QString& notice) {
    outputNotice_ = notice;
    if (onOutputNotice) {
        onOutputNotice();
    }
}

// A server asks for a whole buffer at once when it starts, so it starts when there is music to fill
// the buffer with.
void AudioEngine::runOutput() {
    idleTicks_ = 0;
    if (stream_ != 0 && !outputRuns_ && !sources_.empty() && sources_.back()->primed) {
        outputRuns_ = true;
        output_->start(stream_);
    }
}

void AudioEngine::runOutputWhenPrimed(uint64_t epoch) {
    if (epoch == epoch_ && isPlaying_) {
        runOutput();
    }
}

void AudioEngine::haltOutputWhenHeard() {
    if (!outputRuns_ || isPlaying_) {
        return;
    }
    const rt::RenderReport& report = renderer_.report();
    const int64_t heard = heardDeviceFrame(output_->timing(), format_.sampleRate, clock_.now());
    if (!report.silent || heard < report.musicEnd || ++idleTicks_ < kIdleTicks) {
        return;
    }
    outputRuns_ = false;
    output_->stop();
    if (current_) {
        publishTime(heardTime()); // what was buffered when it paused has been heard since
    }
}

void AudioEngine::freeSources() {
    while (rt::Source* done = renderer_.sources().collect()) {
        std::erase_if(sources_, [&](const auto& held) { return held.get() == done; });
    }
}

} // namespace quorel
