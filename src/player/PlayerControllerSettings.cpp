// The controller's operations on settings and the window.
#include "player/PlayerController.h"
#include "player/PlayerCore.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

using S = AppSettings;

template <class... Fields>
void copy(const S& from, S& to, Fields... fields) {
    (..., (to.*fields = from.*fields));
}

QList<double> gainsOf(const EqPreset& preset) {
    return {preset.gains.begin(), preset.gains.end()};
}

/// The curve of a built-in preset or one of the user's.
std::optional<QList<double>> gainsOf(const QString& name, const S& settings) {
    if (const EqPreset* const builtIn = findEqPreset(name))
        return gainsOf(*builtIn);
    const auto own = settings.customEQPresets.find(name);
    return own == settings.customEQPresets.end() ? std::nullopt : std::optional(*own);
}

} // namespace

void PlayerController::changeSettings(const std::function<void(AppSettings&)>& change) {
    const Core::Operation operation(*core_);
    const AppSettings before = core_->settings;
    change(core_->settings);
    core_->settingsEdited(before);
    core_->saver.changed();
}

void PlayerController::setVolume(double volume) {
    changeSettings([volume](S& settings) {
        settings.volume = std::isfinite(volume) ? std::clamp(volume, 0.0, 1.0) : 0;
        if (volume > 0)
            settings.isMuted = false;
    });
}

void PlayerController::toggleMute() {
    changeSettings([](S& settings) { settings.isMuted = !settings.isMuted; });
}

void PlayerController::setPan(double pan) {
    changeSettings(
        [pan](S& settings) { settings.pan = std::isfinite(pan) ? std::clamp(pan, -1.0, 1.0) : 0; });
}

void PlayerController::setPlaybackMode(PlaybackMode mode) {
    changeSettings([mode](S& settings) { settings.pbMode = mode; });
}

void PlayerController::toggleShuffle() {
    changeSettings([](S& settings) { settings.shuffle = !settings.shuffle; });
}

void PlayerController::setEQEnabled(bool on) {
    changeSettings([on](S& settings) { settings.eqOn = on; });
}

void PlayerController::setEQGain(int index, double db) {
    const Core::Operation operation(*core_);
    if (index < 0 || index >= core_->settings.eqGains.size())
        return;
    const AppSettings before = core_->settings;
    core_->settings.eqGains[index] = db;
    core_->settingsEdited(before);
}

void PlayerController::applyEQPreset(const QString& name) {
    const auto gains = gainsOf(name, core_->settings);
    if (!gains)
        return;
    changeSettings([&](S& settings) {
        settings.eqPreset = name;
        settings.eqGains = *gains;
    });
}

void PlayerController::resetEQ() {
    changeSettings([](S& settings) {
        settings.eqPreset = kEqPresets.front().name;
        settings.eqGains = gainsOf(kEqPresets.front());
        settings.eqOn = false;
    });
}

bool PlayerController::saveCustomEQPreset(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || findEqPreset(trimmed))
        return false;
    changeSettings([&trimmed](S& settings) {
        settings.customEQPresets[trimmed] = settings.eqGains;
        settings.eqPreset = trimmed;
    });
    return true;
}

void PlayerController::deleteCustomEQPreset(const QString& name) {
    changeSettings([&name](S& settings) {
        settings.customEQPresets.remove(name);
        if (settings.eqPreset == name) {
            settings.eqPreset = kEqPresets.front().name;
            settings.eqGains = gainsOf(kEqPresets.front());
        }
    });
}

bool PlayerController::isCurrentEQPresetCustom() const {
    return settings().customEQPresets.contains(settings().eqPreset);
}

void PlayerController::setOutputDevice(const std::optional<QString>& uid) {
    changeSettings([&uid](S& settings) { settings.outputDeviceUID = uid; });
}

void PlayerController::cycleVisualization() {
    changeSettings([](S& settings) {
        constexpr auto& kModes = kAllCases<VisualizationMode>;
        const auto next = (static_cast<std::size_t>(settings.visualization) + 1) % kModes.size();
        settings.visualization = kModes[next];
    });
}

void PlayerController::setUIScale(double scale) {
    changeSettings([scale](S& settings) {
        settings.uiScale = std::isfinite(scale) ? std::clamp(scale, 0.5, 1.5) : 1;
    });
}

void PlayerController::restoreSettings(const AppSettings& before) {
    changeSettings([&before](S& now) {
        copy(before, now, &S::alwaysOnTop, &S::resumeOnStartup, &S::quitOnClose, &S::gapless,
             &S::trimSilence, &S::trimThresholdDb, &S::trimMaxSec);
        copy(before, now, &S::fadePlayOn, &S::fadePlayMs, &S::fadePauseOn, &S::fadePauseMs,
             &S::fadeStopOn, &S::fadeStopMs, &S::fadeChangeOn, &S::fadeChangeMs);
        copy(before, now, &S::normalize, &S::compOn, &S::compPreset, &S::loudness,
             &S::loudnessStrength, &S::outputDeviceUID);
        copy(before, now, &S::visualization, &S::ledBrightness, &S::playlistFontSize,
             &S::showWordmarkIcon, &S::uiScale);
    });
}

void PlayerController::scheduleSave() {
    core_->saver.changed();
}

// --- Window --------------------------------------------------------------------------------------

void PlayerController::attachWindow(PlayerWindow* window) {
    core_->window = window;
    if (!window)
        return;
    window->setScale(Core::scaleOf(settings()), false);
    window->setPlaylistShown(settings().showPlaylist, false);
    window->setAlwaysOnTop(settings().alwaysOnTop);
    window->setWordmarkIcon(settings().showWordmarkIcon);
}

void PlayerController::togglePlaylistVisible() {
    if (!core_->isFullScreen)
        changeSettings([](S& settings) { settings.showPlaylist = !settings.showPlaylist; });
}

void PlayerController::setFullScreen(bool on) {
    if (core_->window)
        core_->window->setFullScreen(on);
}

void PlayerController::fullScreenChanged(bool active) {
    const Core::Operation operation(*core_);
    if (active == core_->isFullScreen)
        return;
    core_->isFullScreen = active;
    core_->changes.settings |= SettingsPart::Window;
}

void PlayerController::raiseWindow() {
    if (core_->window)
        core_->window->raiseWindow();
}

} // namespace quorel
