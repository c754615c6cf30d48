#pragma once

#include "audio/decode/AudioReader.h"

namespace quorel {

bool recognisesAiff(std::span<const std::byte> head);
OpenedAudioFile openAiff(AudioSource source);

/// AIFF and AIFF-C files with uncompressed, mu-law or A-law samples.
inline constexpr AudioReader kAiffReader{recognisesAiff, openAiff};

} // namespace quorel
