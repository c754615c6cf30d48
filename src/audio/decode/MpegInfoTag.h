#pragma once

#include "audio/decode/MpegFrame.h"

namespace quorel {

/// What the first frame of an MPEG audio file says about the rest when it carries no sound but a
/// Xing, Info or VBRI header.
struct MpegInfoTag {
    /// Of the layer 3 decoder, which the encoder's delay does not include, in sample frames.
    static constexpr int kDecoderDelay = 529;

    int64_t count = 0; ///< coded frames behind this one; 0 where it does not say
    int delay = 0;     ///< sample frames put before the sound by the encoder
    int padding = 0;   ///< and behind it
    int64_t bytes = 0; ///< of all coded frames, this one included; 0 where it does not say

    /// Whether the encoder's checksum over the frame up to there is right: nobody has changed it.
    bool intact = false;

    /// Whether delay and padding are known: both 0 is how encoders leave them out.
    bool knowsDelay() const { return delay != 0 || padding != 0; }

    /// The part of the decoded sample frames that is sound, where there are `packets` coded frames
    /// of `packetFrames` behind the tag.
    struct Sound {
        int64_t origin = 0;
        int64_t length = 0;
    };
    static Sound soundIn(const std::optional<MpegInfoTag>& tag, int64_t packets,
                         int64_t packetFrames);

    /// The tag in a whole frame, header included; none where the frame is sound.
    static std::optional<MpegInfoTag> read(std::span<const std::byte> packet,
                                           const MpegFrame& frame);
};

} // namespace quorel
