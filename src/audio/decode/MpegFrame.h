#pragma once

#include "audio/decode/CodecDecoder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quorel {

/// The header of a frame of MPEG audio (ISO/IEC 11172-3 and 13818-3 layers 1 to 3, with the lower
/// rates of "MPEG 2.5") or of AAC in ADTS (ISO/IEC 13818-7).
struct MpegFrame {
    static constexpr std::size_t kHeaderBytes = 7; ///< of ADTS; 4 of them in MPEG audio
    static constexpr int kMaxBytes = 8191;         ///< of a frame, by ADTS's 13 bits

    CodecDecoder::Codec codec = CodecDecoder::Codec::Mp3;
    int sampleRate = 0;    ///< Hz
    int channels = 0;      ///< 0: a description inside the frame says
    int bytes = 0;         ///< with the header
    int sideInfoBytes = 0; ///< of layer 3, between the header (and its checksum) and the main data
    int mainDataBytes = 0; ///< of layer 3: at least 0
    int frames = 0;        ///< sample frames that the core codec gives
    uint32_t kind = 0;     ///< the header bits that stay the same throughout a stream

    /// The header that the bytes start with; none for what is no header, and for the rare streams
    /// whose frames do not tell their length (free format) or that pack several AAC frames in one.
    static std::optional<MpegFrame> parse(std::span<const std::byte> bytes);

    bool isAac() const { return codec == CodecDecoder::Codec::Aac; }
};

} // namespace quorel
