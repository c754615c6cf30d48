// Fades. Each is sent to the renderer once and rendered there sample by sample; the timer here only
// keeps the published level in step and carries out what follows at the end.
#include "audio/AudioEngine.h"

#include <algorithm>
#include <cmath>

namespace quorel {

using namespace std::chrono_literals;

namespace {
constexpr int kFadeStepMs = 20;

int fadeSteps(int ms) {
    return std::max(ms / kFadeStepMs, 1);
}
} // namespace

void AudioEngine::endFade() {
    fadeRamp_.end();
    fadeEnd_ = FadeEnd::None;
}

void AudioEngine::sendFade(float target, int ms, bool fromSilence, bool thenPause) {
    parameters_.fade = {.id = parameters_.fade.id + 1,
                        .target = target,
                        .steps = ms < 1 ? 0 : fadeSteps(ms),
                        .stepSeconds = kFadeStepMs / 1000.0,
                        .fromSilence = fromSilence,
                        .thenPause = thenPause};
    sendParameters();
}

void AudioEngine::fade(float target, int ms, SteppedRamp::Done done) {
    fadeRamp_.start(
        {fadeLevel_}, {target}, fadeSteps(ms), std::chrono::milliseconds(kFadeStepMs),
        [this](const SteppedRamp::Values& level) { fadeLevel_ = level[0]; }, std::move(done));
}

void AudioEngine::play(int fadeInMs) {
    if (!current_) {
        return;
    }
    const bool wasPausing = fadeEnd_ != FadeEnd::None;
    endFade();
    parameters_.playing = true;
    // A fade-out that is turned round goes back up from where it stands.
    if (fadeInMs < 1) {
        fadeLevel_ = 1.0F;
        sendFade(1.0F, 0, false, false);
    } else {
        fadeLevel_ = wasPausing ? fadeLevel_ : 0.0F;
        sendFade(1.0F, fadeInMs, !wasPausing, false);
        fade(1.0F, fadeInMs, {});
    }
    isPlaying_ = true;
    runOutput();
    runMeters();
    changed();
    checkCompletion();
}

void AudioEngine::resume(int fadeInMs) {
    if (!isPlaying_ || fadeEnd_ != FadeEnd::None) {
        play(fadeInMs);
    }
}

void AudioEngine::pause(int fadeOutMs) {
    if (!isPlaying_) {
        return;
    }
    endFade();
    const auto paused = [this] {
        fadeEnd_ = FadeEnd::None;
        completionTimer_.reset();
        parameters_.playing = false;
        sendParameters();
        publishTime(heardTime());
        isPlaying_ = false;
        changed();
    };
    if (fadeOutMs < 1) {
        paused();
        return;
    }
    fadeEnd_ = FadeEnd::Pause;
    sendFade(0.0F, fadeOutMs, false, true);
    fade(0.0F, fadeOutMs, paused);
}

void AudioEngine::stop(int fadeOutMs) {
    if (fadeOutMs < 1 || !isPlaying_) {
        hardStop();
        return;
    }
    endFade();
    fadeEnd_ = FadeEnd::Stop;
    sendFade(0.0F, fadeOutMs, false, true);
    fade(0.0F, fadeOutMs, [this] { hardStop(); });
}

} // namespace quorel
