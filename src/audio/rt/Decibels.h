#pragma once

#include <algorithm>
#include <cmath>

namespace quorel::rt {

/// Amplitude ratio of a level in decibels; 0 dB is exactly 1.
inline double gainFromDb(double db) {
    return db == 0.0 ? 1.0 : std::pow(10.0, db / 20.0);
}

/// A duration in whole frames, at least one.
inline int framesOf(double seconds, int sampleRate) {
    return std::max(1, static_cast<int>(std::lround(seconds * sampleRate)));
}

} // namespace quorel::rt
