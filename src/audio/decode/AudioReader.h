#pragma once

#include "audio/decode/AudioFile.h"
#include "audio/decode/InputFile.h"

#include <cstddef>
#include <span>

namespace quorel {

/// A file to be opened: its bytes from `begin` to `end`, between the tags that any format may wear
/// in front (ID3v2) and behind (ID3v1, APE).
struct AudioSource {
    InputFile file;
    int64_t begin = 0;
    int64_t end = 0;
};

/// How one file format is recognised and opened.
struct AudioReader {
    /// Whether a file is of this format, by its first bytes (up to 64, fewer in a short file).
    bool (*recognises)(std::span<const std::byte> head);
    /// Opens it. Blocks on the disk.
    OpenedAudioFile (*open)(AudioSource source);
};

/// Sampling rates that the player takes, in Hz. Others are nonsense from a damaged header, and
/// would ask absurd amounts of the rate converter.
inline constexpr int kMinSampleRate = 100;
inline constexpr int kMaxSampleRate = 1'600'000;

inline OpenedAudioFile refuse(std::string reason) {
    return {nullptr, std::move(reason)};
}

} // namespace quorel
