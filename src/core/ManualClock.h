#pragma once

#include "core/Clock.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace quorel {

/// A clock that stands still until it is advanced. Timers fire in the order of their deadlines, at
/// exactly their deadlines. Everything but post() belongs to one thread.
class ManualClock final : public Clock {
  public:
    Duration now() const override { return now_; }
    [[nodiscard]] std::unique_ptr<Timer> startTimer(Duration interval, Repeat repeat,
                                                    std::function<void()> action) override;
    void post(std::function<void()> action) override;

    /// When the next timer is due; absent when none runs.
    std::optional<Duration> nextDeadline() const;

    /// Runs what was posted, and what that posts, until nothing waits.
    void runPosted();

    /// Runs what was posted, then moves the time forward, stopping at each deadline on the way.
    void advanceTo(Duration time);
    void advance(Duration by) { advanceTo(now_ + by); }

  private:
    struct Entry;
    class Handle;

    bool takePosted(std::function<void()>& action);

    Duration now_{0};
    uint64_t nextOrder_ = 0;
    // Shared with the timers' handles, which may outlive the clock.
    using Schedule = std::map<std::pair<Duration, uint64_t>, std::shared_ptr<Entry>>;
    std::shared_ptr<Schedule> schedule_ = std::make_shared<Schedule>();
    std::mutex postedMutex_;
    std::deque<std::function<void()>> posted_;
};

} // namespace quorel
