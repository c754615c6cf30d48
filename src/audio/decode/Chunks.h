#pragma once

#include <cstdint>

namespace quorel {

/// Chunks that a file may have at most: a damaged one goes on and on.
inline constexpr int kMaxChunks = 10'000;

/// Where the sound of a file of chunks lies.
struct SoundChunk {
    int64_t offset = 0;
    int64_t bytes = 0;
};

} // namespace quorel
