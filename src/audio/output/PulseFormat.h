#pragma once

#include "audio/rt/Format.h"

#include <pulse/channelmap.h>
#include <pulse/sample.h>

namespace quorel {

/// A format as the sound server writes it.
struct PulseFormat {
    pa_sample_spec spec{};
    pa_channel_map map{};

    bool operator==(const PulseFormat& other) const;
};

/// The float stream that a sink of that format takes without resampling or remixing; of a sink with
/// more than rt::kMaxChannels channels, the first ones.
PulseFormat streamFormat(const pa_sample_spec& sink, const pa_channel_map& map);

rt::Format toFormat(const PulseFormat& format);

} // namespace quorel
