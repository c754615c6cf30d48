#pragma once

#include "audio/decode/InputFile.h"

#include <QString>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace quorel {

/// Texts that many formats hold in some way of their own, as stored. Absent where there are none.
struct CommonTags {
    std::optional<QString> title;
    std::optional<QString> artist;
    std::optional<QString> album;

    /// Takes what is absent here from `other`.
    void fillFrom(const CommonTags& other);
};

/// What the chunks of a WAV, AIFF or CAF file say, besides sound.
struct ChunkTags {
    struct Part { // of the file, in bytes
        int64_t begin = 0;
        int64_t end = 0;
    };
    std::vector<Part> id3; ///< ID3v2 tags
    CommonTags common;     ///< of the format's own chunks
};

/// Whether a file is one with such chunks, by its first bytes (at least 12).
bool hasTagChunks(std::span<const std::byte> head);

/// Reads them, stepping over the sound; `begin` is where the file's format begins. Blocks on the
/// disk.
ChunkTags readChunkTags(const InputFile& file, int64_t begin);

} // namespace quorel
