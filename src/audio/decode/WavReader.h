#pragma once

#include "audio/decode/AudioReader.h"

namespace quorel {

bool recognisesWav(std::span<const std::byte> head);
OpenedAudioFile openWav(AudioSource source);

/// WAV with uncompressed samples: RIFF, its big-endian twin RIFX, and RF64 for long files.
inline constexpr AudioReader kWavReader{recognisesWav, openWav};

} // namespace quorel
