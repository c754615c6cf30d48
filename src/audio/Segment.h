#pragma once

#include "audio/TrackToPlay.h"

#include <cstdint>

namespace quorel {

/// The frames of a file that are played.
struct Segment {
    std::shared_ptr<AudioFile> file;
    double sampleRate = 0; ///< Hz
    int64_t t0 = 0;        ///< first frame to play
    int64_t t1 = 0;        ///< frame after the last one
    float normGain = 1;    ///< linear
    QUuid trackID;
};

/// What of an open file is left between the track's trim points, if anything is and its frames can
/// be counted.
std::optional<Segment> segmentOf(const TrackToPlay& track);

/// The frame at `seconds`, or absent when it cannot be counted in 64 bits.
std::optional<int64_t> frameAt(double seconds, double sampleRate);

} // namespace quorel
