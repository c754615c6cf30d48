#include "audio/decode/MpegInfoTag.h"

#include "audio/decode/Bytes.h"

#include <algorithm>

namespace quorel {

namespace {
std::optional<MpegInfoTag> readVbri(std::span<const std::byte> packet) {
    constexpr std::size_t kPlace = 36; // whatever the side information's size
    constexpr std::size_t kBytesAt = 10;
    constexpr std::size_t kCountAt = 14;
    if (packet.size() < kPlace + kCountAt + 4 || !startsWith(packet.subspan(kPlace), "VBRI")) {
        return std::nullopt;
    }
    MpegInfoTag tag;
    tag.bytes = static_cast<int64_t>(loadUnsigned(&packet[kPlace + kBytesAt], 4, std::endian::big));
    tag.count = static_cast<int64_t>(loadUnsigned(&packet[kPlace + kCountAt], 4, std::endian::big));
    return tag;
}

// CRC-16 with the polynomial x^16 + x^15 + x^2 + 1, lowest bit first.
unsigned checksumOf(std::span<const std::byte> bytes) {
    unsigned crc = 0;
    for (const std::byte byte : bytes) {
        crc ^= std::to_integer<unsigned>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ ((crc & 1U) != 0 ? 0xA001U : 0U);
        }
    }
    return crc;
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
    constexpr std::size_t kChecksumAt = 34;
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
    const std::size_t bytesAt = (flags & 1) != 0 ? 12 : 8;
    if ((flags & 2) != 0 && xing.size() >= bytesAt + 4) {
        tag.bytes = static_cast<int64_t>(loadUnsigned(&xing[bytesAt], 4, std::endian::big));
    }
    const std::size_t encoderAt = xingBytes(flags);
    if (xing.size() >= encoderAt + kDelayAt + 3) {
        const std::span<const std::byte> encoder = xing.subspan(encoderAt);
        if (startsWith(encoder, "LAME") || startsWith(encoder, "Lav")) {
            const auto both = loadUnsigned(&encoder[kDelayAt], 3, std::endian::big);
            tag.delay = static_cast<int>(both >> 12);
            tag.padding = static_cast<int>(both & 0xFFF);
        }
        if (encoder.size() >= kChecksumAt + 2) {
            tag.intact = loadUnsigned(&encoder[kChecksumAt], 2, std::endian::big) ==
                         checksumOf(packet.first(place + encoderAt + kChecksumAt));
        }
    }
    return tag;
}

// An info tag counts the frames that the encoder wrote. Where there are fewer the file is cut and
// its end lacks the padding; a few more are what the encoder forgot to count; many more are other
// streams behind this one.
MpegInfoTag::Sound MpegInfoTag::soundIn(const std::optional<MpegInfoTag>& tag, int64_t packets,
                                        int64_t packetFrames) {
    constexpr int64_t kUncounted = 2;
    const int64_t decoded = packets * packetFrames;
    int64_t origin = 0;
    int64_t end = decoded;
    if (tag && tag->knowsDelay()) {
        origin = tag->delay + kDecoderDelay;
        if (tag->count > 0 && packets >= tag->count && packets <= tag->count + kUncounted) {
            end = std::min(decoded, tag->count * packetFrames - (tag->padding - kDecoderDelay));
        }
    }
    return {origin, std::max<int64_t>(0, end - origin)};
}

} // namespace quorel
