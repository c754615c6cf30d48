#pragma once

#include <bit>
#include <cstdint>

namespace quorel::rt {

// Logarithm and power for gains, in forms that compilers turn into vector code. The polynomials
// are minimax fits.

/// log2 of a positive normal number, within 4e-6.
inline float fastLog2(float x) noexcept {
    // Splits x into 2^e * (1 + m) with 1 + m in [sqrt(1/2), sqrt(2)), so that log2(1) is exactly 0.
    constexpr std::int32_t kRootHalf = 0x3f3504f3;
    const auto bits = std::bit_cast<std::int32_t>(x);
    const std::int32_t e = (bits - kRootHalf) >> 23;
    const float m = std::bit_cast<float>(bits - (e << 23)) - 1.0f;
    float p = -0.206964678f;
    p = p * m + 0.321832755f;
    p = p * m - 0.367319372f;
    p = p * m + 0.479393034f;
    p = p * m - 0.721142972f;
    p = p * m + 1.44271186f;
    return static_cast<float>(e) + p * m;
}

/// 2^x for x in [-126, 126], within 3e-7 of the value; 2^0 is exactly 1.
inline float fastExp2(float x) noexcept {
    constexpr float kRound = 12582912.0f; // 1.5 * 2^23: adding it rounds to a whole number
    const float shifted = x + kRound;
    const std::int32_t whole =
        std::bit_cast<std::int32_t>(shifted) - std::bit_cast<std::int32_t>(kRound);
    const float f = x - (shifted - kRound);
    float p = 0.0013276472f;
    p = p * f + 0.00967554133f;
    p = p * f + 0.0555071327f;
    p = p * f + 0.240221197f;
    p = p * f + 0.693146967f;
    p = p * f + 1.0f;
    return p * std::bit_cast<float>((whole + 127) << 23);
}

} // namespace quorel::rt
