#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quorel {

/// A running timer. Destroying it ends it; it may be destroyed from inside its own action.
class Timer {
  public:
    virtual ~Timer() = default;
};

/// The one source of time and of deferred work. QtClock serves the program, ManualClock the tests
/// and offline rendering; every timer of the program comes from here.
class Clock {
  public:
    using Duration = std::chrono::nanoseconds;
    enum class Repeat { Once, Always };

    virtual ~Clock() = default;

    /// Monotonic time since an arbitrary start. Any thread; never blocks.
    virtual Duration now() const = 0;

    /// Runs `action` on the main thread after `interval` (> 0), once or at every multiple of it,
    /// also while menus are open. Main thread only.
    [[nodiscard]] virtual std::unique_ptr<Timer> startTimer(Duration interval, Repeat repeat,
                                                            std::function<void()> action) = 0;

    /// Runs `action` on the main thread soon, in the order of the calls. Any thread; never waits.
    /// Actions still waiting when the clock is destroyed are dropped.
    virtual void post(std::function<void()> action) = 0;
};

} // namespace quorel
