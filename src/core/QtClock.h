#pragma once

#include "core/Clock.h"

#include <QSocketNotifier>
#include <deque>
#include <memory>
#include <mutex>

namespace quorel {

/// The program's clock: steady time and the Qt event loop of the thread that makes it.
class QtClock final : public Clock {
  public:
    QtClock();
    ~QtClock() override;

    Duration now() const override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(Duration interval, Repeat repeat,
                                                    std::function<void()> action) override;
    void post(std::function<void()> action) override;

  private:
    void runPosted();
    bool takePosted(std::function<void()>& action);

    // Our own queue with a descriptor to wake the loop, where Qt's queued calls would do: its locks
    // are invisible to ThreadSanitizer, which has to watch over everything that is posted.
    const int wake_; ///< can be read while something is posted
    QSocketNotifier notifier_;
    std::mutex mutex_;
    std::deque<std::function<void()>> posted_;
};

} // namespace quorel
