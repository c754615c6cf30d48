#pragma once

#include "audio/rt/GainRamp.h"
#include "audio/rt/Node.h"
#include "audio/rt/Source.h"

#include <array>

namespace quorel::rt {

/// Where the music enters the graph: plays a source's frames, and softens every place where the
/// sound has to begin or end inside the music.
class PlayerNode final : public Node {
  public:
    void prepare(const Format& format) override;
    void process(Block& block) noexcept override;
    void reset() noexcept override;

    /// Changes the source, halted, and returns the one that was played before (either may be null).
    /// One that is still fading out ends.
    Source* exchange(Source* source) noexcept;
    Source* source() const noexcept { return source_; }

    /// While playing: goes over to another source at once, the old one fading out under it.
    void crossTo(Source* source) noexcept;
    bool isCrossing() const noexcept { return leaving_ != nullptr; }
    /// A source that has faded out and is not needed any more, or null.
    Source* takeLeft() noexcept;

    /// Goes on with the next frame; `soft` fades it in over kEdgeSeconds.
    void play(bool soft) noexcept;
    /// Fades out over kEdgeSeconds, then halts.
    void pause() noexcept;
    /// Takes no further frame.
    void halt() noexcept;

    /// Whether frames are being taken, or would be if there were any.
    bool isPlaying() const noexcept { return state_ != State::Halted && state_ != State::Stopping; }
    bool isHalted() const noexcept { return state_ == State::Halted; }
    /// Frames until a pause has become silence; 0 unless one is under way.
    int framesToHalt() const noexcept { return state_ == State::Stopping ? edge_.framesLeft() : 0; }

    /// What the last block took from the source: `taken` frames (at the block's start) beginning
    /// with the source's frame `position`.
    int64_t position() const noexcept { return position_; }
    int taken() const noexcept { return taken_; }
    /// How often the source ran dry before its end.
    int underruns() const noexcept { return underruns_; }

    /// Length of the fades at a start, pause or seek: the shortest that leaves no audible splatter.
    static constexpr double kEdgeSeconds = 0.020;
    /// Length of the fades around a place where the source ran dry.
    static constexpr double kStarvedEdgeSeconds = 0.005;

  private:
    enum class State { Halted, Playing, Stopping, Starving, Starved };

    void fadeOut(State state, int frames) noexcept;
    int framesToTake(int wanted) noexcept;
    int read(Source& source, const Block& block, int frames) noexcept;
    void addLeaving(const Block& block) noexcept;

    Format format_;
    Source* source_ = nullptr;
    State state_ = State::Halted;
    GainRamp edge_;
    Source* leaving_ = nullptr; // fades out under the source
    GainRamp leavingEdge_;
    Source* left_ = nullptr; // has faded out
    int edgeFrames_ = 0;
    int starvedEdgeFrames_ = 0;
    int64_t position_ = 0;
    int taken_ = 0;
    int underruns_ = 0;
    std::array<float, kMaxBlockFrames * kMaxChannels> interleaved_;
    std::array<std::array<float, 2 * kMaxBlockFrames>, kMaxPairs> leavingFrames_;
};

} // namespace quorel::rt
