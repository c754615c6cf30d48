#include "audio/decode/ChannelMask.h"

#include <array>

namespace quorel {

rt::ChannelLayout layoutOfMask(int channels, uint32_t mask) {
    using enum rt::Speaker;
    // By bit number; the top centre speakers have no name of ours.
    static constexpr std::array kSpeakers{
        FrontLeft,   FrontRight,        FrontCenter,        LowFrequency, BackLeft,
        BackRight,   FrontLeftOfCenter, FrontRightOfCenter, BackCenter,   SideLeft,
        SideRight,   Unknown,           TopFrontLeft,       Unknown,      TopFrontRight,
        TopBackLeft, Unknown,           TopBackRight};
    if (channels == 1 || mask == 0) {
        return rt::ChannelLayout::usual(channels);
    }
    rt::ChannelLayout layout;
    layout.channels = channels;
    std::size_t channel = 0;
    for (std::size_t bit = 0; bit < kSpeakers.size(); ++bit) {
        if ((mask >> bit & 1) != 0 && channel < static_cast<std::size_t>(channels)) {
            layout.speakers[channel++] = kSpeakers[bit];
        }
    }
    return layout;
}

} // namespace quorel
