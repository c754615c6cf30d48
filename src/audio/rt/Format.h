#pragma once

#include <array>

namespace quorel::rt {

inline constexpr int kMaxChannels = 8;
inline constexpr int kMaxPairs = kMaxChannels / 2;
/// The largest block that a node is ever asked to process, in frames.
inline constexpr int kMaxBlockFrames = 512;

/// Where a channel's loudspeaker stands (names as in ITU-R BS.775 and WAVE_FORMAT_EXTENSIBLE).
enum class Speaker : unsigned char {
    Unknown,
    FrontLeft,
    FrontRight,
    FrontCenter,
    LowFrequency,
    BackLeft,
    BackRight,
    BackCenter,
    SideLeft,
    SideRight,
    FrontLeftOfCenter,
    FrontRightOfCenter,
    TopFrontLeft,
    TopFrontRight,
    TopBackLeft,
    TopBackRight,
};

/// The channels of a stream in the order in which their samples stand in a frame.
struct ChannelLayout {
    int channels = 0; ///< 1..kMaxChannels; 0 is no stream
    std::array<Speaker, kMaxChannels> speakers{};

    bool operator==(const ChannelLayout&) const = default;

    /// The usual layout of that many channels (1 to 8): mono, stereo, 3.0,
    /// quad, 5.0, 5.1, 6.1, 7.1.
    static ChannelLayout usual(int channels);
};

/// What a stream of frames is made of.
struct Format {
    int sampleRate = 0; ///< Hz
    ChannelLayout layout;

    int channels() const { return layout.channels; }
    bool operator==(const Format&) const = default;
};

} // namespace quorel::rt
