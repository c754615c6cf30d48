#pragma once

#include "audio/decode/AudioFile.h"

#include <span>
#include <vector>

namespace quorel {

/// Reads a file block by block into one buffer.
class BlockReader {
  public:
    /// `frames` > 0. Throws std::bad_alloc.
    BlockReader(AudioFile& file, int64_t frames)
        : file_(file)
        , frames_(frames)
        , samples_(static_cast<std::size_t>(frames * file.channels())) {}

    /// The interleaved samples of the next block; empty at the end and when nothing can be read.
    std::span<const float> next() {
        const int64_t got = file_.read(samples_.data(), frames_);
        return {samples_.data(), static_cast<std::size_t>(got * file_.channels())};
    }

  private:
    AudioFile& file_;
    int64_t frames_;
    std::vector<float> samples_;
};

} // namespace quorel
