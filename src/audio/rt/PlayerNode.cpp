#include "audio/rt/PlayerNode.h"

#include "audio/rt/Sanitise.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace quorel::rt {

void PlayerNode::prepare(const Format& format) {
    format_ = format;
    edgeFrames_ = static_cast<int>(std::lround(kEdgeSeconds * format.sampleRate));
    starvedEdgeFrames_ = static_cast<int>(std::lround(kStarvedEdgeSeconds * format.sampleRate));
    reset();
}

void PlayerNode::reset() noexcept {
    halt();
}

Source* PlayerNode::exchange(Source* source) noexcept {
    halt();
    if (leaving_) {
        left_ = std::exchange(leaving_, nullptr);
    }
    return std::exchange(source_, source);
}

void PlayerNode::crossTo(Source* source) noexcept {
    leaving_ = std::exchange(source_, source);
    leavingEdge_.snap(edge_.value());
    leavingEdge_.rampTo(0.0F, edgeFrames_, Shape::RaisedCosine);
    edge_.snap(0.0F);
    edge_.rampTo(1.0F, edgeFrames_, Shape::RaisedCosine);
    state_ = State::Playing;
}

Source* PlayerNode::takeLeft() noexcept {
    return std::exchange(left_, nullptr);
}

void PlayerNode::play(bool soft) noexcept {
    if (isPlaying()) {
        return;
    }
    if (state_ == State::Halted) {
        edge_.snap(soft ? 0.0F : 1.0F);
    }
    edge_.rampTo(1.0F, edgeFrames_, Shape::RaisedCosine);
    state_ = State::Playing;
}

void PlayerNode::pause() noexcept {
    if (!source_ || source_->ring.level() == 0) {
        halt();
    } else if (state_ == State::Playing) {
        fadeOut(State::Stopping, edgeFrames_);
    } else if (state_ == State::Starving) {
        state_ = State::Stopping; // already fading out
    } else if (state_ == State::Starved) {
        halt();
    }
}

void PlayerNode::halt() noexcept {
    state_ = State::Halted;
    taken_ = 0;
}

void PlayerNode::fadeOut(State state, int frames) noexcept {
    state_ = state;
    edge_.rampTo(0.0F, std::max(frames, 1), Shape::RaisedCosine);
}

// How many frames of the source go into the next block. A source that is about to run dry is faded
// out while there is still something to fade.
int PlayerNode::framesToTake(int wanted) noexcept {
    const bool ended = source_->end.load(std::memory_order_acquire) != Source::kEndUnknown;
    const int64_t level = source_->ring.level();
    if (state_ == State::Starved) {
        if (!ended && level < edgeFrames_ + 2 * starvedEdgeFrames_) {
            return 0;
        }
        edge_.snap(0.0F);
        edge_.rampTo(1.0F, starvedEdgeFrames_, Shape::RaisedCosine);
        state_ = State::Playing;
    }
    if (state_ == State::Playing && !ended && level < wanted + starvedEdgeFrames_) {
        fadeOut(State::Starving, static_cast<int>(std::min<int64_t>(level, starvedEdgeFrames_)));
        ++underruns_;
    }
    const bool fading = state_ == State::Stopping || state_ == State::Starving;
    return static_cast<int>(
        std::min<int64_t>(fading ? std::min(wanted, edge_.framesLeft()) : wanted, level));
}

int PlayerNode::read(Source& source, const Block& block, int frames) noexcept {
    const int channels = format_.channels();
    if (channels == 2) {
        return static_cast<int>(source.ring.read(block.pair[0], frames));
    }
    const int got = static_cast<int>(source.ring.read(interleaved_.data(), frames));
    for (int pair = 0; pair < block.pairs; ++pair) {
        const int left = 2 * pair;
        const int right = std::min(left + 1, channels - 1);
        float* out = block.pair[static_cast<std::size_t>(pair)];
        const float* in = interleaved_.data();
        for (int i = 0; i < got; ++i, in += channels) {
            out[2 * i] = in[left];
            out[2 * i + 1] = in[right];
        }
    }
    return got;
}

void PlayerNode::addLeaving(const Block& block) noexcept {
    Block old;
    old.pairs = block.pairs;
    for (std::size_t pair = 0; pair < static_cast<std::size_t>(old.pairs); ++pair) {
        old.pair[pair] = leavingFrames_[pair].data();
    }
    const int wanted = std::min(block.frames, leavingEdge_.framesLeft());
    old.frames = read(*leaving_, old, wanted);
    sanitise(old);
    leavingEdge_.apply(old);
    for (std::size_t pair = 0; pair < static_cast<std::size_t>(old.pairs); ++pair) {
        for (int i = 0; i < 2 * old.frames; ++i) {
            block.pair[pair][i] += old.pair[pair][i];
        }
    }
    if (leavingEdge_.atTarget() || old.frames < wanted) {
        left_ = std::exchange(leaving_, nullptr);
    }
}

void PlayerNode::process(Block& block) noexcept {
    taken_ = 0;
    if (source_ && state_ != State::Halted) {
        const int frames = framesToTake(block.frames);
        position_ = source_->ring.readPosition();
        taken_ = read(*source_, block, frames);
        Block music = block;
        music.frames = taken_;
        sanitise(music);
        edge_.apply(music);
        if (state_ == State::Stopping || state_ == State::Starving) {
            if (edge_.atTarget() || taken_ < block.frames) {
                state_ = state_ == State::Stopping ? State::Halted : State::Starved;
            }
        }
    }
    for (int pair = 0; pair < block.pairs; ++pair) {
        float* samples = block.pair[static_cast<std::size_t>(pair)];
        std::fill(samples + 2 * taken_, samples + 2 * block.frames, 0.0F);
    }
    if (leaving_) {
        addLeaving(block);
    }
}

} // namespace quorel::rt
