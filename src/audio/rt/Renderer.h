#pragma once

#include "audio/rt/EngineGraph.h"
#include "audio/rt/LatestValue.h"
#include "audio/rt/Source.h"

#include <array>
#include <cstdint>

namespace quorel::rt {

/// A fade of the output gain: linear over steps x stepSeconds, or as short as no click allows when
/// there are no steps. A new `id` starts it from where the gain stands.
struct FadeCommand {
    uint32_t id = 0;
    float target = 1;
    int32_t steps = 0;
    double stepSeconds = 0;
    bool fromSilence = false; ///< start at 0 (where nothing sounds)
    bool thenPause = false;   ///< take no further frame once the target is reached
};

/// A change of an EQ unit's gains in dB, linear over steps x stepSeconds; a new `id` starts it.
template <std::size_t N>
struct GainsCommand {
    uint32_t id = 0;
    std::array<float, N> db{};
    int32_t steps = 0; ///< 0: as soon as no click allows
    double stepSeconds = 0;
    bool bypass = true;
};

/// Everything that the main thread asks of the renderer, always as a whole.
struct RenderParameters {
    uint64_t serial = 0; ///< counts the messages
    /// Of the newest source; the parameters take effect together with it.
    uint64_t epoch = 0;
    bool playing = false;
    FadeCommand fade;
    GainsCommand<1> norm;
    GainsCommand<kEqBands> eq;
    GainsCommand<kLoudnessBands> loud;
    DynamicsParameters comp;
    bool compBypass = true;
    float volume = 1; ///< linear, >= 0
    float pan = 0;    ///< -1 (left) to 1 (right)
};

/// A stretch of frames that left the renderer without a gap.
struct RenderedRun {
    int64_t device = 0; ///< number of its first frame among all frames rendered
    int64_t source = 0; ///< number of its first frame within its source
    int64_t frames = 0;
};

/// What the renderer tells the main thread after each call.
struct RenderReport {
    static constexpr std::size_t kRuns = 16;

    uint64_t epoch = 0;    ///< of the source being played
    int64_t frames = 0;    ///< rendered since prepare, music or silence
    int64_t musicEnd = 0;  ///< from this device frame on there is only silence
    bool silent = true;    ///< paused, or without frames to play
    int32_t underruns = 0; ///< times that the source ran dry, since prepare
    uint64_t runCount = 0; ///< runs of this epoch so far; the last kRuns of them follow
    std::array<RenderedRun, kRuns> runs{}; ///< run number i stands at i % kRuns
};

/// Turns sources and parameters into sound. prepare() belongs to the control thread while nothing
/// renders, render() to the output's thread, the rest to the main thread.
class Renderer {
  public:
    /// Readies everything for a format and forgets what was played.
    void prepare(const Format& format);

    SourceExchange& sources() { return sources_; }
    void setParameters(const RenderParameters& parameters) { parameters_.write(parameters); }
    const RenderReport& report() { return reports_.read(); }
    /// Frames by which the sound lags behind the source.
    int latencyFrames() const { return nodes_.graph.latencyFrames(); }
    const EngineGraph& nodes() const { return nodes_; }
    MeterTap& meterTap() { return nodes_.meterTap; }

    /// Output thread: fills `frames` interleaved frames in the prepared format.
    void render(float* interleaved, int frames) noexcept;

  private:
    void receiveSource() noexcept;
    void crossToNext() noexcept;
    void switchSourceWhenReady() noexcept;
    void beginEpoch() noexcept;
    void apply(const RenderParameters& wanted) noexcept;
    void applyFade(const FadeCommand& fade) noexcept;
    void applyNorm(const GainsCommand<1>& norm) noexcept;
    template <std::size_t N>
    void applyGains(EqUnit& unit, const GainsCommand<N>& wanted,
                    const GainsCommand<N>& applied) noexcept;
    void applyTransport(bool playing) noexcept;
    int framesToNextEvent() const noexcept;
    void renderBlock(float* interleaved, int frames) noexcept;
    void account(int frames) noexcept;
    bool isSilent() const noexcept;
    int framesOf(double seconds) const noexcept;

    EngineGraph nodes_;
    Format format_;
    SourceExchange sources_;
    LatestValue<RenderParameters> parameters_;
    LatestValue<RenderReport> reports_;

    // The rendering thread's own state.
    Source* next_ = nullptr; // waits until it is primed and the old one is silent
    RenderParameters applied_;
    int fadeLeft_ = 0; // frames until a fade with thenPause is over
    bool pausedByFade_ = false;
    int64_t silentFrames_ = 0; // rendered since the player last took a frame
    RenderReport report_;
    std::array<std::array<float, 2 * kMaxBlockFrames>, kMaxPairs> scratch_;
};

} // namespace quorel::rt
