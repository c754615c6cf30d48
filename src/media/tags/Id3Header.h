#pragma once

#include "audio/decode/InputFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quorel {

/// The ten bytes that an ID3v2 tag begins with.
struct Id3Header {
    static constexpr std::size_t kBytes = 10;

    int version = 0;       ///< 2, 3 or 4, of ID3v2.2 to 2.4, in a tag that can be read
    unsigned flags = 0;    ///< as stored; their meaning depends on the version
    int64_t bodyBytes = 0; ///< that follow, without the footer; at most 2^28 - 1

    /// Nothing where the bytes are too few or do not begin with "ID3". All else is taken as it is:
    /// of the size's bytes the upper bits are ignored.
    static std::optional<Id3Header> parse(std::span<const std::byte> bytes);

    /// The one at a byte of a file.
    static std::optional<Id3Header> read(const InputFile& file, int64_t offset);

    bool hasFooter() const { return (flags & 0x10U) != 0; }
    /// With this header and the footer.
    int64_t tagBytes() const;
};

/// A number stored in the low seven bits of each of four bytes, most significant first.
int64_t loadSyncsafe(std::span<const std::byte, 4> bytes);
/// Whether four bytes have no other bits than such a number has.
bool isSyncsafe(std::span<const std::byte, 4> bytes);

} // namespace quorel
