#pragma once

#include "media/tags/ChunkTags.h"

namespace quorel {

/// What TagLib finds in the tags of a file that begins with `head` (from byte `begin` on): MP4's
/// items, FLAC's comments, else APE and ID3v1. Never writes. Blocks on the disk.
CommonTags readTagLibTags(const InputFile& file, int64_t begin, std::span<const std::byte> head);

} // namespace quorel
