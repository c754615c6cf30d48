#include "audio/decode/PcmSamples.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace quorel {

namespace {

// Fixed-size byte loops, which the compiler turns into a plain load or a load and swap.
template <typename Word, std::size_t kBytes, std::endian kOrder>
Word loadWord(const std::byte* at) {
    Word word = 0;
    for (std::size_t i = 0; i < kBytes; ++i) {
        const std::size_t shift = 8 * (kOrder == std::endian::little ? i : kBytes - 1 - i);
        word = static_cast<Word>(word | std::to_integer<Word>(at[i]) << shift);
    }
    return word;
}

template <std::size_t kBytes, std::endian kOrder>
void signedToFloat(const std::byte* stored, std::size_t count, float* out) {
    constexpr float kScale = 1.0F / 2147483648.0F; // the sample moved up to 32 bits
    for (std::size_t i = 0; i < count; ++i) {
        const auto word = loadWord<uint32_t, kBytes, kOrder>(stored + i * kBytes);
        const auto sample = static_cast<int32_t>(word << (32 - 8 * kBytes));
        out[i] = static_cast<float>(sample) * kScale;
    }
}

template <typename Word, typename Real, std::endian kOrder>
void realToFloat(const std::byte* stored, std::size_t count, float* out) {
    constexpr auto kLargest = static_cast<Real>(std::numeric_limits<float>::max());
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample =
            std::bit_cast<Real>(loadWord<Word, sizeof(Word), kOrder>(stored + i * sizeof(Word)));
        out[i] = std::abs(sample) <= kLargest ? static_cast<float>(sample) : 0.0F;
    }
}

// ITU-T G.711: a sign, three bits of a segment that doubles from one to the next, four bits in it.
// Both levels are scaled to 16 bits. All bits of a mu-law code are inverted, a set sign bit then
// means negative; of an A-law code every other bit is, and a clear sign bit means negative.
constexpr int muLawLevel(unsigned code) {
    const unsigned plain = ~code & 0xFF;
    const int magnitude = static_cast<int>(((plain & 0x0F) * 8 + 132) << (plain >> 4 & 7)) - 132;
    return (plain & 0x80) != 0 ? -magnitude : magnitude;
}

constexpr int aLawLevel(unsigned code) {
    const unsigned plain = code ^ 0x55;
    const unsigned segment = plain >> 4 & 7;
    const unsigned step = (plain & 0x0F) * 16 + 8;
    const auto magnitude = static_cast<int>(segment == 0 ? step : (step + 256) << (segment - 1));
    return (plain & 0x80) != 0 ? magnitude : -magnitude;
}

template <int (*kLevel)(unsigned)>
void codesToFloat(const std::byte* stored, std::size_t count, float* out) {
    static constexpr auto kLevels = [] {
        std::array<float, 256> levels{};
        for (unsigned code = 0; code < levels.size(); ++code) {
            levels[code] = static_cast<float>(kLevel(code)) / 32768.0F;
        }
        return levels;
    }();
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = kLevels[std::to_integer<std::size_t>(stored[i])];
    }
}

template <std::endian kOrder>
void convert(const std::byte* stored, std::size_t count, PcmSample sample, float* out) {
    switch (sample) {
    case PcmSample::U8:
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = static_cast<float>(std::to_integer<int>(stored[i]) - 128) / 128.0F;
        }
        return;
    case PcmSample::S8:
        return signedToFloat<1, kOrder>(stored, count, out);
    case PcmSample::S16:
        return signedToFloat<2, kOrder>(stored, count, out);
    case PcmSample::S24:
        return signedToFloat<3, kOrder>(stored, count, out);
    case PcmSample::S32:
        return signedToFloat<4, kOrder>(stored, count, out);
    case PcmSample::F32:
        return realToFloat<uint32_t, float, kOrder>(stored, count, out);
    case PcmSample::F64:
        return realToFloat<uint64_t, double, kOrder>(stored, count, out);
    case PcmSample::MuLaw:
        return codesToFloat<muLawLevel>(stored, count, out);
    case PcmSample::ALaw:
        return codesToFloat<aLawLevel>(stored, count, out);
    }
}

} // namespace

int bytesOf(PcmSample sample) {
    static constexpr std::array kBytes{1, 1, 2, 3, 4, 4, 8, 1, 1};
    return kBytes[static_cast<std::size_t>(sample)];
}

std::optional<PcmSample> pcmSample(bool floatingPoint, int bytes) {
    using enum PcmSample;
    static constexpr std::array kIntegers{S8, S16, S24, S32};
    if (floatingPoint) {
        return bytes == 4 ? std::optional(F32) : bytes == 8 ? std::optional(F64) : std::nullopt;
    }
    if (bytes < 1 || bytes > 4) {
        return std::nullopt;
    }
    return kIntegers[static_cast<std::size_t>(bytes - 1)];
}

void toFloat(const std::byte* stored, std::size_t count, PcmSample sample, std::endian order,
             float* out) {
    if (order == std::endian::big) {
        convert<std::endian::big>(stored, count, sample, out);
    } else {
        convert<std::endian::little>(stored, count, sample, out);
    }
}

} // namespace quorel
