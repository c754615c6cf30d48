#pragma once

#include "audio/decode/InputFile.h"

#include <cstdint>

namespace quorel {

/// Where the audio starts: behind the ID3v2 tags (any number of them, with zeros between) at the
/// start of the file.
int64_t endOfLeadingTags(const InputFile& file);

/// Where the audio ends: before the ID3v1 and APE tags (any number of them) at the end of the file.
/// Never below `begin`.
int64_t startOfTrailingTags(const InputFile& file, int64_t begin);

} // namespace quorel
