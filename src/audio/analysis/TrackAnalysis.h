#pragma once

#include "audio/decode/AudioFile.h"

#include <optional>
#include <string>

namespace quorel {

// What is measured of a whole track, apart from playing it.
//
// Any thread, several at once; each call blocks on the disk and needs a file of its own. A result
// is absent when the value could not be measured, which is no error: the file does not open, holds
// nothing, cannot be positioned, or its cancel() was called, which takes effect within a block.

struct Trim {
    double start = 0; ///< s of file time
    double end = 0;   ///< s of file time
};

struct Levels {
    double peak = 0; ///< linear, full scale 1; never 0
    double rms = 0;  ///< linear over all channels, full scale 1; never 0
};

/// Where the sound begins and ends: the silence of at most `maxTrimSec` at either end is left out,
/// silence being what stays at or below `thresholdDb` (dBFS). Cuts only whole blocks of 1024
/// frames, so that no onset and no decay is touched. Nothing is cut where both ends meet in
/// silence. Reads no more than those ends.
std::optional<Trim> computeTrim(AudioFile& file, double thresholdDb, double maxTrimSec);
std::optional<Trim> computeTrim(const std::string& path, double thresholdDb, double maxTrimSec);

/// Only where the sound begins, by the same rule; the end is the file's.
std::optional<Trim> computeTrimOfHead(AudioFile& file, double thresholdDb, double maxTrimSec);

/// Peak and RMS of the whole file; digital silence counts as 0.0001.
std::optional<Levels> computeLevels(AudioFile& file);
std::optional<Levels> computeLevels(const std::string& path);

/// The tempo of the first minute in beats per minute, unrounded; absent too without a clear beat or
/// with less than 81 blocks of 1024 frames.
std::optional<double> detectBPM(AudioFile& file);
std::optional<double> detectBPM(const std::string& path);

/// The linear gain that brings a track to -16 dBFS RMS, within -12..+12 dB; it is not raised so far
/// that the peak would pass full scale. 1 where the levels are unusable. Any thread.
double normalisationGain(double peak, double rms) noexcept;

} // namespace quorel
