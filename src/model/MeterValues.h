#pragma once

#include <array>

namespace quorel {

/// What the visualisations show.
struct MeterValues {
    static constexpr double kFloorDb = -30;

    double vuLeftDb = kFloorDb; ///< -30..0; 0 stands at -12 dBFS RMS
    double vuRightDb = kFloorDb;
    double peakLeftDb = kFloorDb; ///< dBFS, -30 and up
    double peakRightDb = kFloorDb;
    double peakHoldLeftDb = kFloorDb; ///< dBFS, -30 and up
    double peakHoldRightDb = kFloorDb;
    std::array<float, 256> waveform{};    ///< of the left channel, full scale +-1
    std::array<float, 24> spectrumBars{}; ///< of the left channel, 0..1, low frequencies first

    bool operator==(const MeterValues&) const = default;
};

} // namespace quorel
