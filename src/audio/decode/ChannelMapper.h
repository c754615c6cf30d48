#pragma once

#include "audio/rt/Format.h"

#include <array>
#include <cstdint>

namespace quorel {

/// Brings frames of one channel layout to another.
///
/// Mono feeds the front pair at unity. A loudspeaker that both layouts know keeps its signal; a
/// channel of unknown place keeps its number. What the target lacks is mixed down with the
/// coefficients of ITU-R BS.775 (centre and surrounds at -3 dB, low frequencies left out); mono
/// targets get half of each side. All gains of a mix are scaled together so that it cannot clip.
/// Stereo on more loudspeakers stays with the front pair.
class ChannelMapper {
  public:
    ChannelMapper(const rt::ChannelLayout& from, const rt::ChannelLayout& to);

    /// Maps interleaved frames; `in` and `out` do not overlap. Any thread.
    void map(const float* in, float* out, int64_t frames) const;

    /// How much of input channel `in` goes into output channel `out`, 0..1.
    float gain(int in, int out) const {
        return gains_[static_cast<std::size_t>(out)][static_cast<std::size_t>(in)];
    }

  private:
    using Row = std::array<float, rt::kMaxChannels>; // one output's gains, by input channel

    int inputs_;
    int outputs_;
    bool identity_;
    std::array<Row, rt::kMaxChannels> gains_{};
};

} // namespace quorel
