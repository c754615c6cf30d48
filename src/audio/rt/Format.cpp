#include "audio/rt/Format.h"

#include <algorithm>

namespace quorel::rt {

ChannelLayout ChannelLayout::usual(int channels) {
    using enum Speaker;
    static constexpr std::array<std::array<Speaker, kMaxChannels>, kMaxChannels> layouts{{
        {FrontCenter},
        {FrontLeft, FrontRight},
        {FrontLeft, FrontRight, FrontCenter},
        {FrontLeft, FrontRight, BackLeft, BackRight},
        {FrontLeft, FrontRight, FrontCenter, BackLeft, BackRight},
        {FrontLeft, FrontRight, FrontCenter, LowFrequency, BackLeft, BackRight},
        {FrontLeft, FrontRight, FrontCenter, LowFrequency, BackCenter, SideLeft, SideRight},
        {FrontLeft, FrontRight, FrontCenter, LowFrequency, BackLeft, BackRight, SideLeft,
         SideRight},
    }};
    const int count = std::clamp(channels, 1, kMaxChannels);
    return {count, layouts[static_cast<std::size_t>(count - 1)]};
}

} // namespace quorel::rt
