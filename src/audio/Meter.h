#pragma once

#include "audio/analysis/SpectrumAnalyzer.h"
#include "audio/rt/MeterTap.h"
#include "model/MeterValues.h"

#include <array>
#include <optional>
#include <span>

namespace quorel {

/// Turns the frames being heard into levels that rise at once and fall steadily. Main thread.
class Meter {
  public:
    const MeterValues& values() const { return values_; }

    /// 15 times a second while playing: measures what the tap delivered last. False, and nothing
    /// changes, before the first delivery.
    bool tick(rt::MeterFrames& delivered);

    /// 5 times a second: lets the holds fall, and while not playing the levels too. True when a
    /// value has changed.
    bool decay(bool playing);

  private:
    struct Side {
        double vuDb;
        double peakDb;
    };
    static Side measure(std::span<const float> samples);
    void drawWaveform(std::span<const float> samples);
    void analyse();

    std::array<float, rt::MeterFrames::kCapacity> scratchL_{};
    std::array<float, rt::MeterFrames::kCapacity> scratchR_{};
    // Made with the first spectrum, for making it takes a millisecond that starting need not spend.
    std::optional<SpectrumAnalyzer> spectrumAnalyzer_;
    MeterValues values_;
};

} // namespace quorel
