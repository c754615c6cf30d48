#pragma once

#include "audio/rt/Node.h"

namespace quorel::rt {

/// The loudest sample that the chain lets in: +36 dB over full scale.
inline constexpr float kMaxSample = 64.0f;

/// Turns NaN and infinity into silence and limits samples to +-kMaxSample, so that no damaged file
/// can poison a filter's memory. Stands at the entry of a chain.
void sanitise(Block& block) noexcept;

} // namespace quorel::rt
