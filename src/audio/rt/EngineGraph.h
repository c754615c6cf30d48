#pragma once

#include "audio/rt/DynamicsProcessor.h"
#include "audio/rt/EqUnit.h"
#include "audio/rt/Graph.h"
#include "audio/rt/MeterTap.h"
#include "audio/rt/Mixer.h"
#include "audio/rt/PeakLimiter.h"
#include "audio/rt/PlayerNode.h"

namespace quorel::rt {

inline constexpr int kEqBands = 10;
inline constexpr int kLoudnessBands = 2;

/// A node that is attached so that its place is known, and passes everything through: the character
/// effects that would use it make no sound.
class IdleNode final : public Node {
  public:
    void prepare(const Format&) override {}
    void process(Block&) noexcept override {}
    void reset() noexcept override {}
};

/// The player's nodes and their wiring, fixed for life: player, preMix, normalisation, equaliser,
/// compressor, loudness compensation, limiter, meter tap, fade, main mixer.
struct EngineGraph {
    EngineGraph();

    PlayerNode player;
    IdleNode noisePlayer, mechPlayer, varispeed; // attached, never connected
    Mixer preMix;
    Mixer outputGain; ///< its volume carries the fade
    EqUnit normUnit{1};
    EqUnit charEQ{3}; // attached, never connected
    EqUnit eq{kEqBands};
    DynamicsProcessor comp;
    PeakLimiter limiter;
    EqUnit loudEQ{kLoudnessBands};
    MeterTap meterTap; ///< before the fade, so that the meters show the music's own level
    Mixer mainMixer;   ///< the user's volume and balance
    Graph graph;
};

} // namespace quorel::rt
