#pragma once

#include "audio/PlayerEngine.h"
#include "audio/SteppedRamp.h"
#include "audio/rt/Renderer.h"
#include "core/Clock.h"

#include <array>

namespace quorel {

/// How the engine sounds, whatever it plays: volume and balance, and the units that shape level and
/// tone. Main thread. Ramps are sent to the renderer once and rendered there sample by sample; the
/// timers here only keep the published values in step.
class EngineSound : public PlayerEngine {
  public:
    void setVolume(double volume) override;
    void setPan(double pan) override;
    void setNormGain(double gain, bool instant) override;
    float normGain() const { return normGain_; }
    float normUnitDb() const { return normDb_; }
    bool normBypassed() const { return normBypassed_; }

    bool eqEnabled() const { return eqEnabledFlag_; }
    void setEqEnabled(bool enabled) override;
    void setEQGain(int index, float db) override;
    const std::array<float, rt::kEqBands>& storedEQGains() const { return storedEQGains_; }
    /// The gains that the bands stand at now, in dB.
    const std::array<float, rt::kEqBands>& eqBandGains() const { return eqBandGains_; }
    bool eqBypassed() const { return parameters_.eq.bypass; }

    void setLoudness(bool on, double volume, LoudnessStrength strength) override;
    const std::array<float, rt::kLoudnessBands>& loudBandGains() const { return loudBandGains_; }
    bool loudBypassed() const { return loudBypassed_; }

    void setCompressor(bool on, CompressorPreset preset) override;

  protected:
    explicit EngineSound(Clock& clock)
        : eqRamp_(clock)
        , normRamp_(clock)
        , loudRamp_(clock) {}

    /// Has the renderer take over parameters_.
    void sendParameters();

    rt::Renderer renderer_;
    rt::RenderParameters parameters_;

  private:
    void rampEQ(bool on, SteppedRamp::Done done);
    void rampNormUnit(float db);
    void rampLoudEQ(const std::array<float, rt::kLoudnessBands>& db);

    float normGain_ = 1;
    float normDb_ = 0;
    bool normBypassed_ = true;
    bool eqEnabledFlag_ = false;
    std::array<float, rt::kEqBands> storedEQGains_{};
    std::array<float, rt::kEqBands> eqBandGains_{};
    bool loudBypassed_ = true;
    std::array<float, rt::kLoudnessBands> loudBandGains_{};
    SteppedRamp eqRamp_, normRamp_, loudRamp_;
};

} // namespace quorel
