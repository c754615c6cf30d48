#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quorel {

/// What the STREAMINFO block of a FLAC file says (RFC 9639, 8.2).
struct FlacStreamInfo {
    static constexpr std::size_t kBytes = 34;

    std::array<std::byte, kBytes> block{}; ///< as stored
    int sampleRate = 0;                    ///< Hz
    int channels = 0;
    int bits = 0;            ///< per sample
    int64_t totalFrames = 0; ///< 0 when the encoder did not know

    static FlacStreamInfo parse(std::span<const std::byte, kBytes> block);
};

/// The head of one FLAC frame (RFC 9639, 9.1): a block of frames in the sense of the rest of the
/// program. Fields that the frame leaves to STREAMINFO are filled in.
struct FlacFrameHeader {
    static constexpr std::size_t kMaxBytes = 16;

    bool variableBlocks = false;
    int64_t number = 0;  ///< of the frame, or of its first sample
    int blockFrames = 0; ///< 1..65536
    int sampleRate = 0;  ///< Hz
    int channels = 0;
    int bits = 0; ///< per sample

    /// The header at the start of `bytes`, when one stands there and its checksum is right.
    static std::optional<FlacFrameHeader> parse(std::span<const std::byte> bytes,
                                                const FlacStreamInfo& info);

    /// More bytes than any encoder needs for such a frame: twice the size of its plain samples.
    int64_t maxBytes() const;
};

/// The checksum of FLAC frames, carried on over one more byte. Over a whole frame, its own checksum
/// included, it comes to 0.
uint16_t flacCrc16(uint16_t crc, std::byte next);

} // namespace quorel
