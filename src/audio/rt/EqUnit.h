#pragma once

#include "audio/rt/BiquadCascade.h"
#include "audio/rt/BypassFade.h"
#include "audio/rt/EqDesign.h"
#include "audio/rt/StepRamp.h"

#include <array>
#include <span>

namespace quorel::rt {

/// An equaliser of 1 to kMaxBands bands and an overall gain. Starts bypassed, with all gains 0 dB.
/// Bypassed or flat it costs nothing and passes every bit; a band that returns to 0 dB first lets
/// its filter ring out.
class EqUnit final : public Node {
  public:
    static constexpr int kMaxBands = BiquadCascade::kMaxSections;

    explicit EqUnit(int bands);

    int bands() const noexcept { return bandCount_; }

    /// Describes a band, its gain included, at once. Control thread, never while rendering.
    void setBand(int index, const EqBand& band);

    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override;

    // The rendering thread's. Gains are in dB, a band's limited to +-96, the overall gain to
    // -96..24; what is not a number is ignored. While the unit is bypassed nothing glides or
    // ramps: values are taken at once, so un-bypass first, then ramp.

    /// Moves one band to a gain, out of its ramp if one is running: in glides of 15 ms, one for
    /// each dB of the way but at most four. A band on its way to that gain goes on.
    void setGain(int index, float db) noexcept;
    void setGains(std::span<const float> targetsDb) noexcept; ///< needs a gain for every band

    /// Walks every band from where it stands to its target in steps linear in dB; within each step
    /// the coefficients glide. Needs a target for every band.
    void rampGains(std::span<const float> targetsDb, int steps, int framesPerStep) noexcept;

    /// Takes an overall gain at once.
    void setGlobalGain(float db) noexcept;
    void rampGlobalGain(float db, int steps, int framesPerStep) noexcept;

    /// Cross-fades over 15 ms.
    void setBypass(bool bypass) noexcept;
    bool bypassed() const noexcept { return fade_.bypassed(); }

    /// The gain that a band has reached.
    float gain(int index) const noexcept;
    float globalGain() const noexcept { return globalDb_.value(); }

    /// See BiquadCascade.
    void useWideVectors(bool use) noexcept { cascade_.useWideVectors(use); }

  private:
    struct Band {
        EqBand settings;
        StepRamp gain;
        Biquad target;
        int ringLeft = 0; ///< frames until a flat band may be switched off
    };

    Biquad design(const Band& band, float db) const noexcept;
    void rampBand(int index, float db, int steps, int framesPerStep) noexcept;
    void beginStep(int index) noexcept;
    void settle(int index) noexcept;
    void finishRamps() noexcept;
    int framesToNextEvent() const noexcept;
    void advance(int frames) noexcept;

    int bandCount_;
    int sampleRate_ = 48000;
    std::array<Band, kMaxBands> bands_{};
    StepRamp globalDb_;
    GainRamp global_;
    BiquadCascade cascade_;
    BypassFade fade_{true};
};

} // namespace quorel::rt
