#include "audio/output/PulseFormat.h"

#include <algorithm>

namespace quorel {

namespace {

rt::Speaker speakerAt(pa_channel_position_t position) {
    using enum rt::Speaker;
    switch (position) {
    case PA_CHANNEL_POSITION_MONO:
    case PA_CHANNEL_POSITION_FRONT_CENTER:
        return FrontCenter;
    case PA_CHANNEL_POSITION_FRONT_LEFT:
        return FrontLeft;
    case PA_CHANNEL_POSITION_FRONT_RIGHT:
        return FrontRight;
    case PA_CHANNEL_POSITION_LFE:
        return LowFrequency;
    case PA_CHANNEL_POSITION_REAR_LEFT:
        return BackLeft;
    case PA_CHANNEL_POSITION_REAR_RIGHT:
        return BackRight;
    case PA_CHANNEL_POSITION_REAR_CENTER:
        return BackCenter;
    case PA_CHANNEL_POSITION_SIDE_LEFT:
        return SideLeft;
    case PA_CHANNEL_POSITION_SIDE_RIGHT:
        return SideRight;
    case PA_CHANNEL_POSITION_FRONT_LEFT_OF_CENTER:
        return FrontLeftOfCenter;
    case PA_CHANNEL_POSITION_FRONT_RIGHT_OF_CENTER:
        return FrontRightOfCenter;
    case PA_CHANNEL_POSITION_TOP_FRONT_LEFT:
        return TopFrontLeft;
    case PA_CHANNEL_POSITION_TOP_FRONT_RIGHT:
        return TopFrontRight;
    case PA_CHANNEL_POSITION_TOP_REAR_LEFT:
        return TopBackLeft;
    case PA_CHANNEL_POSITION_TOP_REAR_RIGHT:
        return TopBackRight;
    default:
        return Unknown;
    }
}

} // namespace

bool PulseFormat::operator==(const PulseFormat& other) const {
    return pa_sample_spec_equal(&spec, &other.spec) && pa_channel_map_equal(&map, &other.map);
}

PulseFormat streamFormat(const pa_sample_spec& sink, const pa_channel_map& map) {
    PulseFormat format;
    const int channels = std::min<int>(sink.channels, rt::kMaxChannels);
    format.spec.format = PA_SAMPLE_FLOAT32NE;
    format.spec.rate = sink.rate;
    format.spec.channels = static_cast<uint8_t>(channels);
    pa_channel_map_init(&format.map);
    format.map.channels = format.spec.channels;
    std::copy_n(map.map, channels, format.map.map);
    return format;
}

rt::Format toFormat(const PulseFormat& format) {
    rt::Format result;
    result.sampleRate = static_cast<int>(format.spec.rate);
    result.layout.channels = format.spec.channels;
    std::transform(format.map.map, format.map.map + format.spec.channels,
                   result.layout.speakers.begin(), speakerAt);
    return result;
}

} // namespace quorel
