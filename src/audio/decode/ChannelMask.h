#pragma once

#include "audio/rt/Format.h"

#include <cstdint>

namespace quorel {

/// The layout of `channels` (1..kMaxChannels) under a WAVE_FORMAT_EXTENSIBLE channel mask: the
/// channels stand in the order of the mask's bits; those beyond its bits are unknown. A mask of 0,
/// or for one channel, says nothing: the usual layout then.
rt::ChannelLayout layoutOfMask(int channels, uint32_t mask);

} // namespace quorel
