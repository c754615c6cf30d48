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
    constexpr Real kLargest = std::numeric_limits<float>::max();
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample =
            std::bit_cast<Real>(loadWord<Word, sizeof(Word), kOrder>(stored + i * sizeof(Word)));
        out[i] = std::abs(sample) <= kLargest ? static_cast<float>(sample) : 0.0F;
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
    }
}

} // namespace

int bytesOf(PcmSample sample) {
    static constexpr std::array kBytes{1, 1, 2, 3, 4, 4, 8};
    return kBytes[static_cast<std::size_t>(sample)];
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
