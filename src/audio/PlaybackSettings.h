#pragma once

#include "audio/TrackToPlay.h"
#include "audio/analysis/TrackAnalysis.h"
#include "model/AppSettings.h"

namespace quorel {

class PlayerEngine;

// What a record of settings means to the engine: the only place that knows. The record holds
// whatever it was given; here each value is limited to what can be meant by it, and one that is no
// finite number counts as 0.

// Main thread; while something plays, changes are heard as those of single settings are.
void applyVolume(PlayerEngine& engine, const AppSettings& settings); ///< with tone compensation
void applyBalance(PlayerEngine& engine, const AppSettings& settings);
void applyEqGain(PlayerEngine& engine, const AppSettings& settings, int band);
void applyEqualizer(PlayerEngine& engine, const AppSettings& settings);
void applyProcessing(PlayerEngine& engine, const AppSettings& settings); ///< and joining of tracks
/// All of that.
void applySettings(PlayerEngine& engine, const AppSettings& settings);

/// The length in ms of one of the fades, as the engine's transport takes it: 0 where it is off, a
/// minute at most.
int fadeLengthMs(bool on, double ms);

/// What playing a track takes of its analysis; what is not known or not wanted is absent.
struct TrackMeasures {
    std::optional<Trim> trim;
    std::optional<Levels> levels;
};

/// Measures what the settings call for, and nothing else. Any thread; blocks on the disk. The file
/// is left somewhere else than it was.
TrackMeasures measureFor(const AppSettings& settings, AudioFile& file);

/// Where the sound begins and ends; absent where nothing is to be trimmed. Any thread; blocks on
/// the disk; moves the file.
std::optional<Trim> trimFor(const AppSettings& settings, AudioFile& file);

/// Where the sound begins, as far as the first second tells: what there is time for before a start.
std::optional<Trim> trimHeadFor(const AppSettings& settings, AudioFile& file);

/// What is to be heard of the file, and how loud. Measures that the settings do not want are left
/// alone; the level of a track without known levels is kept.
TrackToPlay trackToPlay(const AppSettings& settings, std::shared_ptr<AudioFile> file,
                        const TrackMeasures& measures);

} // namespace quorel
