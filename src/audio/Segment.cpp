#include "audio/Segment.h"

#include <algorithm>
#include <cmath>

namespace quorel {

std::optional<int64_t> frameAt(double seconds, double sampleRate) {
    const double frame = seconds * sampleRate;
    if (!std::isfinite(frame) || std::abs(frame) >= 9.2e18) {
        return std::nullopt;
    }
    return static_cast<int64_t>(frame);
}

std::optional<Segment> segmentOf(const TrackToPlay& track) {
    const double rate = track.file->sampleRate();
    const int64_t length = track.file->length();
    const auto t0 = frameAt(std::max(track.trimStart, 0.0), rate);
    const auto t1 = track.trimEnd ? frameAt(*track.trimEnd, rate) : length;
    if (!t0 || !t1 || *t0 >= std::min(*t1, length)) {
        return std::nullopt;
    }
    return Segment{
        track.file,   rate, *t0, std::min(*t1, length), static_cast<float>(track.normGain),
        track.trackID};
}

} // namespace quorel
