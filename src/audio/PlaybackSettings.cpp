#include "audio/PlaybackSettings.h"

#include "audio/PlayerEngine.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

constexpr double kMostEqDb = 12;
constexpr double kHeadSeconds = 1;

double limited(double value, double least, double most) {
    return std::isfinite(value) ? std::clamp(value, least, most) : 0.0;
}

double trimThresholdDb(const AppSettings& settings) {
    return limited(settings.trimThresholdDb, -200, 0);
}

double trimMaxSec(const AppSettings& settings) {
    return limited(settings.trimMaxSec, 0, 3600);
}

} // namespace

void applyVolume(PlayerEngine& engine, const AppSettings& settings) {
    const double volume = limited(settings.volume, 0, 1);
    engine.setVolume(settings.isMuted ? 0.0 : volume);
    engine.setLoudness(settings.loudness, volume, settings.loudnessStrength);
}

void applyBalance(PlayerEngine& engine, const AppSettings& settings) {
    engine.setPan(limited(settings.pan, -1, 1));
}

void applyEqGain(PlayerEngine& engine, const AppSettings& settings, int band) {
    // The list may be of another length; bands that it does not name are flat.
    const double db = limited(settings.eqGains.value(band), -kMostEqDb, kMostEqDb);
    engine.setEQGain(band, static_cast<float>(db));
}

void applyEqualizer(PlayerEngine& engine, const AppSettings& settings) {
    for (int band = 0; band < kEqBands; ++band)
        applyEqGain(engine, settings, band);
    engine.setEqEnabled(settings.eqOn);
}

void applyProcessing(PlayerEngine& engine, const AppSettings& settings) {
    engine.gaplessEnabled = settings.gapless;
    engine.setCompressor(settings.compOn, settings.compPreset);
}

void applySettings(PlayerEngine& engine, const AppSettings& settings) {
    applyVolume(engine, settings);
    applyBalance(engine, settings);
    applyEqualizer(engine, settings);
    applyProcessing(engine, settings);
}

int fadeLengthMs(bool on, double ms) {
    return on ? static_cast<int>(limited(ms, 0, 60'000)) : 0;
}

TrackMeasures measureFor(const AppSettings& settings, AudioFile& file) {
    TrackMeasures measures;
    measures.trim = trimFor(settings, file);
    if (settings.normalize) {
        measures.levels = computeLevels(file);
    }
    return measures;
}

std::optional<Trim> trimFor(const AppSettings& settings, AudioFile& file) {
    if (!settings.trimSilence) {
        return std::nullopt;
    }
    return computeTrim(file, trimThresholdDb(settings), trimMaxSec(settings));
}

std::optional<Trim> trimHeadFor(const AppSettings& settings, AudioFile& file) {
    if (!settings.trimSilence) {
        return std::nullopt;
    }
    return computeTrimOfHead(file, trimThresholdDb(settings),
                             std::min(trimMaxSec(settings), kHeadSeconds));
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
