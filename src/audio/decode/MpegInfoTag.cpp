#include "audio/decode/MpegInfoTag.h"

#include "audio/decode/Bytes.h"

namespace quorel {

namespace {
std::optional<MpegInfoTag> readVbri(std::span<const std::byte> packet) {
    constexpr std::size_t kPlace = 36; // whatever the side information's size
    constexpr std::size_t kCountAt = 14;
    if (packet.size() < kPlace + kCountAt + 4 || !startsWith(packet.subspan(kPlace), "VBRI")) {
        return std::nullopt;
    }
    MpegInfoTag tag;
    tag.count = static_cast<int64_t>(loadUnsigned(&packet[kPlace + kCountAt], 4, std::endian::big));
    return tag;
}

// Where the encoder's part begins: behind the fields that the flags announce.
std::size_t xingBytes(uint64_t flags) {
    return 8 + ((flags & 1) != 0 ? 4U : 0U) + ((flags & 2) != 0 ? 4U : 0U) +
           ((flags & 4) != 0 ? 100U : 0U) + ((flags & 8) != 0 ? 4U : 0U);
}
} // namespace

std::optional<MpegInfoTag> MpegInfoTag::read(std::span<const std::byte> packet,
                                             const MpegFrame& frame) {
    constexpr std::size_t kDelayAt = 21; // in the encoder's part
    const auto place = static_cast<std::size_t>(4 + frame.sideInfoBytes);
    if (frame.codec != CodecDecoder::Codec::Mp3 || packet.size() < place + 12) {
        return std::nullopt;
    }
    const std::span<const std::byte> xing = packet.subspan(place);
    if (!startsWith(xing, "Xing") && !startsWith(xing, "Info")) {
        return readVbri(packet);
    }
    MpegInfoTag tag;
    const uint64_t flags = loadUnsigned(&xing[4], 4, std::endian::big);
    if ((flags & 1) != 0) {
        tag.count = static_cast<int64_t>(loadUnsigned(&xing[8], 4, std::endian::big));
    }
    const std::size_t encoderAt = xingBytes(flags);
    if (xing.size() >= encoderAt + kDelayAt + 3) {
        const std::span<const std::byte> encoder = xing.subspan(encoderAt);
        if (startsWith(encoder, "LAME") || startsWith(encoder, "Lav")) {
            const auto both = loadUnsigned(&encoder[kDelayAt], 3, std::endian::big);
            tag.delay = static_cast<int>(both >> 12);
            tag.padding = static_cast<int>(both & 0xFFF);
        }
    }
    return tag;
}

} // namespace quorel
