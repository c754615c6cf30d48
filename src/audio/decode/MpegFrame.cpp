#include "audio/decode/MpegFrame.h"

#include "audio/decode/Bytes.h"

#include <algorithm>
#include <array>

namespace quorel {

namespace {
constexpr std::size_t kMpegHeaderBytes = 4;

// Bits `first` to `first + count - 1` of the header, counted from its most significant one.
unsigned bitsOf(uint64_t header, unsigned first, unsigned count) {
    return static_cast<unsigned>(header >> (8 * MpegFrame::kHeaderBytes - first - count)) &
           ((1U << count) - 1);
}

// In kbit/s, by layer and index; 0 is free format, and 15 is none.
using BitRates = std::array<int, 15>;
constexpr std::array<BitRates, 3> kBitRates{
    BitRates{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    BitRates{0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    BitRates{0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}};
constexpr BitRates kLowBitRatesLayer1{0,   32,  48,  56,  64,  80,  96, 112,
                                      128, 144, 160, 176, 192, 224, 256};
constexpr BitRates kLowBitRates{0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

std::optional<MpegFrame> parseMpegAudio(uint64_t header) {
    using Codec = CodecDecoder::Codec;
    constexpr std::array kRates{44100, 48000, 32000};
    const unsigned version = bitsOf(header, 11, 2); // 3: MPEG 1, 2: MPEG 2, 0: "MPEG 2.5"
    const unsigned layer = 4 - bitsOf(header, 13, 2);
    const unsigned bitRate = bitsOf(header, 16, 4);
    const unsigned rate = bitsOf(header, 20, 2);
    if (version == 1 || layer == 4 || bitRate == 0 || bitRate == 15 || rate == 3) {
        return std::nullopt;
    }
    const bool mpeg1 = version == 3;
    const bool mono = bitsOf(header, 24, 2) == 3;
    const int padding = static_cast<int>(bitsOf(header, 22, 1));
    const auto& rates = mpeg1        ? kBitRates[layer - 1]
                        : layer == 1 ? kLowBitRatesLayer1
                                     : kLowBitRates;
    const int bitsPerSecond = 1000 * rates[bitRate];
    MpegFrame frame;
    frame.codec = layer == 1 ? Codec::Mp1 : layer == 2 ? Codec::Mp2 : Codec::Mp3;
    frame.sampleRate = kRates[rate] / (mpeg1 ? 1 : version == 2 ? 2 : 4);
    frame.channels = mono ? 1 : 2;
    frame.frames = layer == 1 ? 384 : layer == 3 && !mpeg1 ? 576 : 1152;
    // Layer 1 counts in slots of four bytes.
    const int slots = layer == 1 ? 4 : 1;
    frame.bytes = (frame.frames / 8 / slots * bitsPerSecond / frame.sampleRate + padding) * slots;
    if (layer == 3) {
        const int checksum = bitsOf(header, 15, 1) == 0 ? 2 : 0;
        frame.sideInfoBytes = mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
        frame.mainDataBytes = std::max(0, frame.bytes - 4 - checksum - frame.sideInfoBytes);
    }
    frame.kind = version << 8 | layer << 4 | rate << 1 | (mono ? 1U : 0U);
    return frame;
}

std::optional<MpegFrame> parseAdts(uint64_t header) {
    constexpr std::array kRates{96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                22050, 16000, 12000, 11025, 8000,  7350};
    constexpr std::array kChannels{0, 1, 2, 3, 4, 5, 6, 8};
    const unsigned rate = bitsOf(header, 18, 4);
    const unsigned moreBlocks = bitsOf(header, 54, 2);
    MpegFrame frame;
    frame.codec = CodecDecoder::Codec::Aac;
    frame.bytes = static_cast<int>(bitsOf(header, 30, 13));
    const int headerBytes = bitsOf(header, 15, 1) == 0 ? 9 : 7; // with a checksum or without
    if (rate >= kRates.size() || moreBlocks != 0 || frame.bytes <= headerBytes) {
        return std::nullopt;
    }
    frame.sampleRate = kRates[rate];
    frame.channels = kChannels[bitsOf(header, 23, 3)];
    frame.frames = 1024;
    // Object type, rate and channels, apart from the kinds of MPEG audio.
    frame.kind = 1U << 16 | bitsOf(header, 16, 2) << 8 | rate << 3 | bitsOf(header, 23, 3);
    return frame;
}
} // namespace

std::optional<MpegFrame> MpegFrame::parse(std::span<const std::byte> bytes) {
    if (bytes.size() < kMpegHeaderBytes || bytes[0] != std::byte{0xFF} ||
        (bytes[1] & std::byte{0xE0}) != std::byte{0xE0}) {
        return std::nullopt;
    }
    // In the place of the layer, ADTS has the number that no layer has.
    const bool adts = (bytes[1] & std::byte{0xF6}) == std::byte{0xF0};
    if (adts && bytes.size() < kHeaderBytes) {
        return std::nullopt;
    }
    const auto present = std::min(bytes.size(), kHeaderBytes);
    const uint64_t header = loadUnsigned(bytes.data(), static_cast<int>(present), std::endian::big)
                            << 8 * (kHeaderBytes - present);
    return adts ? parseAdts(header) : parseMpegAudio(header);
}

} // namespace quorel
