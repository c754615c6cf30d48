#pragma once

#include "audio/rt/Node.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quorel::rt {

/// The `frames` frames of a block that begin at frame `offset`.
inline Block slice(const Block& block, int offset, int frames) noexcept {
    Block part = block;
    for (int p = 0; p < part.pairs; ++p)
        part.pair[static_cast<std::size_t>(p)] += 2 * offset;
    part.frames = frames;
    return part;
}

/// The samples of one pair: 2 * block.frames floats.
inline float* samples(const Block& block, int pair) noexcept {
    return block.pair[static_cast<std::size_t>(pair)];
}

/// Multiplies every channel by one gain a frame.
inline void multiply(const Block& block, const float* gains) noexcept {
    for (int p = 0; p < block.pairs; ++p) {
        float* x = samples(block, p);
        for (int i = 0; i < block.frames; ++i) {
            x[2 * i] *= gains[i];
            x[2 * i + 1] *= gains[i];
        }
    }
}

inline void silence(const Block& block) noexcept {
    for (int p = 0; p < block.pairs; ++p)
        std::memset(samples(block, p), 0,
                    sizeof(float) * 2 * static_cast<std::size_t>(block.frames));
}

/// The largest magnitude over all channels, frame by frame; a NaN may come out as NaN.
inline void linkedPeaks(const Block& block, float* peaks) noexcept {
    std::fill_n(peaks, block.frames, 0.0f);
    for (int p = 0; p < block.pairs; ++p) {
        const float* x = samples(block, p);
        for (int i = 0; i < block.frames; ++i) {
            const float left = std::abs(x[2 * i]);
            const float right = std::abs(x[2 * i + 1]);
            const float pair = left > right ? left : right;
            peaks[i] = pair > peaks[i] ? pair : peaks[i];
        }
    }
}

} // namespace quorel::rt
