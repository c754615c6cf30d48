#pragma once

#include "audio/decode/AudioReader.h"
#include "audio/decode/FlacFrame.h"

#include <optional>

namespace quorel {

/// What the metadata blocks of a FLAC file say about its sound.
struct FlacMetadata {
    FlacStreamInfo info;
    int64_t infoEnd = 0;      ///< byte behind the STREAMINFO block
    int64_t audioBegin = 0;   ///< byte behind the last block, where the first frame should start
    uint32_t channelMask = 0; ///< of the WAVEFORMATEXTENSIBLE_CHANNEL_MASK comment; 0 without one

    /// Reads them; nothing when there is no STREAMINFO. Pictures and padding are stepped over
    /// unread.
    static std::optional<FlacMetadata> read(const AudioSource& source);
};

} // namespace quorel
