#pragma once

#include "model/Enumerations.h"
#include "model/EqPresets.h"

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

namespace quorel {

/// The user's preferences. The record stores any value it is given; whoever uses a value limits it.
/// Percentages run from 0 to 100, lengths of fades are milliseconds.
struct AppSettings {
    double volume = 0.8; ///< linear, 0..1
    double pan = 0;      ///< -1 left, 0 centre, 1 right
    bool isMuted = false;
    PlaybackMode pbMode = PlaybackMode::Normal;
    bool shuffle = false;

    bool eqOn = false;
    QList<double> eqGains = QList<double>(kEqBands, 0.0); ///< dB, lowest band first
    QString eqPreset = QStringLiteral("flat");            ///< built in, or of customEQPresets
    QMap<QString, QList<double>> customEQPresets;

    bool showRemainingTime = false;
    double playlistFontSize = 12.5; ///< points
    double uiScale = 1;
    bool alwaysOnTop = false;
    bool resumeOnStartup = false;
    bool quitOnClose = false;
    VisualizationMode visualization = VisualizationMode::Vu;
    double ledBrightness = 0.8; ///< 0..1
    bool showWordmarkIcon = false;
    bool showPlaylist = true;

    bool gapless = true;
    bool trimSilence = false;
    double trimThresholdDb = -60; ///< dBFS
    double trimMaxSec = 5;        ///< seconds at either end

    bool fadePlayOn = false;
    double fadePlayMs = 250;
    bool fadePauseOn = false;
    double fadePauseMs = 250;
    bool fadeStopOn = false;
    double fadeStopMs = 250;
    bool fadeChangeOn = false;
    double fadeChangeMs =
        400; ///< longer than the others on purpose: one track gives way to another

    bool normalize = false;
    bool compOn = false;
    double compAmount = 40; ///< percent
    CompressorPreset compPreset = CompressorPreset::Warm;

    CharacterFX charFx = CharacterFX::Off;
    double charIntensity = 40; ///< percent
    double vinylCrackle = 50;  ///< percent
    TapeType tapeType = TapeType::Chrome;
    double tapeCompression = 40; ///< percent
    double tapeWear = 0;         ///< percent
    bool mechNoise = false;
    double mechNoiseLevel = 30; ///< percent

    bool loudness = false;
    LoudnessStrength loudnessStrength = LoudnessStrength::Strong;

    std::optional<QString> outputDeviceUID; ///< absent: the system's default device

    bool operator==(const AppSettings&) const = default;
};

} // namespace quorel
