// The engine's meters: what is heard, measured 15 times a second while playing.
#include "audio/AudioEngine.h"

#include <cmath>

namespace quorel {

void AudioEngine::meterTick() {
    if (!isPlaying_ || stream_ == 0) {
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
