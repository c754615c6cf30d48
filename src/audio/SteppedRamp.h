#pragma once

#include "core/Clock.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace quorel {

/// Moves published values in equal steps towards their targets while the renderer moves the sound
/// there sample by sample. One kind of ramp; starting it anew ends the one that runs.
class SteppedRamp {
  public:
    using Values = std::vector<float>;
    using Apply = std::function<void(const Values&)>;
    using Done = std::function<void()>;

    explicit SteppedRamp(Clock& clock)
        : clock_(clock) {}

    /// `steps` >= 1 of `interval` each; `done` (may be empty) runs after the last one.
    void start(Values from, Values to, int steps, Clock::Duration interval, Apply apply,
               Done done) {
        from_ = std::move(from);
        to_ = std::move(to);
        step_ = 0;
        steps_ = steps;
        apply_ = std::move(apply);
        done_ = std::move(done);
        timer_ = clock_.startTimer(interval, Clock::Repeat::Always, [this] { tick(); });
    }

    void end() { timer_.reset(); }
    bool isRunning() const { return timer_ != nullptr; }

  private:
    void tick() {
        ++step_;
        const float t = std::min(static_cast<float>(step_) / static_cast<float>(steps_), 1.0F);
        Values now(from_.size());
        for (std::size_t i = 0; i < now.size(); ++i) {
            now[i] = from_[i] + (to_[i] - from_[i]) * t;
        }
        apply_(now);
        if (step_ >= steps_) {
            timer_.reset();
            if (const Done done = std::move(done_)) {
                done();
            }
        }
    }

    Clock& clock_;
    Values from_, to_;
    int step_ = 0;
    int steps_ = 1;
    Apply apply_;
    Done done_;
    std::unique_ptr<Timer> timer_;
};

} // namespace quorel
