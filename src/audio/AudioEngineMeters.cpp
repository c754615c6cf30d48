// The engine's meters: what is heard, measured 15 times a second while playing.
#include "audio/AudioEngine.h"

#include <cmath>

namespace quorel {

using namespace std::chrono_literals;

namespace {
constexpr auto kMeterInterval = Clock::Duration(1s) / 15;
} // namespace

void AudioEngine::runMeters() {
    if (!visTimer_) {
        visTimer_ =
            clock_.startTimer(kMeterInterval, Clock::Repeat::Always, [this] { meterTick(); });
    }
}

void AudioEngine::meterTick() {
    if (!isPlaying_) {
        visTimer_.reset(); // an idle player wakes as seldom as it can
        return;
    }
    if (stream_ == 0) {
        return;
    }
    const double latency = std::chrono::duration<double>(output_->timing().latency).count();
    renderer_.meterTap().setOutputDelay(std::llround(latency * format_.sampleRate));
    if (meter_.tick(renderer_.meterTap().frames()) && onMetersChanged) {
        onMetersChanged();
    }
}

void AudioEngine::decayMeters() {
    if (meter_.decay(isPlaying_ && stream_ != 0) && onMetersChanged) {
        onMetersChanged();
    }
}

} // namespace quorel
