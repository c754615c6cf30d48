#include "audio/rt/Sanitise.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/VectorClones.h"

#include <bit>
#include <cstdint>

namespace quorel::rt {

QUOREL_VECTOR_CLONES
void sanitise(Block& block) noexcept {
    constexpr std::uint32_t kExponent = 0x7f800000u;
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        for (int i = 0; i < 2 * block.frames; ++i) {
            // Tested as an integer, which no floating-point option can optimise away.
            const auto bits = std::bit_cast<std::uint32_t>(x[i]);
            const std::uint32_t keep = (bits & kExponent) == kExponent ? 0u : ~0u;
            const float value = std::bit_cast<float>(bits & keep);
            const float below = value < kMaxSample ? value : kMaxSample;
            x[i] = below > -kMaxSample ? below : -kMaxSample;
        }
    }
}

} // namespace quorel::rt
