#pragma once

#include "audio/rt/BypassFade.h"
#include "audio/rt/GainRamp.h"

namespace quorel::rt {

struct DynamicsParameters {
    float thresholdDb = -20;
    float headRoomDb = 5;         ///< output never exceeds threshold + head room + master gain
    float attackSeconds = 0.001f; ///< time to 63 % of a change, in dB
    float releaseSeconds = 0.050f;
    float masterGainDb = 0;
    float expansionRatio = 1; ///< below the expansion threshold; 1 is none
    float expansionThresholdDb = -120;

    bool operator==(const DynamicsParameters&) const = default;
};

/// A feed-forward compressor, linked over all channels. Above the threshold T, a level T + x comes
/// out at T + H (1 - e^(-x/H)) with head room H. The wanted reduction, in dB, goes through a smooth
/// decoupled peak detector (Giannoulis, Massberg and Reiss, "Digital Dynamic Range Compressor
/// Design", 2012). Starts bypassed; bypassed it costs nothing and passes every bit.
class DynamicsProcessor final : public Node {
  public:
    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override;

    /// Rendering thread. The reduction follows with the new attack and release times, the master
    /// gain within 15 ms. Values out of sense are limited.
    void setParameters(const DynamicsParameters& parameters) noexcept;

    /// Rendering thread. Cross-fades over 15 ms.
    void setBypass(bool bypass) noexcept;
    bool bypassed() const noexcept { return fade_.bypassed(); }

    /// The reduction of the frame processed last, in dB, without the master gain.
    float reductionDb() const noexcept;

  private:
    /// The parameters in units of a factor of two, and their per-frame coefficients.
    struct Curve {
        float threshold = 0;
        float headRoom = 1;
        float slope = 0; ///< of the expansion
        float expansionThreshold = 0;
        double attack = 0;
        double release = 0;
    };
    struct Detector {
        double peak = 0;
        double smooth = 0;
    };

    void update() noexcept;
    static void wantedReduction(const Curve& curve, float* levels, int frames) noexcept;
    static void detect(const Curve& curve, Detector& detector, float* reductions,
                       int frames) noexcept;
    static void gainsOf(const float* masterGains, float* reductions, int frames) noexcept;

    DynamicsParameters parameters_;
    Curve curve_;
    Detector detector_;
    GainRamp masterGain_{0.0f};
    BypassFade fade_{true};
    int sampleRate_ = 48000;
};

} // namespace quorel::rt
