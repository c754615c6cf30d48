#pragma once

#include "audio/decode/AudioReader.h"

namespace quorel {

bool recognisesMp4(std::span<const std::byte> head);
OpenedAudioFile openMp4(AudioSource source);

/// MP4 and QuickTime files (m4a, m4b, mp4, mov): AAC, ALAC and MP3, whole or in fragments.
inline constexpr AudioReader kMp4Reader{recognisesMp4, openMp4};

} // namespace quorel
