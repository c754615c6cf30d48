#pragma once

#include "audio/decode/AudioReader.h"

namespace quorel {

bool recognisesMp4(std::span<const std::byte> head);
OpenedAudioFile openMp4(AudioSource source);
/// By the tables alone; nothing where only the decoder knows the rate or the end, such as of AAC
/// that may extend its band to twice the rate without saying so.
std::optional<AudioProperties> measureMp4(const AudioSource& source);

/// MP4 and QuickTime files (m4a, m4b, mp4, mov): AAC, ALAC and MP3, whole or in fragments.
inline constexpr AudioReader kMp4Reader{recognisesMp4, openMp4, measureMp4};

} // namespace quorel
