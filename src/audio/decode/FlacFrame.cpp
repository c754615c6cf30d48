#include "audio/decode/FlacFrame.h"

#include "audio/decode/Bytes.h"

namespace quorel {

namespace {

constexpr std::array<uint16_t, 256> crc16Table() {
    std::array<uint16_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        unsigned crc = static_cast<unsigned>(i) << 8;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc << 1) ^ ((crc & 0x8000U) != 0 ? 0x8005U : 0U);
        }
        table[i] = static_cast<uint16_t>(crc);
    }
    return table;
}

constexpr auto kCrc16 = crc16Table();

unsigned crc8(std::span<const std::byte> bytes) {
    unsigned crc = 0;
    for (const std::byte byte : bytes) {
        crc ^= std::to_integer<unsigned>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc << 1 ^ ((crc & 0x80U) != 0 ? 0x07U : 0U)) & 0xFFU;
        }
    }
    return crc;
}

// Takes a header apart field by field; past its end every field is 0 and `failed` is set.
class FieldReader {
  public:
    explicit FieldReader(std::span<const std::byte> bytes)
        : bytes_(bytes) {}

    unsigned take(std::size_t count) {
        if (at_ + count > bytes_.size()) {
            failed_ = true;
            return 0;
        }
        const auto value = static_cast<unsigned>(
            loadUnsigned(bytes_.data() + at_, static_cast<int>(count), std::endian::big));
        at_ += count;
        return value;
    }

    // A number of up to 36 bits in UTF-8's manner.
    int64_t takeCodedNumber() {
        const unsigned first = take(1);
        const int leading = std::countl_one(static_cast<uint8_t>(first));
        if (leading == 0) {
            return first;
        }
        if (leading == 1 || leading == 8) {
            failed_ = true;
            return 0;
        }
        int64_t number = first & (0x7FU >> leading);
        for (int i = 1; i < leading; ++i) {
            const unsigned next = take(1);
            failed_ = failed_ || (next & 0xC0U) != 0x80U;
            number = number << 6 | (next & 0x3FU);
        }
        return number;
    }

    std::size_t position() const { return at_; }
    bool failed() const { return failed_; }

  private:
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

// 0 for reserved codes.
int blockFramesOf(unsigned code, FieldReader& fields) {
    switch (code) {
    case 0:
        return 0;
    case 1:
        return 192;
    case 6:
        return static_cast<int>(fields.take(1)) + 1;
    case 7:
        return static_cast<int>(fields.take(2)) + 1;
    default:
        return code < 6 ? 576 << (code - 2) : 256 << (code - 8);
    }
}

int sampleRateOf(unsigned code, FieldReader& fields, const FlacStreamInfo& info) {
    static constexpr std::array kRates{0,     88200, 176400, 192000, 8000,  16000,
                                       22050, 24000, 32000,  44100,  48000, 96000};
    switch (code) {
    case 0:
        return info.sampleRate;
    case 12:
        return static_cast<int>(fields.take(1)) * 1000;
    case 13:
        return static_cast<int>(fields.take(2));
    case 14:
        return static_cast<int>(fields.take(2)) * 10;
    case 15:
        return 0;
    default:
        return kRates[code];
    }
}

int channelsOf(unsigned code) {
    constexpr unsigned kLastDecorrelated = 10; // 8 to 10 are stereo with a difference channel
    return code < 8 ? static_cast<int>(code) + 1 : code <= kLastDecorrelated ? 2 : 0;
}

} // namespace

FlacStreamInfo FlacStreamInfo::parse(std::span<const std::byte, kBytes> block) {
    FlacStreamInfo info;
    std::copy(block.begin(), block.end(), info.block.begin());
    const uint64_t packed = loadUnsigned(block.data() + 10, 8, std::endian::big);
    info.sampleRate = static_cast<int>(packed >> 44);
    info.channels = static_cast<int>(packed >> 41 & 7) + 1;
    info.bits = static_cast<int>(packed >> 36 & 31) + 1;
    info.totalFrames = static_cast<int64_t>(packed & 0xF'FFFF'FFFF);
    return info;
}

std::optional<FlacFrameHeader> FlacFrameHeader::parse(std::span<const std::byte> bytes,
                                                      const FlacStreamInfo& info) {
    const std::array kBits{info.bits, 8, 12, 0, 16, 20, 24, 32};
    FieldReader fields(bytes);
    const unsigned sync = fields.take(2);
    const unsigned codes = fields.take(2);
    if ((sync & 0xFFFEU) != 0xFFF8U || (codes & 1U) != 0) {
        return std::nullopt;
    }
    FlacFrameHeader header;
    header.variableBlocks = (sync & 1U) != 0;
    header.number = fields.takeCodedNumber();
    header.blockFrames = blockFramesOf(codes >> 12, fields);
    header.sampleRate = sampleRateOf(codes >> 8 & 15U, fields, info);
    header.channels = channelsOf(codes >> 4 & 15U);
    header.bits = kBits[codes >> 1 & 7U];
    const std::size_t checked = fields.position();
    const unsigned crc = fields.take(1);
    if (fields.failed() || header.blockFrames == 0 || header.sampleRate == 0 ||
        header.channels == 0 || header.bits == 0 || crc8(bytes.first(checked)) != crc) {
        return std::nullopt;
    }
    return header;
}

int64_t FlacFrameHeader::maxBytes() const {
    return 64 + int64_t{blockFrames} * channels * (bits + 8) / 4;
}

uint16_t flacCrc16(uint16_t crc, std::byte next) {
    const auto index = (crc >> 8 ^ std::to_integer<unsigned>(next)) & 0xFFU;
    return static_cast<uint16_t>(crc << 8 ^ kCrc16[index]);
}

} // namespace quorel
