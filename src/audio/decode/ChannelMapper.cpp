#include "audio/decode/ChannelMapper.h"

#include <algorithm>
#include <numbers>
#include <numeric>
#include <optional>
#include <span>

namespace quorel {

namespace {

using rt::ChannelLayout;
using rt::Speaker;
using Matrix = std::array<std::array<float, rt::kMaxChannels>, rt::kMaxChannels>;

constexpr float kMinus3dB = 1 / std::numbers::sqrt2_v<float>;

std::span<const Speaker> speakersOf(const ChannelLayout& layout) {
    return std::span(layout.speakers).first(static_cast<std::size_t>(layout.channels));
}

std::optional<std::size_t> channelOf(const ChannelLayout& layout, Speaker speaker) {
    const auto speakers = speakersOf(layout);
    const auto found = std::ranges::find(speakers, speaker);
    if (speaker == Speaker::Unknown || found == speakers.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - speakers.begin());
}

// Where a loudspeaker's signal goes in a layout that lacks it: to one neighbour or evenly to two.
struct Fallback {
    Speaker speaker;
    std::array<Speaker, 2> targets; // the second Unknown where there is one
    float gain;
};

using enum rt::Speaker;
// Tried from the top; the first whose targets the layout has is taken.
constexpr std::array kFallbacks{
    Fallback{FrontCenter, {FrontLeft, FrontRight}, kMinus3dB},
    Fallback{FrontLeftOfCenter, {FrontLeft, Unknown}, 1},
    Fallback{FrontRightOfCenter, {FrontRight, Unknown}, 1},
    Fallback{BackLeft, {SideLeft, Unknown}, 1},
    Fallback{BackRight, {SideRight, Unknown}, 1},
    Fallback{SideLeft, {BackLeft, Unknown}, 1},
    Fallback{SideRight, {BackRight, Unknown}, 1},
    Fallback{BackCenter, {BackLeft, BackRight}, kMinus3dB},
    Fallback{BackCenter, {SideLeft, SideRight}, kMinus3dB},
    Fallback{BackCenter, {FrontLeft, FrontRight}, 0.5F},
    Fallback{BackLeft, {FrontLeft, Unknown}, kMinus3dB},
    Fallback{BackRight, {FrontRight, Unknown}, kMinus3dB},
    Fallback{SideLeft, {FrontLeft, Unknown}, kMinus3dB},
    Fallback{SideRight, {FrontRight, Unknown}, kMinus3dB},
    Fallback{TopFrontLeft, {FrontLeft, Unknown}, kMinus3dB},
    Fallback{TopFrontRight, {FrontRight, Unknown}, kMinus3dB},
    Fallback{TopBackLeft, {BackLeft, Unknown}, kMinus3dB},
    Fallback{TopBackRight, {BackRight, Unknown}, kMinus3dB},
    Fallback{TopBackLeft, {FrontLeft, Unknown}, kMinus3dB},
    Fallback{TopBackRight, {FrontRight, Unknown}, kMinus3dB},
};

// False when the layout has no place for the loudspeaker's signal.
bool mixDown(std::size_t input, Speaker speaker, const ChannelLayout& to, Matrix& gains) {
    for (const Fallback& fallback : kFallbacks) {
        const auto first = channelOf(to, fallback.targets[0]);
        const auto second = channelOf(to, fallback.targets[1]);
        if (fallback.speaker != speaker || !first || (fallback.targets[1] != Unknown && !second)) {
            continue;
        }
        gains[*first][input] = fallback.gain;
        if (second) {
            gains[*second][input] = fallback.gain;
        }
        return true;
    }
    return false;
}

// Scales all gains together until no output can exceed full scale.
void preventClipping(Matrix& gains) {
    float largest = 1;
    for (const auto& row : gains) {
        largest = std::max(largest, std::accumulate(row.begin(), row.end(), 0.0F));
    }
    for (auto& row : gains) {
        for (float& gain : row) {
            gain /= largest;
        }
    }
}

Matrix gainsBetween(const ChannelLayout& from, const ChannelLayout& to) {
    Matrix gains{};
    if (to.channels == 1) {
        if (from.channels == 1) {
            gains[0][0] = 1;
            return gains;
        }
        const Matrix stereo = gainsBetween(from, ChannelLayout::usual(2));
        for (std::size_t i = 0; i < rt::kMaxChannels; ++i) {
            gains[0][i] = (stereo[0][i] + stereo[1][i]) / 2;
        }
        return gains;
    }
    if (from.channels == 1) {
        gains[channelOf(to, FrontLeft).value_or(0)][0] = 1;
        gains[channelOf(to, FrontRight).value_or(1)][0] = 1;
        return gains;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(from.channels); ++i) {
        const Speaker speaker = from.speakers[i];
        if (const auto same = channelOf(to, speaker)) {
            gains[*same][i] = 1;
        } else if (!mixDown(i, speaker, to, gains) && i < static_cast<std::size_t>(to.channels) &&
                   (speaker == Unknown || to.speakers[i] == Unknown)) {
            gains[i][i] = 1;
        }
    }
    preventClipping(gains);
    return gains;
}

} // namespace

ChannelMapper::ChannelMapper(const ChannelLayout& from, const ChannelLayout& to)
    : inputs_(from.channels)
    , outputs_(to.channels)
    , identity_(from == to)
    , gains_(gainsBetween(from, to)) {}

void ChannelMapper::map(const float* in, float* out, int64_t frames) const {
    if (identity_) {
        std::copy_n(in, frames * inputs_, out);
        return;
    }
    for (int64_t frame = 0; frame < frames; ++frame, in += inputs_) {
        for (int o = 0; o < outputs_; ++o) {
            const Row& row = gains_[static_cast<std::size_t>(o)];
            *out++ = std::inner_product(in, in + inputs_, row.begin(), 0.0F);
        }
    }
}

} // namespace quorel
