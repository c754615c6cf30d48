// What a change of the settings means to the engine, to playback and to the window.
#include "audio/PlaybackSettings.h"
#include "player/PlayerCore.h"
#include "player/StartGain.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

using S = AppSettings;

template <class... Fields>
bool differ(const S& a, const S& b, Fields... fields) {
    return (... || (a.*fields != b.*fields));
}

} // namespace

double PlayerController::Core::scaleOf(const AppSettings& settings) {
    return std::isfinite(settings.uiScale) ? std::clamp(settings.uiScale, 0.5, 1.5) : 1;
}

void PlayerController::Core::settingsEdited(const AppSettings& before) {
    const Operation operation(*this);
    changes.settings |= applySound(before); // first: playback asks the engine what it may do
    changes.settings |= applyTransport(before);
    changes.settings |= applyWindow(before);
}

SettingsParts PlayerController::Core::applySound(const AppSettings& before) {
    SettingsParts parts;
    const bool loudness = differ(before, settings, &S::loudness, &S::loudnessStrength);
    if (differ(before, settings, &S::volume, &S::isMuted))
        parts |= SettingsPart::Volume;
    if (loudness || parts)
        applyVolume(*engine, settings);
    if (before.pan != settings.pan) {
        parts |= SettingsPart::Balance;
        applyBalance(*engine, settings);
    }
    if (differ(before, settings, &S::eqOn, &S::eqGains, &S::eqPreset, &S::customEQPresets))
        parts |= SettingsPart::Equalizer;
    for (int band = 0; band < kEqBands; ++band)
        if (before.eqGains.value(band) != settings.eqGains.value(band))
            applyEqGain(*engine, settings, band);
    if (before.eqOn != settings.eqOn)
        engine->setEqEnabled(settings.eqOn);
    if (loudness || differ(before, settings, &S::gapless, &S::compOn, &S::compPreset)) {
        parts |= SettingsPart::Processing;
        applyProcessing(*engine, settings);
    }
    if (before.outputDeviceUID != settings.outputDeviceUID) {
        parts |= SettingsPart::Output;
        engine->openOutput(settings.outputDeviceUID.value_or(QString()));
    }
    return parts;
}

SettingsParts PlayerController::Core::applyTransport(const AppSettings& before) {
    SettingsParts parts;
    if (differ(before, settings, &S::pbMode, &S::shuffle))
        parts |= SettingsPart::Mode;
    if (before.shuffle != settings.shuffle)
        playback.reshuffle();
    else if (differ(before, settings, &S::pbMode, &S::gapless))
        playback.replan();
    changes.transport |= bool(parts); // what may follow
    const bool trims =
        differ(before, settings, &S::trimSilence, &S::trimThresholdDb, &S::trimMaxSec);
    if (trims)
        trimsOutdated();
    if (before.normalize != settings.normalize && playback.playingTrack()) {
        const TrackList* const list = tabs.find(playback.playingPlaylist());
        engine->setNormGain(startGain(settings, playing, list ? *list : tabs.active()), false);
    }
    if (trims || before.normalize != settings.normalize)
        parts |= SettingsPart::Processing;
    if (parts)
        measure();
    if (differ(before, settings, &S::fadePlayOn, &S::fadePlayMs, &S::fadePauseOn, &S::fadePauseMs,
               &S::fadeStopOn, &S::fadeStopMs, &S::fadeChangeOn, &S::fadeChangeMs))
        parts |= SettingsPart::Fades;
    return parts;
}

SettingsParts PlayerController::Core::applyWindow(const AppSettings& before) {
    SettingsParts parts;
    if (differ(before, settings, &S::visualization, &S::ledBrightness, &S::showRemainingTime,
               &S::playlistFontSize))
        parts |= SettingsPart::Display;
    if (differ(before, settings, &S::uiScale, &S::alwaysOnTop, &S::showPlaylist, &S::quitOnClose,
               &S::showWordmarkIcon, &S::resumeOnStartup))
        parts |= SettingsPart::Window;
    if (!window)
        return parts;
    if (before.uiScale != settings.uiScale)
        window->setScale(scaleOf(settings), true);
    if (before.alwaysOnTop != settings.alwaysOnTop)
        window->setAlwaysOnTop(settings.alwaysOnTop);
    if (before.showPlaylist != settings.showPlaylist)
        window->setPlaylistShown(settings.showPlaylist, true);
    if (before.showWordmarkIcon != settings.showWordmarkIcon)
        window->setWordmarkIcon(settings.showWordmarkIcon);
    return parts;
}

void PlayerController::Core::trimsOutdated() {
    const auto forget = [](Track& track) {
        track.trimStart.reset();
        track.trimEnd.reset();
    };
    for (qsizetype i = 0; i < tabs.size(); ++i) {
        TrackList& list = *tabs.find(tabs.at(i).id());
        for (qsizetype row = 0; row < list.size(); ++row)
            if (list.tracks().at(row).trimStart || list.tracks().at(row).trimEnd)
                list.change(row, forget);
    }
    forget(playing);
    std::erase_if(measured, [](const auto& result) { return result.trim.has_value(); });
    playback.replanTrims();
}

} // namespace quorel
