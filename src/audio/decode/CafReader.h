#pragma once

#include "audio/decode/AudioReader.h"

namespace quorel {

bool recognisesCaf(std::span<const std::byte> head);
OpenedAudioFile openCaf(AudioSource source);

/// Core Audio Format files with uncompressed, mu-law, A-law, ALAC or AAC sound.
inline constexpr AudioReader kCafReader{recognisesCaf, openCaf};

} // namespace quorel
