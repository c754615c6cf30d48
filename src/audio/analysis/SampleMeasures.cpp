#include "audio/analysis/SampleMeasures.h"

#include "audio/rt/VectorClones.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace quorel {

namespace {

/// A sample's magnitude as an integer, which orders like the number and which compilers reduce in
/// vectors without being told that rounding does not matter.
inline std::int32_t magnitudeBits(float sample) noexcept {
    constexpr std::int32_t kInfinity = 0x7f800000;
    const std::int32_t bits = std::bit_cast<std::int32_t>(sample) & 0x7fffffff;
    return bits < kInfinity ? bits : 0;
}

/// Samples whose squares are summed in single precision before they join the double sum: few enough
/// to lose nothing that could be heard, many enough to keep the vectors busy.
constexpr std::size_t kChunk = 1024;
constexpr std::size_t kLanes = 16;

} // namespace

QUOREL_VECTOR_CLONES
float peakOf(std::span<const float> samples) noexcept {
    std::int32_t peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, magnitudeBits(sample));
    }
    return std::bit_cast<float>(peak);
}

QUOREL_VECTOR_CLONES
double sumOfSquares(std::span<const float> samples) noexcept {
    double sum = 0;
    while (!samples.empty()) {
        const auto chunk = samples.first(std::min(kChunk, samples.size()));
        samples = samples.subspan(chunk.size());
        std::array<float, kLanes> lanes{};
        std::size_t at = 0;
        for (; at + kLanes <= chunk.size(); at += kLanes) {
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                const auto value = std::bit_cast<float>(magnitudeBits(chunk[at + lane]));
                lanes[lane] += value * value;
            }
        }
        for (; at < chunk.size(); ++at) {
            const auto value = std::bit_cast<float>(magnitudeBits(chunk[at]));
            lanes[0] += value * value;
        }
        for (const float lane : lanes) {
            sum += static_cast<double>(lane);
        }
    }
    return sum;
}

} // namespace quorel
