#pragma once

#include "audio/decode/AudioFile.h"
#include "audio/decode/InputFile.h"

#include <cstddef>
#include <optional>
#include <span>

namespace quorel {

/// A file to be opened: its bytes from `begin` to `end`, between the tags that any format may wear
/// in front (ID3v2) and behind (ID3v1, APE).
struct AudioSource {
    InputFile file;
    int64_t begin = 0;
    int64_t end = 0;
};

/// What there is to know about a file's sound without hearing it.
struct AudioProperties {
    int sampleRate = 0;  ///< Hz
    int64_t length = 0;  ///< frames, as AudioFile::length()
    double dataRate = 0; ///< bit/s, as AudioFile::dataRate()
};

/// How one file format is recognised and opened.
struct AudioReader {
    /// Whether a file is of this format, by its first bytes (up to 64, fewer in a short file).
    bool (*recognises)(std::span<const std::byte> head);
    /// Opens it. Blocks on the disk.
    OpenedAudioFile (*open)(AudioSource source);
    /// The same that open() would find out, where headers or an index of the frames tell it without
    /// a decoder; nothing where only open() can know. Null for readers whose open() needs none.
    std::optional<AudioProperties> (*measure)(const AudioSource& source) = nullptr;
};

/// A file between its tags, and the reader it is for.
struct IdentifiedFile {
    AudioSource source;
    const AudioReader& reader;
};

/// Finds them by what the file holds. Blocks on the disk.
IdentifiedFile identify(InputFile file);

/// What opening the file would tell, as cheaply as its format allows: for scans of whole libraries.
/// Nothing where it cannot be played. Blocks on the disk.
std::optional<AudioProperties> readAudioProperties(InputFile file);

/// Sampling rates that the player takes, in Hz. Others are nonsense from a damaged header, and
/// would ask absurd amounts of the rate converter.
inline constexpr int kMinSampleRate = 100;
inline constexpr int kMaxSampleRate = 1'600'000;

/// The data rate in bit/s of bytes that give so many frames; 0 where there are none.
inline double dataRateOf(int64_t bytes, int64_t frames, int sampleRate) {
    return frames > 0 ? 8.0 * static_cast<double>(bytes) * sampleRate / static_cast<double>(frames)
                      : 0;
}

inline OpenedAudioFile refuse(std::string reason) {
    return {nullptr, std::move(reason)};
}

} // namespace quorel
