#pragma once

#include "model/PersistedState.h"

#include <string_view>
#include <tuple>

namespace quorel {

/// One member of a record and the key by which its JSON object holds it.
template <class Record, class Value>
struct Field {
    constexpr Field(std::string_view name, Value Record::*pointer)
        : key(name)
        , member(pointer) {}

    std::string_view key;
    Value Record::*member;
};

/// The fields of a record in the order in which they are written. The one place that names a key.
template <class Record>
inline constexpr std::tuple<> kFields{};

/// Whether an object of that record may lack any of its keys. In the others only the keys of
/// std::optional members may be missing.
template <class Record>
inline constexpr bool kEveryKeyMayBeMissing = false;
template <>
inline constexpr bool kEveryKeyMayBeMissing<AppSettings> = true;

template <>
inline constexpr auto kFields<Track> = std::tuple{
    Field{"id", &Track::id},
    Field{"path", &Track::path},
    Field{"artist", &Track::artist},
    Field{"title", &Track::title},
    Field{"duration", &Track::duration},
    Field{"album", &Track::album},
    Field{"albumArtist", &Track::albumArtist},
    Field{"genre", &Track::genre},
    Field{"year", &Track::year},
    Field{"trackNumber", &Track::trackNumber},
    Field{"trackTotal", &Track::trackTotal},
    Field{"discNumber", &Track::discNumber},
    Field{"discTotal", &Track::discTotal},
    Field{"composer", &Track::composer},
    Field{"comment", &Track::comment},
    Field{"bitrateKbps", &Track::bitrateKbps},
    Field{"sampleRateHz", &Track::sampleRateHz},
    Field{"bpm", &Track::bpm},
    Field{"peakLinear", &Track::peakLinear},
    Field{"rmsLinear", &Track::rmsLinear},
    Field{"trimStart", &Track::trimStart},
    Field{"trimEnd", &Track::trimEnd},
};

template <>
inline constexpr auto kFields<Playlist> = std::tuple{
    Field{"id", &Playlist::id},
    Field{"name", &Playlist::name},
    Field{"tracks", &Playlist::tracks},
};

template <>
inline constexpr auto kFields<AppSettings> = std::tuple{
    Field{"volume", &AppSettings::volume},
    Field{"pan", &AppSettings::pan},
    Field{"isMuted", &AppSettings::isMuted},
    Field{"pbMode", &AppSettings::pbMode},
    Field{"shuffle", &AppSettings::shuffle},
    Field{"eqOn", &AppSettings::eqOn},
    Field{"eqGains", &AppSettings::eqGains},
    Field{"eqPreset", &AppSettings::eqPreset},
    Field{"customEQPresets", &AppSettings::customEQPresets},
    Field{"showRemainingTime", &AppSettings::showRemainingTime},
    Field{"playlistFontSize", &AppSettings::playlistFontSize},
    Field{"uiScale", &AppSettings::uiScale},
    Field{"alwaysOnTop", &AppSettings::alwaysOnTop},
    Field{"resumeOnStartup", &AppSettings::resumeOnStartup},
    Field{"quitOnClose", &AppSettings::quitOnClose},
    Field{"visualization", &AppSettings::visualization},
    Field{"ledBrightness", &AppSettings::ledBrightness},
    Field{"showWordmarkIcon", &AppSettings::showWordmarkIcon},
    Field{"showPlaylist", &AppSettings::showPlaylist},
    Field{"gapless", &AppSettings::gapless},
    Field{"trimSilence", &AppSettings::trimSilence},
    Field{"trimThresholdDb", &AppSettings::trimThresholdDb},
    Field{"trimMaxSec", &AppSettings::trimMaxSec},
    Field{"fadePlayOn", &AppSettings::fadePlayOn},
    Field{"fadePlayMs", &AppSettings::fadePlayMs},
    Field{"fadePauseOn", &AppSettings::fadePauseOn},
    Field{"fadePauseMs", &AppSettings::fadePauseMs},
    Field{"fadeStopOn", &AppSettings::fadeStopOn},
    Field{"fadeStopMs", &AppSettings::fadeStopMs},
    Field{"fadeChangeOn", &AppSettings::fadeChangeOn},
    Field{"fadeChangeMs", &AppSettings::fadeChangeMs},
    Field{"normalize", &AppSettings::normalize},
    Field{"compOn", &AppSettings::compOn},
    Field{"compAmount", &AppSettings::compAmount},
    Field{"compPreset", &AppSettings::compPreset},
    Field{"charFx", &AppSettings::charFx},
    Field{"charIntensity", &AppSettings::charIntensity},
    Field{"vinylCrackle", &AppSettings::vinylCrackle},
    Field{"tapeType", &AppSettings::tapeType},
    Field{"tapeCompression", &AppSettings::tapeCompression},
    Field{"tapeWear", &AppSettings::tapeWear},
    Field{"mechNoise", &AppSettings::mechNoise},
    Field{"mechNoiseLevel", &AppSettings::mechNoiseLevel},
    Field{"loudness", &AppSettings::loudness},
    Field{"loudnessStrength", &AppSettings::loudnessStrength},
    Field{"outputDeviceUID", &AppSettings::outputDeviceUID},
};

template <>
inline constexpr auto kFields<PersistedState> = std::tuple{
    Field{"playlists", &PersistedState::playlists},
    Field{"activePlaylistID", &PersistedState::activePlaylistID},
    Field{"settings", &PersistedState::settings},
    Field{"resumePlaylistID", &PersistedState::resumePlaylistID},
    Field{"resumeTrackID", &PersistedState::resumeTrackID},
    Field{"resumePosition", &PersistedState::resumePosition},
};

/// A type that has such a table.
template <class T>
concept JsonRecord = std::tuple_size_v<std::remove_const_t<decltype(kFields<T>)>> >
0;

} // namespace quorel
