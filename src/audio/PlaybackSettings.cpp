#include "audio/PlaybackSettings.h"

#include "audio/AudioEngine.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

/// Far more than a curve needs, and far less than what numbers run over at in all bands together.
constexpr double kMostEqDb = 24;

double limited(double value, double least, double most) {
    return std::isfinite(value) ? std::clamp(value, least, most) : 0.0;
}

} // namespace

void applySettings(AudioEngine& engine, const AppSettings& settings) {
    const double volume = limited(settings.volume, 0, 1);
    engine.setVolume(settings.isMuted ? 0.0 : volume);
    engine.setPan(limited(settings.pan, -1, 1));

    for (int band = 0; band < kEqBands; ++band) {
        // The list may be of another length; bands that it does not name are flat.
        const double db = limited(settings.eqGains.value(band), -kMostEqDb, kMostEqDb);
        engine.setEQGain(band, static_cast<float>(db));
    }
    engine.setEqEnabled(settings.eqOn);
    engine.setLoudness(settings.loudness, volume, settings.loudnessStrength);
    engine.setCompressor(settings.compOn, settings.compPreset);
    engine.gaplessEnabled = settings.gapless;
}

int fadeLengthMs(bool on, double ms) {
    return on ? static_cast<int>(limited(ms, 0, 60'000)) : 0;
}

TrackMeasures measureFor(const AppSettings& settings, AudioFile& file) {
    TrackMeasures measures;
    if (settings.trimSilence) {
        measures.trim = computeTrim(file, limited(settings.trimThresholdDb, -200, 0),
                                    limited(settings.trimMaxSec, 0, 3600));
    }
    if (settings.normalize) {
        measures.levels = computeLevels(file);
    }
    return measures;
}

TrackToPlay trackToPlay(const AppSettings& settings, std::shared_ptr<AudioFile> file,
                        const TrackMeasures& measures) {
    TrackToPlay track;
    if (settings.trimSilence && measures.trim) {
        track.trimStart = measures.trim->start;
        // The file's end in seconds may stand for the frame before it, which a join would miss.
        if (measures.trim->end < static_cast<double>(file->length()) / file->sampleRate()) {
            track.trimEnd = measures.trim->end;
        }
    }
    track.file = std::move(file);
    if (settings.normalize && measures.levels) {
        track.normGain = normalisationGain(measures.levels->peak, measures.levels->rms);
    }
    return track;
}

} // namespace quorel
